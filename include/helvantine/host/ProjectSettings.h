// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>

#include <cstdint>
#include <string>

namespace helvantine
{

class FxSerializer;

/// What holds for a whole project: its title, its clock and the size of its picture.
class HELVANTINE_FX_API ProjectSettings
{
public:
    void serialize(FxSerializer& serializer);

    int32_t getFrameRate() const { return m_frameRate; } ///< frames per second, never 0
    const std::string& getTitle() const { return m_title; }
    uint32_t getWidth() const { return m_width; }   ///< pixels
    uint32_t getHeight() const { return m_height; } ///< pixels

    /// Frames per second. The traversal of the timeline divides by it: 0 is refused.
    void setFrameRate(int frameRate);
    void setTitle(const char* title);
    void setWidth(unsigned int width) { m_width = width; }
    void setHeight(unsigned int height) { m_height = height; }

private:
    int32_t m_frameRate = 60;
    std::string m_title = "Untitled Project";
    uint32_t m_width = 1280;
    uint32_t m_height = 720;
};

} // namespace helvantine
