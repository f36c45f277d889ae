// SPDX-License-Identifier: MIT
#include "shader/hlsl/Reach.h"

#include <unordered_map>
#include <unordered_set>

namespace helvantine::hlsl
{

namespace
{

class Walker
{
public:
    Walker(const Program& program, Reach& reach) : m_program(program), m_reach(reach) {}

    void visit(const Function* function)
    {
        const auto [place, isNew] = m_functions.try_emplace(function, false);
        if (!isNew) {
            if (!place->second)
                m_reach.recursion = function;
            return;
        }
        visit(function->result);
        for (const Parameter& parameter : function->parameters)
            visit(parameter.symbol->type);
        visit(function->body);
        m_functions[function] = true;
        m_reach.functions.push_back(function);
    }

private:
    void visit(const Type* type)
    {
        if (type->isRowsMatrix())
            m_reach.rowsMatrices.insert(type);
        if (type->element)
            visit(type->element);
        if (!type->isStructure() || !m_structures.insert(type->structure).second)
            return;
        for (const Field& field : type->structure->fields)
            visit(field.type);
        m_reach.structures.push_back(type->structure);
    }

    void visit(const Helper* helper)
    {
        if (!m_helpers.insert(helper).second)
            return;
        for (const Type* type : helper->types)
            visit(type);
        for (const Helper* used : helper->uses)
            visit(used);
        m_reach.helpers.push_back(helper);
    }

    void visitGlobal(size_t index)
    {
        if (!m_reach.globals.insert(index).second)
            return;
        const Global& global = m_program.globals[index];
        if (global.symbol)
            visit(global.symbol->type);
        if (global.symbol && global.symbol->initializer)
            visit(global.symbol->initializer);
        for (const Global::Member& member : global.members)
            visit(member.symbol->type);
    }

    void visit(const Expression* expression)
    {
        visit(expression->type);
        const bool isVariable = expression->kind == Expression::Kind::Variable;
        if (isVariable && expression->symbol->kind != Symbol::Kind::Local)
            visitGlobal(expression->symbol->global);
        if (expression->helper)
            visit(expression->helper);
        for (const Expression* operand : expression->operands)
            visit(operand);
        if (expression->function)
            visit(expression->function);
        if (expression->isPixelOnly && !m_reach.pixelOnly)
            m_reach.pixelOnly = expression;
    }

    void visit(const Statement* statement)
    {
        if (!statement)
            return;
        visit(statement->first);
        for (const Expression* expression : {statement->expression, statement->step})
            if (expression)
                visit(expression);
        for (const Variable& variable : statement->variables) {
            visit(variable.symbol->type);
            if (variable.initializer)
                visit(variable.initializer);
        }
        for (const Statement* inner : statement->body)
            visit(inner);
    }

    const Program& m_program;
    Reach& m_reach;
    std::unordered_map<const Function*, bool> m_functions; ///< true when it is done
    std::unordered_set<const Helper*> m_helpers;
    std::unordered_set<const Structure*> m_structures;
};

} // namespace

Reach findReach(const Program& program, const Function& entry)
{
    Reach reach;
    Walker(program, reach).visit(&entry);
    return reach;
}

} // namespace helvantine::hlsl
