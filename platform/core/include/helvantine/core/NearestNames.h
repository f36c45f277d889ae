// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <string>
#include <string_view>
#include <vector>

namespace helvantine
{

/// The names that somebody who wrote `name` may have meant: few typing errors away, or with it as a part. The nearest
/// first, three at most, none twice; empty where all are far. Letter case doesn't count.
HELVANTINE_CORE_API std::vector<std::string> findNearestNames(std::string_view name,
                                                              const std::vector<std::string>& names);

/// The same as the end of a message: "; nearest: 'Color', 'Colour'". Empty where there are none.
HELVANTINE_CORE_API std::string describeNearestNames(std::string_view name,
                                                     const std::vector<std::string>& names);

} // namespace helvantine
