// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace helvantine::tool
{

/// With its dot, in small letters: what tells the type of a file, however its name is written.
std::string getExtension(const std::string& path);

} // namespace helvantine::tool
