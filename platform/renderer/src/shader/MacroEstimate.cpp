// SPDX-License-Identifier: MIT
#include "shader/MacroEstimate.h"

#include <algorithm>
#include <cstddef>

namespace helvantine
{

namespace
{

constexpr double hugeSize = 1e30;

void addScaled(std::vector<double>& sum, const std::vector<double>& part, double factor)
{
    for (size_t i = 0; i < sum.size() && i < part.size(); ++i)
        sum[i] = std::min(sum[i] + part[i] * factor, hugeSize);
}

} // namespace

void MacroEstimate::define(std::string_view name, Definition definition)
{
    Macro& macro = m_macros[name];
    macro.takesArguments |= definition.takesArguments;
    macro.definitions.push_back(std::move(definition));
    ++m_macroCount;
}

void MacroEstimate::addDefinition(const std::string& name, std::string_view value)
{
    Definition definition;
    definition.body = scanHlsl(value);
    define(name, std::move(definition));
}

void MacroEstimate::addDefinitions(const HlslTokens& tokens)
{
    for (size_t i = 0; i < tokens.size();) {
        size_t end = endOfDirective(tokens, i);
        if (end < i + 3 || !tokens[i + 1].is("define")) {
            i = std::max(end, i + 1);
            continue;
        }
        std::string_view name = tokens[i + 2].text;
        Definition definition;
        size_t at = i + 3;
        // Only a parenthesis that touches the name opens parameters.
        if (at < end && tokens[at].is("(") && tokens[at].text.data() == name.data() + name.size()) {
            definition.takesArguments = true;
            for (++at; at < end && !tokens[at].is(")"); ++at)
                if (tokens[at].kind == HlslToken::Kind::Word)
                    definition.parameters.push_back(tokens[at].text);
            at = std::min(at + 1, end);
        }
        definition.body.assign(tokens.begin() + std::ptrdiff_t(at), tokens.begin() + std::ptrdiff_t(end));
        define(name, std::move(definition));
        i = end;
    }
}

const MacroEstimate::Form& MacroEstimate::formOf(Macro& macro)
{
    if (!macro.form.empty())
        return macro.form;
    macro.busy = true;
    Form longest(1, 0.0);
    for (const Definition& definition : macro.definitions) {
        Form form = measure(definition.body, 0, definition.body.size(), definition.parameters);
        longest.resize(std::max(longest.size(), form.size()), 0.0);
        for (size_t i = 0; i < form.size(); ++i)
            longest[i] = std::max(longest[i], form[i]);
    }
    macro.busy = false;
    macro.form = std::move(longest);
    return macro.form;
}

MacroEstimate::Form MacroEstimate::measure(const HlslTokens& tokens, size_t begin, size_t end,
                                           const std::vector<std::string_view>& parameters)
{
    Form sum(1 + parameters.size(), 0.0);
    for (size_t i = begin; i < end; ++i) {
        const HlslToken& token = tokens[i];
        auto parameter = std::find(parameters.begin(), parameters.end(), token.text);
        if (parameter != parameters.end()) {
            sum[1 + size_t(parameter - parameters.begin())] += 1;
            continue;
        }
        auto found = token.kind == HlslToken::Kind::Word ? m_macros.find(token.text) : m_macros.end();
        if (found == m_macros.end() || found->second.busy)
            sum[0] += 1;
        else if (found->second.takesArguments && i + 1 < end && tokens[i + 1].is("("))
            i = measureCall(found->second, tokens, i + 1, end, parameters, sum);
        else
            addScaled(sum, {formOf(found->second)[0]}, 1);
    }
    return sum;
}

/// Adds the expansion of a macro with arguments and returns where its closing parenthesis stands.
size_t MacroEstimate::measureCall(Macro& macro, const HlslTokens& tokens, size_t open, size_t end,
                                  const std::vector<std::string_view>& parameters, Form& sum)
{
    const Form form = formOf(macro);
    addScaled(sum, {form[0]}, 1);
    size_t argument = 1;
    size_t start = open + 1;
    int depth = 0;
    for (size_t i = open; i < end; ++i) {
        depth += tokens[i].is("(") ? 1 : tokens[i].is(")") ? -1 : 0;
        bool closes = depth == 0;
        if (!closes && !(depth == 1 && tokens[i].is(",")))
            continue;
        if (argument < form.size())
            addScaled(sum, measure(tokens, start, i, parameters), form[argument]);
        ++argument;
        start = i + 1;
        if (closes)
            return i;
    }
    return end;
}

double MacroEstimate::expandedSize(const HlslTokens& tokens)
{
    HlslTokens code;
    for (size_t i = 0; i < tokens.size();) {
        size_t end = endOfDirective(tokens, i);
        if (end == i)
            code.push_back(tokens[i++]);
        else
            i = end;
    }
    return measure(code, 0, code.size(), {})[0];
}

} // namespace helvantine
