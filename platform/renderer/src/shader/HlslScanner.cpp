// SPDX-License-Identifier: MIT
#include "shader/HlslScanner.h"

namespace helvantine
{

namespace
{

bool isWordStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

class Scanner
{
public:
    explicit Scanner(std::string_view text) : m_text(text) {}

    HlslTokens scan()
    {
        while (skipBlanks())
            take();
        return std::move(m_tokens);
    }

private:
    char peek(size_t ahead = 0) const { return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : '\0'; }
    bool atEnd() const { return m_at >= m_text.size(); }

    void step()
    {
        if (peek() == '\n')
            ++m_line;
        ++m_at;
    }

    /// False at the end of the text.
    bool skipBlanks()
    {
        while (!atEnd()) {
            char c = peek();
            if (c == '\\' && (peek(1) == '\n' || (peek(1) == '\r' && peek(2) == '\n'))) {
                m_at += peek(1) == '\r' ? 2 : 1;
                step();
            } else if (c == '\n') {
                m_startsLine = true;
                step();
            } else if (c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v') {
                step();
            } else if (c == '/' && peek(1) == '/') {
                while (!atEnd() && peek() != '\n')
                    step();
            } else if (c == '/' && peek(1) == '*') {
                skipComment();
            } else {
                return true;
            }
        }
        return false;
    }

    void skipComment()
    {
        m_at += 2;
        while (!atEnd() && !(peek() == '*' && peek(1) == '/'))
            step();
        m_at += 2;
    }

    void take()
    {
        HlslToken token;
        token.startsLine = m_startsLine;
        token.line = m_line;
        size_t start = m_at;
        token.kind = takeKind();
        token.text = m_text.substr(start, m_at - start);
        m_startsLine = false;
        m_tokens.push_back(token);
    }

    HlslToken::Kind takeKind()
    {
        if (isWordStart(peek())) {
            while (isWordStart(peek()) || isDigit(peek()))
                ++m_at;
            return HlslToken::Kind::Word;
        }
        if (isDigit(peek())) {
            while (isWordStart(peek()) || isDigit(peek()) || peek() == '.')
                ++m_at;
            return HlslToken::Kind::Number;
        }
        if (peek() == '"') {
            for (++m_at; !atEnd() && peek() != '"' && peek() != '\n';)
                ++m_at;
            if (peek() == '"')
                ++m_at;
            return HlslToken::Kind::Text;
        }
        ++m_at;
        return HlslToken::Kind::Symbol;
    }

    std::string_view m_text;
    HlslTokens m_tokens;
    size_t m_at = 0;
    uint32_t m_line = 1;
    bool m_startsLine = true;
};

} // namespace

HlslTokens scanHlsl(std::string_view text)
{
    return Scanner(text).scan();
}

size_t endOfDirective(const HlslTokens& tokens, size_t first)
{
    if (first >= tokens.size() || !tokens[first].startsLine || !tokens[first].is("#"))
        return first;
    size_t end = first + 1;
    while (end < tokens.size() && !tokens[end].startsLine)
        ++end;
    return end;
}

} // namespace helvantine
