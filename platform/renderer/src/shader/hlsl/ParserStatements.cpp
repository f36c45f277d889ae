// SPDX-License-Identifier: MIT
#include "shader/hlsl/Names.h"
#include "shader/hlsl/Parser.h"

#include <algorithm>
#include <string>
#include <utility>

namespace helvantine::hlsl
{

namespace
{

constexpr uint32_t maxNesting = 512;

std::string quoted(std::string_view word)
{
    return "'" + std::string(word) + "'";
}

} // namespace

Statement* Parser::makeStatement(Statement::Kind kind)
{
    Statement& made = m_program.statements.emplace_back();
    made.kind = kind;
    made.at = peek().at;
    return &made;
}

Statement* Parser::parseBlock(bool opensScope)
{
    Statement* block = makeStatement(Statement::Kind::Block);
    if (!expect("{"))
        return block;
    if (opensScope)
        m_scopes.emplace_back();
    while (!atEnd() && !is("}"))
        block->body.push_back(parseStatement());
    expect("}");
    if (opensScope)
        m_scopes.pop_back();
    return block;
}

Statement* Parser::parseUnder()
{
    m_scopes.emplace_back();
    Statement* made = parseStatement();
    m_scopes.pop_back();
    return made;
}

/// Attributes that mean nothing here are left out.
std::string Parser::parseAttribute()
{
    next();
    const Token& name = next();
    if (is("(")) {
        next();
        while (!atEnd() && !accept(")"))
            next();
    }
    expect("]");
    for (std::string_view known : {"unroll", "loop", "branch", "flatten", "earlydepthstencil"})
        if (name.is(known))
            return "[" + std::string(known) + "] ";
    return {};
}

Expression* Parser::parseCondition()
{
    if (!expect("("))
        return m_builder.error(peek().at);
    Expression* condition = m_builder.condition(parseExpression());
    expect(")");
    return condition;
}

Statement* Parser::parseStatement()
{
    if (m_depth >= maxNesting) {
        stop(peek(), "statements nest deeper than " + std::to_string(maxNesting));
        return makeStatement(Statement::Kind::Empty);
    }
    ++m_depth;
    std::string attribute;
    while (is("[") && peek(1).isWord())
        attribute += parseAttribute();
    Statement* made = nullptr;
    const Token& token = peek();
    if (token.is("{")) {
        made = parseBlock(true);
    } else if (accept(";")) {
        made = makeStatement(Statement::Kind::Empty);
    } else if (token.is("if")) {
        made = parseIf(makeStatement(Statement::Kind::If));
    } else if (token.is("for")) {
        made = parseFor(makeStatement(Statement::Kind::For));
    } else if (token.is("while")) {
        made = parseWhile(makeStatement(Statement::Kind::While));
    } else if (token.is("do")) {
        made = parseDo(makeStatement(Statement::Kind::Do));
    } else if (token.is("switch")) {
        made = parseSwitch(makeStatement(Statement::Kind::Switch));
    } else if (token.is("case") || token.is("default")) {
        made = parseCase(makeStatement(Statement::Kind::Case));
    } else if (token.is("return")) {
        made = parseReturn(makeStatement(Statement::Kind::Return));
    } else if (token.is("break") || token.is("continue") || token.is("discard")) {
        made = makeStatement(token.is("break")      ? Statement::Kind::Break
                             : token.is("continue") ? Statement::Kind::Continue
                                                    : Statement::Kind::Discard);
        next();
        const bool isOutside = (made->kind == Statement::Kind::Break && m_loops + m_switches == 0) ||
                               (made->kind == Statement::Kind::Continue && m_loops == 0);
        if (isOutside)
            m_builder.fail(token.at, quoted(token.text) + " stands outside of a loop");
        expect(";");
    } else {
        made = parseDeclaration();
    }
    made->attribute = attribute;
    --m_depth;
    return made;
}

/// A declaration, or else an expression.
Statement* Parser::parseDeclaration()
{
    const size_t start = m_at;
    Statement* made = makeStatement(Statement::Kind::Declaration);
    const Modifiers modifiers = parseModifiers();
    const bool hasModifiers = m_at != start;
    if (is("typedef")) {
        parseTypedef();
        made->kind = Statement::Kind::Empty;
        return made;
    }
    const Token& first = peek();
    const bool isUnknownType = isName(first) && isName(peek(1)) && !find(first.text);
    const bool isDeclaration =
        hasModifiers || isUnknownType || (startsType() && !peek(1).is("(") && !peek(1).is("."));
    if (!isDeclaration) {
        made->kind = Statement::Kind::Expression;
        made->expression = parseExpression();
        expect(";");
        return made;
    }
    const Type* element = parseType();
    if (accept(";"))
        return made;
    do {
        const Token& name = next();
        if (refusesName(name))
            return made;
        const Type* type = parseDimensions(element);
        if (type->isVoid()) {
            m_builder.fail(name.at, quoted(name.text) + " is void");
            type = m_builder.types().error();
        }
        parseSemantic();
        Expression* value = nullptr;
        if (accept("="))
            value = m_builder.initialize(name.at, type, parseInitializer());
        else if (type->isArray() && type->count == 0)
            m_builder.fail(name.at, quoted(name.text) + ": an array without values needs its size");
        Symbol* symbol = declare(Symbol::Kind::Local, name, type, modifiers.isConst);
        if (modifiers.isConst && value)
            symbol->value = value->value;
        const bool isTable = modifiers.isConst && value && (type->isArray() || modifiers.isStatic);
        made->variables.push_back({symbol, value,
                                   std::string(modifiers.isStatic ? "static " : "") +
                                       (isTable ? "const " : "") + modifiers.interpolation});
    } while (accept(","));
    expect(";");
    return made;
}

Statement* Parser::parseIf(Statement* made)
{
    next();
    made->expression = parseCondition();
    made->body.push_back(parseUnder());
    if (accept("else"))
        made->body.push_back(parseUnder());
    return made;
}

Statement* Parser::parseFor(Statement* made)
{
    next();
    if (!expect("("))
        return made;
    m_scopes.emplace_back();
    if (!accept(";"))
        made->first = parseDeclaration();
    if (!is(";"))
        made->expression = m_builder.condition(parseExpression());
    expect(";");
    if (!is(")"))
        made->step = parseExpression();
    expect(")");
    ++m_loops;
    made->body.push_back(parseUnder());
    --m_loops;
    for (auto& [name, entity] : m_scopes.back())
        m_ended[name] = entity;
    m_scopes.pop_back();
    return made;
}

Statement* Parser::parseWhile(Statement* made)
{
    next();
    made->expression = parseCondition();
    ++m_loops;
    made->body.push_back(parseUnder());
    --m_loops;
    return made;
}

Statement* Parser::parseDo(Statement* made)
{
    next();
    ++m_loops;
    made->body.push_back(parseUnder());
    --m_loops;
    if (expect("while")) {
        made->expression = parseCondition();
        expect(";");
    }
    return made;
}

Statement* Parser::parseSwitch(Statement* made)
{
    next();
    if (!expect("("))
        return made;
    Expression* value = parseExpression();
    expect(")");
    const bool isWhole =
        value->type->isError() || (value->type->isNumber() && value->type->components() == 1);
    if (!isWhole)
        m_builder.fail(value->at, "a switch needs one number, not " + quoted(value->type->name()));
    const bool isUint = value->type->isNumber() && value->type->base == Base::Uint;
    const Type* type = m_builder.types().scalar(isUint ? Base::Uint : Base::Int);
    made->expression = isWhole ? m_builder.implicit(value, type) : m_builder.error(value->at);
    const Type* outer = std::exchange(m_switched, type);
    ++m_switches;
    made->body.push_back(parseBlock(true));
    --m_switches;
    m_switched = outer;
    return made;
}

Statement* Parser::parseCase(Statement* made)
{
    if (m_switches == 0)
        m_builder.fail(peek().at, quoted(peek().text) + " stands outside of a switch");
    const bool isDefault = next().is("default");
    if (!isDefault) {
        Expression* value = parseConditional();
        uint32_t number = 0;
        m_builder.wholeNumber(value, "a case", number);
        made->expression = m_builder.constant(
            value->at, m_switched ? m_switched : m_builder.types().scalar(Base::Int), {number});
    }
    expect(":");
    return made;
}

Statement* Parser::parseReturn(Statement* made)
{
    next();
    m_hasReturned = true;
    const Type* wanted = m_function->result;
    if (!is(";")) {
        Expression* value = parseExpression();
        if (wanted->isVoid() && !value->type->isError())
            m_builder.fail(made->at, quoted(m_function->name) + " returns nothing");
        else
            made->expression = m_builder.implicit(value, wanted);
    } else if (!wanted->isVoid()) {
        m_builder.fail(made->at, quoted(m_function->name) + " returns " + quoted(wanted->name()));
    }
    expect(";");
    return made;
}

} // namespace helvantine::hlsl
