// SPDX-License-Identifier: MIT
#pragma once

#include "shader/hlsl/Ast.h"

#include <set>
#include <vector>

namespace helvantine::hlsl
{

/// What an entry point uses, each before what uses it.
struct Reach
{
    std::vector<const Function*> functions;
    std::vector<const Helper*> helpers;
    std::set<const Type*> rowsMatrices;
    std::vector<const Structure*> structures;
    std::set<size_t> globals;
    /// What calls itself, through others or not; null if nothing does.
    const Function* recursion = nullptr;
    /// What only a pixel can do; null if there is nothing.
    const Expression* pixelOnly = nullptr;
};

Reach findReach(const Program& program, const Function& entry);

} // namespace helvantine::hlsl
