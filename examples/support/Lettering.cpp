// SPDX-License-Identifier: MIT
#include "Lettering.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Polylines on a grid that is 6 high, rows from the top: two digits a point, column and row, and a blank
/// between polylines.
struct Glyph
{
    char character;
    int width; ///< in columns
    std::string_view lines;
};

constexpr float rows = 6;
constexpr Glyph blank = {' ', 2, ""};
constexpr Glyph glyphs[] = {
    {'A', 4, "062046 1434"},
    {'B', 4, "0006 003041423303 3344453606"},
    {'C', 4, "4130100105163645"},
    {'D', 4, "00204244260600"},
    {'E', 3, "30000636 0323"},
    {'F', 3, "300006 0323"},
    {'G', 4, "41301001051636454323"},
    {'H', 4, "0006 4046 0343"},
    {'I', 0, "0006"},
    {'J', 3, "3035261605"},
    {'K', 4, "0006 400346"},
    {'L', 3, "000636"},
    {'M', 4, "0600244046"},
    {'N', 4, "06004640"},
    {'O', 4, "103041453616050110"},
    {'P', 4, "06003041423303"},
    {'Q', 4, "103041453616050110 3446"},
    {'R', 4, "06003041423303 2346"},
    {'S', 4, "413010010213334445361605"},
    {'T', 4, "0040 2026"},
    {'U', 4, "000516364540"},
    {'V', 4, "002640"},
    {'W', 4, "0016223640"},
    {'X', 4, "0046 4006"},
    {'Y', 4, "002340 2326"},
    {'Z', 4, "00400646"},
    {'0', 4, "103041453616050110"},
    {'1', 2, "012026"},
    {'2', 4, "01103041420646"},
    {'3', 4, "0110304142334445361605 1333"},
    {'4', 4, "36300444"},
    {'5', 4, "400002324345361605"},
    {'6', 4, "413010010516364544331304"},
    {'7', 4, "004016"},
    {'8', 4, "103041423313020110 1304051636454433"},
    {'9', 4, "051636454130100102133342"},
    {'-', 3, "0333"},
    {'.', 0, "0606"},
    {':', 0, "0202 0505"},
    {'/', 4, "4006"},
    {'+', 4, "2125 0343"},
};

const Glyph& findGlyph(char character)
{
    const auto* found = std::find_if(std::begin(glyphs), std::end(glyphs),
                                     [&](const Glyph& glyph) { return glyph.character == character; });
    return found == std::end(glyphs) ? blank : *found;
}

} // namespace

Lettering::Lettering(std::string_view text, float height, float gap)
{
    const float cell = height / rows;
    float pen = 0;
    for (const char character : text) {
        const Glyph& glyph = findGlyph(character);
        const std::string_view lines = glyph.lines;
        for (size_t i = 0; i + 3 < lines.size();) {
            if (lines[i + 2] == ' ') {
                i += 3;
                continue;
            }
            const auto at = [&](size_t digit) { return cell * static_cast<float>(lines[digit] - '0'); };
            m_strokes.push_back({pen + at(i), at(i + 1), pen + at(i + 2), at(i + 3)});
            i += 2;
        }
        pen += cell * static_cast<float>(glyph.width) + gap * height;
    }
    m_width = std::max(0.0f, pen - gap * height);
}

float Lettering::getDistance(float x, float y) const
{
    float nearest = 1;
    for (const Stroke& stroke : m_strokes) {
        const float dx = stroke.x1 - stroke.x0;
        const float dy = stroke.y1 - stroke.y0;
        const float length = dx * dx + dy * dy;
        const float along = (x - stroke.x0) * dx + (y - stroke.y0) * dy;
        const float t = length > 0 ? std::clamp(along / length, 0.0f, 1.0f) : 0;
        nearest = std::min(nearest, std::hypot(x - stroke.x0 - dx * t, y - stroke.y0 - dy * t));
    }
    return nearest;
}
