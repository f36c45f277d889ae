// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

/// A line of text in thin strokes: capitals, digits, and some marks. Other characters are blank.
class Lettering
{
public:
    /// Letters of the height, their top left corner at 0, 0; `gap` is between letters, in heights.
    Lettering(std::string_view text, float height, float gap);

    float getWidth() const { return m_width; }
    /// From a point to the nearest stroke; at most 1.
    float getDistance(float x, float y) const;

private:
    struct Stroke
    {
        float x0, y0, x1, y1;
    };

    std::vector<Stroke> m_strokes;
    float m_width;
};
