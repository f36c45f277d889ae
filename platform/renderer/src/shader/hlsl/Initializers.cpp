// SPDX-License-Identifier: MIT
#include "shader/hlsl/Builder.h"

#include <algorithm>
#include <string>

namespace helvantine::hlsl
{

namespace
{

std::string quoted(const Type* type)
{
    return "'" + type->name() + "'";
}

} // namespace

Expression* Builder::list(Position at, Expressions elements)
{
    return make(Expression::Kind::List, at, types().none(), std::move(elements));
}

/// Deals the elements of nested braces out to what they fill: braces mean nothing, only the order counts.
class InitializerBuilder
{
public:
    InitializerBuilder(Builder& builder, Expression* list) : m_builder(builder) { flatten(list); }

    bool hasFailed() const { return m_hasFailed; }
    /// In components of numbers, and elements that are none.
    uint32_t size() const { return m_size; }
    bool isAtEnd() const { return m_next == m_elements.size(); }

    Expression* take(Position at, const Type* type)
    {
        if (m_hasFailed)
            return m_builder.error(at);
        if (isAtEnd())
            return tooFew(at);
        Expression* next = m_elements[m_next];
        if (m_component == 0 && next->type == type)
            return advance(), next;
        if (type->isArray()) {
            Expressions elements;
            for (uint32_t i = 0; i < type->count && !m_hasFailed; ++i)
                elements.push_back(take(at, type->element));
            return finishList(at, type, std::move(elements));
        }
        if (type->isStructure()) {
            Expressions elements;
            for (const Field& field : type->structure->fields)
                elements.push_back(take(at, field.type));
            return finishList(at, type, std::move(elements));
        }
        if (!type->isNumber())
            return m_builder.implicit(next, type); // refuses it
        return takeNumber(at, type);
    }

private:
    void flatten(Expression* list)
    {
        for (Expression* element : list->operands) {
            m_hasFailed |= element->type->isError();
            if (element->kind == Expression::Kind::List && element->type->isVoid()) {
                flatten(element);
            } else {
                m_elements.push_back(element);
                m_size += std::max(countComponents(*element->type), 1U);
            }
        }
    }

    void advance()
    {
        ++m_next;
        m_component = 0;
    }

    Expression* tooFew(Position at)
    {
        if (!m_hasFailed)
            m_builder.fail(at, "the initializer has too few values");
        m_hasFailed = true;
        return m_builder.error(at);
    }

    Expression* takeNumber(Position at, const Type* type)
    {
        Expression* next = m_elements[m_next];
        const bool fits =
            m_component == 0 && next->type->isNumber() && next->type->components() == type->components();
        if (fits) {
            advance();
            return m_builder.implicit(next, type);
        }
        Expressions components;
        for (uint32_t i = 0; i < type->components(); ++i) {
            Expression* one = takeComponent(at);
            if (m_hasFailed)
                return m_builder.error(at);
            components.push_back(one);
        }
        return m_builder.construct(at, type, components);
    }

    Expression* takeComponent(Position at)
    {
        if (isAtEnd())
            return tooFew(at);
        Expression* next = m_elements[m_next];
        if (next->type->isScalar())
            return advance(), next;
        const uint32_t count = countComponents(*next->type);
        if (count == 0 || (next->hasEffects && count > 1)) {
            m_builder.fail(next->at, count == 0 ? quoted(next->type) + " can't be part of an initializer"
                                                : "an initializer can't take what a call gives apart; "
                                                  "put it into a variable first");
            m_hasFailed = true;
            return m_builder.error(at);
        }
        Expression* one = componentOf(next, m_component);
        if (++m_component == count)
            advance();
        return one;
    }

    Expression* componentOf(Expression* object, uint32_t number)
    {
        const Type* type = object->type;
        if (type->isNumber())
            return m_builder.component(object, number);
        if (type->isArray()) {
            const uint32_t each = countComponents(*type->element);
            Expression* place = m_builder.integer(object->at, int32_t(number / each));
            return componentOf(m_builder.index(object->at, object, place), number % each);
        }
        for (const Field& field : type->structure->fields) {
            const uint32_t count = countComponents(*field.type);
            if (number < count)
                return componentOf(m_builder.member(object->at, object, field.name), number);
            number -= count;
        }
        return m_builder.error(object->at);
    }

    Expression* finishList(Position at, const Type* type, Expressions elements)
    {
        if (m_hasFailed)
            return m_builder.error(at);
        Expression* made = m_builder.list(at, std::move(elements));
        made->type = type;
        return made;
    }

    Builder& m_builder;
    Expressions m_elements;
    size_t m_next = 0;
    uint32_t m_component = 0; ///< of the next element
    uint32_t m_size = 0;
    bool m_hasFailed = false;
};

Expression* Builder::initialize(Position at, const Type*& type, Expression* value)
{
    if (value->type->isError() || type->isError())
        return error(at);
    if (value->kind != Expression::Kind::List) {
        if (type->isArray() && type->count == 0)
            type = value->type;
        return implicit(value, type);
    }
    InitializerBuilder initializer(*this, value);
    if (initializer.hasFailed())
        return error(at);
    if (type->isArray() && type->count == 0) {
        const uint32_t each = std::max(countComponents(*type->element), 1U);
        type = types().array(type->element, std::max(initializer.size() / each, 1U));
    }
    Expression* made = initializer.take(at, type);
    if (!initializer.hasFailed() && !initializer.isAtEnd() && !made->type->isError()) {
        fail(at, "the initializer has " + std::to_string(initializer.size()) + " values, and " +
                     quoted(type) + " takes " + std::to_string(countComponents(*type)));
        return error(at);
    }
    return made;
}

Expression* Builder::construct(Position at, const Type* type, const Expressions& arguments)
{
    uint32_t given = 0;
    bool isKnown = true;
    Expressions parts;
    for (Expression* argument : arguments) {
        if (argument->type->isError())
            return argument;
        if (!argument->type->isNumber()) {
            fail(at, quoted(argument->type) + " can't be part of " + quoted(type));
            return error(at);
        }
        given += argument->type->components();
        parts.push_back(convertBase(argument, type->base));
        isKnown &= parts.back()->value != nullptr;
    }
    if (parts.size() == 1 && (given == 1 || given == type->components()))
        return convert(parts[0], type);
    if (given != type->components()) {
        fail(at, quoted(type) + " takes " + std::to_string(type->components()) + " components, not " +
                     std::to_string(given));
        return error(at);
    }
    if (isKnown) {
        Value value{};
        uint32_t next = 0;
        for (const Expression* part : parts)
            for (uint32_t i = 0; i < part->type->components(); ++i)
                value[next++] = (*part->value)[i];
        return constant(at, type, value);
    }
    const bool areRows =
        type->isMatrix() && !type->isRowsMatrix() &&
        std::ranges::all_of(parts,
                            [&](const Expression* part) {
                                return part->type->isScalar() ||
                                       (part->type->isVector() && part->type->columns == type->columns);
                            }) &&
        std::ranges::all_of(parts, [&](const Expression* part) {
            return part->type->isScalar() == parts[0]->type->isScalar();
        });
    const bool isVector = type->isVector() && std::ranges::none_of(parts, [](const Expression* part) {
                              return part->type->isMatrix();
                          });
    std::string pattern = "(";
    for (size_t i = 0; i < parts.size(); ++i)
        pattern += (i ? ", $" : "$") + std::string(1, char('0' + i));
    pattern += ")";
    if (areRows || isVector)
        return spelled(at, type, type->spelling() + pattern, parts);
    // A function takes the parts apart.
    std::string components;
    std::string result = type->spelling();
    std::vector<const Helper*> uses;
    if (type->isRowsMatrix()) {
        uses.push_back(instantiate("make", type));
        result = uses[0]->name;
    }
    for (size_t part = 0; part < parts.size(); ++part) {
        const Type* of = parts[part]->type;
        const std::string name(1, char('a' + part));
        for (uint32_t i = 0; i < of->components(); ++i) {
            std::string one = name;
            if (of->isMatrix())
                one = rowOf(of, name, i / of->columns) +
                      (of->columns > 1 ? "[" + std::to_string(i % of->columns) + "]" : "");
            else if (of->isVector())
                one += "[" + std::to_string(i) + "]";
            components += (components.empty() ? "" : ", ") + one;
        }
    }
    const Helper* helper = define("join_" + type->spelling(), type->spelling(), parts,
                                  "return " + result + "(" + components + ");", uses);
    return spelled(at, type, helper->name + pattern, parts, helper);
}

} // namespace helvantine::hlsl
