// SPDX-License-Identifier: MIT
#include "object/AddedCheck.h"

#include <helvantine/core/Report.h>

namespace helvantine
{

bool canAdd(const void* added, const char* what, const std::string& target)
{
    if (!added)
        reportProblem("object", "no " + std::string(what) + " is added" +
                                    (target.empty() ? "" : " to '" + target + "'") + ": it is null");
    return added;
}

} // namespace helvantine
