// SPDX-License-Identifier: MIT
#include "shader/hlsl/FunctionMaker.h"

#include "shader/hlsl/Names.h"

namespace helvantine::hlsl
{

FunctionMaker::FunctionMaker(Builder& builder, Position at, const Type* result)
    : m_builder(builder), m_at(at), m_function(builder.program().functions.emplace_back())
{
    m_function.name = helperPrefix + ("function" + std::to_string(builder.program().functions.size()));
    m_function.spelling = m_function.name;
    m_function.at = at;
    m_function.result = result;
    Statement& body = builder.program().statements.emplace_back();
    body.kind = Statement::Kind::Block;
    body.at = at;
    m_function.body = &body;
}

Symbol* FunctionMaker::declare(const Type* type)
{
    Symbol& symbol = m_builder.program().symbols.emplace_back();
    symbol.name = symbol.spelling = "v" + std::to_string(m_count++);
    symbol.type = type;
    symbol.at = m_at;
    return &symbol;
}

Statement& FunctionMaker::add(Statement::Kind kind, Expression* expression)
{
    Statement& made = m_builder.program().statements.emplace_back();
    made.kind = kind;
    made.at = m_at;
    made.expression = expression;
    m_function.body->body.push_back(&made);
    return made;
}

Expression* FunctionMaker::parameter(const Type* type, bool isIn, bool isOut)
{
    Symbol* symbol = declare(type);
    m_function.parameters.push_back({symbol, isIn, isOut, "", "", nullptr});
    return m_builder.variable(m_at, symbol);
}

Expression* FunctionMaker::local(const Type* type, Expression* initializer)
{
    Symbol* symbol = declare(type);
    add(Statement::Kind::Declaration, nullptr).variables.push_back({symbol, initializer, ""});
    return m_builder.variable(m_at, symbol);
}

void FunctionMaker::evaluate(Expression* expression)
{
    add(Statement::Kind::Expression, expression);
}

void FunctionMaker::giveBack(Expression* expression)
{
    add(Statement::Kind::Return, expression);
}

} // namespace helvantine::hlsl
