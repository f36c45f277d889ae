// SPDX-License-Identifier: MIT
#pragma once

#include "shader/hlsl/Type.h"

#include <string>
#include <string_view>
#include <vector>

/// Functions that the normalised text brings along: what Direct3D defines and the compiler behind does otherwise.

namespace helvantine::hlsl
{

/// In the texts $F, $I, $U and $B are float, int, uint and bool in the shape that the template is taken for, $N the
/// number of components, and @name( calls another template in the same shape.
struct HelperTemplate
{
    std::string_view name;
    std::string_view result;
    std::string_view parameters;
    std::string_view body;
    std::vector<std::string> uses;
};

struct TemplateNames
{
    std::string floats, ints, uints, bools, count;
};

bool isHelperTemplate(std::string_view name);
const HelperTemplate& getHelperTemplate(std::string_view name);
std::string spellTemplateName(std::string_view name, const TemplateNames& names);
std::string spellTemplate(const HelperTemplate& pattern, const TemplateNames& names);

/// What makes a matrix that is an array of rows: a function of all its components.
std::string spellRowsConstructor(const Type& matrix, const std::string& name);

} // namespace helvantine::hlsl
