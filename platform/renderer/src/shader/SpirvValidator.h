// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace helvantine
{

/// Is the module valid for Vulkan 1.3 with scalar block layout? If not, `error` says what isn't, in one line.
bool validateSpirv(const std::vector<uint32_t>& words, std::string& error);

} // namespace helvantine
