// SPDX-License-Identifier: MIT
#include "shader/hlsl/Lexer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace helvantine::hlsl
{

namespace
{

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isWordStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isWordPart(char c)
{
    return isWordStart(c) || isDigit(c);
}

/// Longest first.
constexpr std::string_view symbols[] = {"<<=", ">>=", "...", "<<", ">>", "<=", ">=", "==", "!=", "&&", "||",
                                        "+=",  "-=",  "*=",  "/=", "%=", "&=", "|=", "^=", "++", "--", "::"};

class Scanner
{
public:
    Scanner(std::string_view text, const std::string& name) : m_text(text) { m_result.files = {name}; }

    Tokens scan()
    {
        while (skipBlanks())
            take();
        add(Token::Kind::End, m_position);
        return std::move(m_result);
    }

private:
    char peek(size_t ahead = 0) const { return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : '\0'; }
    bool atEnd() const { return m_at >= m_text.size(); }

    bool skipBlanks()
    {
        for (; !atEnd(); ++m_at) {
            const char c = peek();
            if (c == '\n') {
                ++m_position.line;
                m_startsLine = true;
            } else if (c == '#' && m_startsLine) {
                readDirective();
            } else if (c != ' ' && c != '\t' && c != '\r' && c != '\f' && c != '\v') {
                return true;
            }
        }
        return false;
    }

    /// Leaves the end of the line to be read.
    void readDirective()
    {
        const size_t end = std::min(m_text.find('\n', m_at), m_text.size());
        std::string_view line = m_text.substr(m_at + 1, end - m_at - 1);
        m_at = end - 1;
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        if (line.starts_with("line"))
            readLineMark(line.substr(4));
        else if (line.starts_with("pragma"))
            readPragma(line.substr(6));
    }

    /// The line after a mark of 0 is the first: so the preprocessor begins a text that has includes.
    void readLineMark(std::string_view mark)
    {
        mark.remove_prefix(std::min(mark.find_first_not_of(" \t"), mark.size()));
        uint32_t line = 0;
        std::from_chars(mark.data(), mark.data() + mark.size(), line);
        m_position.line = line == 0 ? 0 : line - 1;
        const size_t open = mark.find('"');
        const size_t close = mark.rfind('"');
        if (open == std::string_view::npos || close == open)
            return;
        const std::string file(mark.substr(open + 1, close - open - 1));
        const auto found = std::find(m_result.files.begin(), m_result.files.end(), file);
        m_position.file = uint32_t(found - m_result.files.begin());
        if (found == m_result.files.end())
            m_result.files.push_back(file);
    }

    void readPragma(std::string_view pragma)
    {
        const auto has = [pragma](std::string_view word) { return pragma.find(word) != pragma.npos; };
        if (has("pack_matrix"))
            m_packsRows = has("row_major");
        else if (!has("warning") && !has("once"))
            m_result.warnings.emplace_back(m_position, "unknown pragma '" + words(pragma) + "' is ignored");
    }

    static std::string words(std::string_view text)
    {
        text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
        return std::string(text.substr(0, text.find_last_not_of(" \t\r") + 1));
    }

    Token& add(Token::Kind kind, Position at)
    {
        Token& token = m_result.tokens.emplace_back();
        token.kind = kind;
        token.at = at;
        token.packsRows = m_packsRows;
        return token;
    }

    void take()
    {
        m_startsLine = false;
        const size_t start = m_at;
        const char c = peek();
        if (isWordStart(c)) {
            while (isWordPart(peek()))
                ++m_at;
            add(Token::Kind::Word, m_position).text = m_text.substr(start, m_at - start);
        } else if (isDigit(c) || (c == '.' && isDigit(peek(1)))) {
            takeNumber();
        } else if (c == '"') {
            while (!atEnd() && peek(1) != '"' && peek(1) != '\n')
                ++m_at;
            m_at = std::min(m_at + 2, m_text.size());
            add(Token::Kind::Text, m_position).text = m_text.substr(start, m_at - start);
        } else {
            const auto* const found = std::ranges::find_if(
                symbols, [this](std::string_view one) { return m_text.substr(m_at).starts_with(one); });
            m_at += found == std::end(symbols) ? 1 : found->size();
            add(Token::Kind::Symbol, m_position).text = m_text.substr(start, m_at - start);
        }
    }

    void takeNumber()
    {
        const size_t start = m_at;
        const bool isHex = peek() == '0' && (peek(1) == 'x' || peek(1) == 'X');
        if (isHex)
            m_at += 2;
        while (isHex ? std::isxdigit(static_cast<unsigned char>(peek())) != 0 : isDigit(peek()))
            ++m_at;
        bool isFloat = false;
        if (!isHex && peek() == '.') {
            isFloat = true;
            for (++m_at; isDigit(peek());)
                ++m_at;
        }
        if (!isHex && (peek() == 'e' || peek() == 'E') &&
            (isDigit(peek(1)) || ((peek(1) == '-' || peek(1) == '+') && isDigit(peek(2)))))
        {
            isFloat = true;
            for (m_at += 2; isDigit(peek());)
                ++m_at;
        }
        const std::string_view digits = m_text.substr(start, m_at - start);
        const size_t suffix = m_at;
        while (isWordPart(peek()))
            ++m_at;
        finishNumber(digits, m_text.substr(suffix, m_at - suffix), isFloat, isHex);
    }

    void finishNumber(std::string_view digits, std::string_view suffix, bool isFloat, bool isHex)
    {
        const bool isFloatSuffix = suffix == "f" || suffix == "F" || suffix == "h" || suffix == "H";
        Token& token = add(isFloat || isFloatSuffix ? Token::Kind::Float : Token::Kind::Int, m_position);
        token.text = std::string_view(digits.data(), digits.size() + suffix.size());
        token.isDouble = isFloat && (suffix == "l" || suffix == "L");
        const bool isInfinite = isFloat && suffix == "INF";
        const bool isKnown = suffix.empty() || isFloatSuffix || token.isDouble || isInfinite ||
                             (!isFloat && (suffix == "u" || suffix == "U" || suffix == "l" || suffix == "L"));
        if (!isKnown)
            fail(token, "isn't a number");
        if (token.kind == Token::Kind::Float)
            token.number = isInfinite ? std::numeric_limits<float>::infinity() : parseFloat(digits, token);
        else
            parseInteger(digits, suffix, isHex, token);
    }

    void fail(const Token& token, const char* words)
    {
        m_result.errors.emplace_back(token.at, "'" + std::string(token.text) + "' " + words);
    }

    float parseFloat(std::string_view digits, const Token& token)
    {
        double value = 0;
        const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        const bool isTooLarge = (parsed.ec == std::errc::result_out_of_range && value != 0) ||
                                value > double(std::numeric_limits<float>::max());
        if (!isTooLarge)
            return float(value);
        m_result.warnings.emplace_back(token.at, "'" + std::string(token.text) +
                                                     "' is beyond the range of float and becomes infinity");
        return std::numeric_limits<float>::infinity();
    }

    void parseInteger(std::string_view digits, std::string_view suffix, bool isHex, Token& token)
    {
        const bool isOctal = !isHex && digits.size() > 1 && digits[0] == '0';
        const std::string_view plain = isHex ? digits.substr(2) : digits;
        const char* const end = plain.data() + plain.size();
        const auto parsed = std::from_chars(plain.data(), end, token.integer, isHex ? 16 : isOctal ? 8 : 10);
        if (parsed.ec == std::errc::result_out_of_range)
            fail(token, "doesn't fit into 32 bits");
        else if (parsed.ec != std::errc() || parsed.ptr != end)
            fail(token, "isn't a number");
        token.isUnsigned = suffix == "u" || suffix == "U" || token.integer > 0x7fffffffU;
    }

    std::string_view m_text;
    Tokens m_result;
    size_t m_at = 0;
    Position m_position;
    bool m_startsLine = true;
    bool m_packsRows = false;
};

} // namespace

Tokens scan(std::string_view text, const std::string& name)
{
    return Scanner(text, name).scan();
}

} // namespace helvantine::hlsl
