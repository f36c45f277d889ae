// SPDX-License-Identifier: MIT
#include <helvantine/core/Text.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <locale.h>

namespace helvantine
{

namespace
{

/// Puts the calling thread into the "C" locale while it lives.
class PlainLocale
{
public:
    PlainLocale()
    {
        static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
        m_previous = uselocale(plain);
    }
    PlainLocale(const PlainLocale&) = delete;
    PlainLocale& operator=(const PlainLocale&) = delete;
    ~PlainLocale() { uselocale(m_previous); }

private:
    locale_t m_previous;
};

std::string formatArguments(const char* format, std::va_list arguments)
{
    const PlainLocale plain;
    char shortText[256];
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(shortText, sizeof(shortText), format, arguments);
    std::string text;
    if (length >= 0 && static_cast<std::size_t>(length) < sizeof(shortText)) {
        text.assign(shortText, static_cast<std::size_t>(length));
    } else if (length >= 0) {
        text.resize(static_cast<std::size_t>(length));
        std::vsnprintf(text.data(), text.size() + 1, format, again);
    }
    va_end(again);
    return text;
}

} // namespace

std::string formatString(const char* format, ...)
{
    std::string text;
    if (!format)
        return text;
    std::va_list arguments;
    va_start(arguments, format);
    if (std::strcmp(format, "%f") == 0)
        appendFloat(text, va_arg(arguments, double));
    else if (std::strcmp(format, "%d") == 0)
        appendInt(text, va_arg(arguments, int));
    else
        text = formatArguments(format, arguments);
    va_end(arguments);
    return text;
}

std::vector<std::string> tokenize(const char* text, const char* separators)
{
    std::vector<std::string> tokens;
    if (!text)
        return tokens;
    if (!separators)
        separators = "";
    for (;;) {
        const std::size_t length = std::strcspn(text, separators);
        tokens.emplace_back(text, length);
        if (text[length] == 0)
            return tokens;
        text += length + 1;
    }
}

} // namespace helvantine
