// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

namespace helvantine::tool
{

/// Takes a line for the user.
using Say = std::function<void(const std::string&)>;

} // namespace helvantine::tool
