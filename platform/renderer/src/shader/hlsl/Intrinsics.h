// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace helvantine::hlsl
{

/// A function that the language brings along, whether it is supported or refused.
bool isIntrinsic(std::string_view name);

} // namespace helvantine::hlsl
