// SPDX-License-Identifier: MIT
#pragma once

#include "DocumentCheck.h"

#include <helvantine/core/UniqueId.h>

namespace helvantine
{
class Object;
}

namespace helvantine::tool
{

/// Whether a plugin library here has the class.
bool isClassKnown(const UniqueId& id);

/// Looks at the inputs of an effect, a node or an importer that name resources. `path` is the owner's.
void checkReferences(const Object& owner, const std::string& path, std::vector<Finding>& findings);

/// Looks for effects below a composition's root that read a render target while they draw into it.
void checkTargets(const Composition& composition, std::vector<Finding>& findings);

} // namespace helvantine::tool
