// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace helvantine
{

/// Where `name`, under the rule of `makeRootedName`, lies below a folder on disk. Empty if nothing of
/// the name is left, or if a link on the way leads out of the folder.
std::string resolveInside(const std::string& folder, const char* name);

} // namespace helvantine
