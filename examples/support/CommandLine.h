// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

/// What a program ends with at once: 0 where it was asked for `--help`, 2 where the number of its arguments is
/// wrong. It has then said how it is called. `arguments` names them, as in "DOCUMENT FRAME".
std::optional<int> answerUsage(int argc, char** argv, const char* arguments, int count);
