// SPDX-License-Identifier: MIT
#include "shader/ShaderSource.h"

#include "shader/HlslScanner.h"
#include "shader/MacroEstimate.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace helvantine
{

namespace
{

std::string errorLine(const std::string& name, uint32_t line, const std::string& text)
{
    return name + ":" + std::to_string(line) + ": error: " + text + "\n";
}

void stripByteOrderMark(std::string& text)
{
    if (text.compare(0, 3, "\xef\xbb\xbf") == 0)
        text.erase(0, 3);
}

/// Watches brackets, operators and else branches: what the compiler's recursion follows.
class NestingCheck
{
public:
    /// Words about the first limit that the token passes; empty if none.
    std::string look(const HlslToken& token)
    {
        if (token.kind == HlslToken::Kind::Word)
            return token.is("else") && ++m_elses > maxElseCount ? tooMany("else branches", maxElseCount) : "";
        if (token.kind != HlslToken::Kind::Symbol)
            return "";
        char symbol = token.text[0];
        if (symbol == '(' || symbol == '[' || symbol == '{')
            ++depth;
        else if (symbol == ')' || symbol == ']' || symbol == '}')
            depth -= depth > 0;
        else if (symbol != ',' && symbol != ';')
            ++m_operators;
        if (symbol == ',' || symbol == ';' || symbol == '{' || symbol == '}')
            m_operators = 0;
        if (depth > maxBracketDepth)
            return "brackets nest deeper than " + std::to_string(maxBracketDepth);
        return m_operators > maxOperatorRun ? tooMany("operators in one expression", maxOperatorRun) : "";
    }

    size_t depth = 0;

private:
    static std::string tooMany(const char* what, size_t limit)
    {
        return std::string("more than ") + std::to_string(limit) + " " + what;
    }

    size_t m_operators = 0;
    size_t m_elses = 0;
};

bool checkNesting(const std::string& name, const HlslTokens& tokens, std::string& errors)
{
    NestingCheck check;
    size_t directiveEnd = 0;
    size_t depthOutside = 0;
    for (size_t i = 0; i < tokens.size(); ++i) {
        if (directiveEnd != 0 && i == directiveEnd)
            check.depth = depthOutside; // a macro's body need not be balanced
        if (size_t end = endOfDirective(tokens, i); end != i) {
            directiveEnd = end;
            depthOutside = check.depth;
        }
        if (std::string words = check.look(tokens[i]); !words.empty()) {
            errors = errorLine(name, tokens[i].line, words);
            return false;
        }
    }
    return true;
}

/// What stands between the quotes or angle brackets of an include directive; empty if it is none.
std::string includedName(const HlslTokens& tokens, size_t first, size_t end)
{
    if (end < first + 3 || !tokens[first + 1].is("include"))
        return {};
    std::string_view opening = tokens[first + 2].text;
    if (tokens[first + 2].kind == HlslToken::Kind::Text)
        return std::string(opening.substr(1, opening.size() - std::min<size_t>(opening.size(), 2)));
    if (opening != "<" || !tokens[end - 1].is(">"))
        return {};
    const char* begin = opening.data() + 1;
    return std::string(begin, tokens[end - 1].text.data());
}

/// Walks over a text and everything that it includes.
class SourceLoader
{
public:
    SourceLoader(const ShaderIncluder& includer, ShaderSource& source, std::string& errors)
        : m_includer(includer), m_source(source), m_errors(errors)
    {
    }

    bool load(const std::string& name, const ShaderMacros& macros)
    {
        if (!enter(name, "", m_source.text))
            return false;
        while (!m_pending.empty()) {
            std::string path = m_pending.front();
            m_pending.pop_front();
            if (!enter(path, path, m_source.includes[path]))
                return false;
        }
        return checkExpansion(name, macros);
    }

private:
    bool enter(const std::string& name, const std::string& path, const std::string& text)
    {
        if (text.size() > maxShaderSourceSize) {
            m_errors = errorLine(name, 1,
                                 "the text has " + std::to_string(text.size()) + " bytes, more than " +
                                     std::to_string(maxShaderSourceSize));
            return false;
        }
        m_texts.push_back(scanHlsl(text));
        const HlslTokens& tokens = m_texts.back();
        if (!checkNesting(name, tokens, m_errors))
            return false;
        for (size_t i = 0; m_source.allowsIncludes && i < tokens.size();) {
            size_t end = endOfDirective(tokens, i);
            std::string requested = includedName(tokens, i, end);
            if (!requested.empty() && !fetch(name, tokens[i].line, resolveInclude(path, requested)))
                return false;
            i = std::max(end, i + 1);
        }
        return true;
    }

    bool fetch(const std::string& name, uint32_t line, const std::string& path)
    {
        std::string text;
        if (path.empty() || m_source.includes.count(path) || !m_includer(path, text))
            return true;
        stripByteOrderMark(text);
        m_includedSize += text.size();
        m_source.includes.emplace(path, std::move(text));
        m_pending.push_back(path);
        if (m_source.includes.size() <= maxIncludeCount && m_includedSize <= maxIncludedSize)
            return true;
        m_errors = errorLine(name, line,
                             "includes pass " + std::to_string(maxIncludeCount) + " files or " +
                                 std::to_string(maxIncludedSize) + " bytes");
        return false;
    }

    bool checkExpansion(const std::string& name, const ShaderMacros& macros)
    {
        MacroEstimate estimate;
        for (const auto& [macro, value] : macros) {
            if (macro.size() + value.size() > maxShaderMacroValueSize) {
                m_errors = errorLine(name, 1,
                                     "macro of " + std::to_string(macro.size() + value.size()) +
                                         " bytes, more than " + std::to_string(maxShaderMacroValueSize));
                return false;
            }
            estimate.addDefinition(macro, value);
        }
        for (const HlslTokens& tokens : m_texts)
            estimate.addDefinitions(tokens);
        double size = 0;
        if (estimate.macroCount() <= maxShaderMacroCount)
            for (const HlslTokens& tokens : m_texts)
                size += estimate.expandedSize(tokens);
        if (estimate.macroCount() <= maxShaderMacroCount && size <= double(maxExpandedTokens))
            return true;
        m_errors =
            errorLine(name, 1,
                      estimate.macroCount() > maxShaderMacroCount
                          ? "more than " + std::to_string(maxShaderMacroCount) + " macros"
                          : "macros expand to more than " + std::to_string(maxExpandedTokens) + " tokens");
        return false;
    }

    const ShaderIncluder& m_includer;
    ShaderSource& m_source;
    std::string& m_errors;
    std::deque<std::string> m_pending;
    std::deque<HlslTokens> m_texts; ///< of the text and its includes, for the estimate
    size_t m_includedSize = 0;
};

/// A buffer's name stands behind the word cbuffer; a packoffset counts for the buffer before it.
void collectPlacedBuffers(const HlslTokens& tokens, std::set<std::string>& names)
{
    std::string buffer;
    for (size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].is("cbuffer") && i + 1 < tokens.size())
            buffer = tokens[i + 1].text;
        else if (tokens[i].is("packoffset"))
            names.insert(buffer);
    }
}

} // namespace

bool loadShaderSource(const std::string& name, const std::string& text, const ShaderMacros& macros,
                      const ShaderIncluder& includer, ShaderSource& source, std::string& errors)
{
    source.text = text;
    source.includes.clear();
    source.allowsIncludes = bool(includer);
    stripByteOrderMark(source.text);
    return SourceLoader(includer, source, errors).load(name, macros);
}

std::set<std::string> findPlacedBuffers(const ShaderSource& source)
{
    std::set<std::string> names;
    collectPlacedBuffers(scanHlsl(source.text), names);
    for (const auto& [path, text] : source.includes)
        collectPlacedBuffers(scanHlsl(text), names);
    return names;
}

std::string resolveInclude(const std::string& includingPath, const std::string& requested)
{
    std::string path = requested;
    std::replace(path.begin(), path.end(), '\\', '/');
    if (path.size() > 1 && path[1] == ':')
        path = "/" + path.substr(2);
    size_t folder = includingPath.rfind('/');
    if (path.rfind('/', 0) != 0 && folder != std::string::npos)
        path = includingPath.substr(0, folder + 1) + path;

    std::vector<std::string> parts;
    for (size_t at = 0; at <= path.size();) {
        size_t end = std::min(path.find('/', at), path.size());
        std::string part = path.substr(at, end - at);
        at = end + 1;
        if (part == ".." && !parts.empty())
            parts.pop_back();
        else if (!part.empty() && part != "." && part != "..")
            parts.push_back(part);
    }
    std::string resolved;
    for (const std::string& part : parts)
        resolved += (resolved.empty() ? "" : "/") + part;
    return resolved;
}

} // namespace helvantine
