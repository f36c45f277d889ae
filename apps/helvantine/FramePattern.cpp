// SPDX-License-Identifier: MIT
#include "FramePattern.h"

#include <helvantine/core/Text.h>

namespace helvantine::tool
{

namespace
{

/// Reads "0N" in front of the d, at most two digits; "" is allowed. False if that isn't what stands there.
bool parseDigits(const std::string& text, size_t& position, int& digits)
{
    digits = 0;
    const size_t start = position;
    while (position < text.size() && text[position] >= '0' && text[position] <= '9')
        digits = digits * 10 + (text[position++] - '0');
    const size_t count = position - start;
    const bool filled = count == 0 || (text[start] == '0' && count <= 3 && digits <= 20);
    return filled && position < text.size() && text[position] == 'd';
}

} // namespace

std::optional<FramePattern> FramePattern::parse(const std::string& text)
{
    FramePattern pattern;
    for (size_t i = 0; i < text.size(); ++i) {
        std::string& part = pattern.m_hasPlace ? pattern.m_after : pattern.m_before;
        if (text[i] != '%') {
            part += text[i];
            continue;
        }
        ++i;
        if (i < text.size() && text[i] == '%')
            part += '%';
        else if (!pattern.m_hasPlace && parseDigits(text, i, pattern.m_digits))
            pattern.m_hasPlace = true;
        else
            return {};
    }
    return pattern;
}

std::string FramePattern::getPath(int frame) const
{
    return m_hasPlace ? m_before + formatString("%0*d", m_digits, frame) + m_after : m_before;
}

} // namespace helvantine::tool
