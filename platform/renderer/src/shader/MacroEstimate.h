// SPDX-License-Identifier: MIT
#pragma once

#include "shader/HlslScanner.h"

#include <map>
#include <string>
#include <vector>

namespace helvantine
{

/// Tells how long a text becomes once its macros are expanded, without expanding them.
///
/// The size of a macro's expansion is linear in the sizes of its arguments, so each macro is worked out
/// once, however often the text doubles it. Where a name is defined several times the longest counts;
/// conditions aren't looked at. So the estimate is an upper bound, but for names pasted together.
class MacroEstimate
{
public:
    /// Notes what the text's directives define. The text must outlive this object.
    void addDefinitions(const HlslTokens& tokens);

    /// Notes a macro given from outside. The value must outlive this object.
    void addDefinition(const std::string& name, std::string_view value);

    size_t macroCount() const { return m_macroCount; }

    /// Tokens after expansion, directives left out; at most 1e30.
    double expandedSize(const HlslTokens& tokens);

private:
    /// Size as a sum: a constant, then a factor for each parameter.
    using Form = std::vector<double>;

    struct Definition
    {
        std::vector<std::string_view> parameters;
        bool takesArguments = false;
        HlslTokens body;
    };

    struct Macro
    {
        std::vector<Definition> definitions;
        Form form; ///< empty until worked out
        bool busy = false;
        bool takesArguments = false;
    };

    void define(std::string_view name, Definition definition);
    const Form& formOf(Macro& macro);
    Form measure(const HlslTokens& tokens, size_t begin, size_t end,
                 const std::vector<std::string_view>& parameters);
    size_t measureCall(Macro& macro, const HlslTokens& tokens, size_t open, size_t end,
                       const std::vector<std::string_view>& parameters, Form& sum);

    std::map<std::string_view, Macro> m_macros;
    size_t m_macroCount = 0;
};

} // namespace helvantine
