// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string>

namespace helvantine
{
struct ProgramBindings;
struct TypeInfo;
} // namespace helvantine

namespace helvantine::tool
{

// What the runtime's classes do with the resources that their properties name. Classes go by their names, and
// what a class has no rows for holds as for the class it derives from.

/// What one property takes.
struct ResourceUse
{
    const char* owner;
    const char* property;
    const char* takes[2];    ///< classes of resources; null behind the last
    bool readsDepth = false; ///< takes distances from the alpha of a render target
    const ProgramBindings* bindings =
        nullptr; ///< what a shader finds when it is drawn with; null: isn't known
};

/// All rows, for tests.
std::span<const ResourceUse> getResourceUses();

/// Null for a property that isn't listed: it takes any resource.
const ResourceUse* findResourceUse(const TypeInfo& owner, const std::string& property);

/// One draw of an effect.
struct EffectDraw
{
    const char* owner;
    const char* target;     ///< property of what it draws into; null: the target that the effect stands in
    const char* sources[3]; ///< properties of what it reads meanwhile; null behind the last
};

/// Empty for a class that draws nothing from resources.
std::span<const EffectDraw> getEffectDraws(const TypeInfo& effect);

} // namespace helvantine::tool
