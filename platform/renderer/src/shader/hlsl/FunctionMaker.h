// SPDX-License-Identifier: MIT
#pragma once

#include "shader/hlsl/Builder.h"

namespace helvantine::hlsl
{

/// Puts together a function of the normalised text's own whose meaning depends on the author's types.
class FunctionMaker
{
public:
    FunctionMaker(Builder& builder, Position at, const Type* result);

    /// What the function works with, each as a variable of it.
    Expression* parameter(const Type* type, bool isIn = true, bool isOut = false);
    Expression* local(const Type* type, Expression* initializer);

    void evaluate(Expression* expression);
    void giveBack(Expression* expression);

    const Function* finish() { return &m_function; }

private:
    Symbol* declare(const Type* type);
    Statement& add(Statement::Kind kind, Expression* expression);

    Builder& m_builder;
    Position m_at;
    Function& m_function;
    size_t m_count = 0;
};

} // namespace helvantine::hlsl
