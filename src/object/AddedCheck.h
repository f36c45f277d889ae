// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace helvantine
{

/// Whether there is something to add. Null is refused with a report: it is what `createPlugin` gives for a class
/// that no library offers. what: "child", "node"; target: the name of what it would be added to, if that has one.
bool canAdd(const void* added, const char* what, const std::string& target = {});

} // namespace helvantine
