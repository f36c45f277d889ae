// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace helvantine::hlsl
{

/// Begins every name that the normalised text has beyond the author's.
inline constexpr const char* helperPrefix = "hv_";

/// How the normalised text spells an author's name: the same, unless that means something to the compiler behind.
std::string spell(std::string_view name);

/// How it spells one element of an array of textures or samplers, which become single ones.
std::string spellElement(std::string_view name, uint32_t element);

/// A message with the author's names for those of the normalised text.
std::string translateNames(std::string_view message);

/// The HLSL for what GLSL calls so; empty if it is no word of GLSL.
std::string_view findGlslHabit(std::string_view name);

/// A word with a meaning of its own, which can't be the name of anything.
bool isKeyword(std::string_view name);

} // namespace helvantine::hlsl
