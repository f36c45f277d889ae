// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>

#include <string>

namespace helvantine
{

/// The file that the runtime runs from.
HELVANTINE_FX_API std::string getRuntimePath();

} // namespace helvantine
