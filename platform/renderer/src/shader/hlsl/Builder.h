// SPDX-License-Identifier: MIT
#pragma once

#include "shader/hlsl/Ast.h"

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace helvantine::hlsl
{

using Expressions = std::vector<Expression*>;

/// Decides what an expression of the author's means: its type, its conversions, the function it calls.
///
/// Every operation takes checked operands and gives a checked expression. What can't be is reported once; what is
/// made of it is of type error, about which nothing more is said.
class Builder
{
public:
    explicit Builder(Program& program) : m_program(program) {}

    void fail(Position at, const std::string& words);
    void warn(Position at, const std::string& words);

    TypeTable& types() { return m_program.types; }
    Program& program() { return m_program; }

    // Leaves
    Expression* error(Position at);
    Expression* constant(Position at, const Type* type, const Value& value);
    Expression* integer(Position at, int32_t value);
    Expression* variable(Position at, const Symbol* symbol);

    // Operators
    Expression* unary(Position at, std::string_view op, Expression* operand);
    Expression* binary(Position at, std::string_view op, Expression* left, Expression* right);
    Expression* assign(Position at, std::string_view op, Expression* target, Expression* value);
    Expression* increment(Position at, std::string_view op, Expression* target, bool isPrefix);
    Expression* conditional(Position at, Expression* condition, Expression* yes, Expression* no);
    Expression* sequence(Position at, Expression* first, Expression* second);

    // Access
    Expression* member(Position at, Expression* object, std::string_view name);
    Expression* index(Position at, Expression* object, Expression* place);

    // Conversions
    /// Where the language converts by itself; warns of what is lost.
    Expression* implicit(Expression* from, const Type* to);
    Expression* cast(Position at, const Type* to, Expression* from);
    Expression* condition(Expression* from); ///< a bool
    /// 0 for equal types, more the farther they are apart, -1 if there is no conversion.
    int distance(const Type* from, const Type* to) const;

    /// Braces or a plain value; an array of unknown size takes its size from it.
    Expression* initialize(Position at, const Type*& type, Expression* value);
    Expression* list(Position at, Expressions elements);

    // Calls
    Expression* construct(Position at, const Type* type, const Expressions& arguments);
    /// isMethod: the first argument is the object, which is a copy where it can't be written to.
    Expression* call(Position at, const std::vector<Function*>& overloads, Expressions arguments,
                     bool isMethod = false);
    Expression* intrinsic(Position at, std::string_view name, Expressions arguments);
    Expression* method(Position at, Expression* object, std::string_view name, Expressions arguments);

    /// The whole number that an expression is known to have; false with words if it isn't known.
    bool wholeNumber(Expression* expression, const char* what, uint32_t& number);

    // What the above are made of
    Expression* spelled(Position at, const Type* type, const std::string& pattern, Expressions operands,
                        const Helper* helper = nullptr);
    /// By component: a pattern, or the name of a template among the helpers. Rows of matrices go one by one.
    Expression* componentwise(Position at, const Type* result, const std::string& operation,
                              const Expressions& operands);
    /// A helper function: parameters are called a, b, c, …
    const Helper* define(const std::string& name, const std::string& result, const Expressions& operands,
                         const std::string& body, std::vector<const Helper*> uses = {});
    const Helper* defineText(std::string name, const std::string& result, const std::string& parameters,
                             const std::string& body, std::vector<const Type*> types,
                             std::vector<const Helper*> uses = {});
    /// A template of the helpers for the shape of a type.
    const Helper* instantiate(const std::string& name, const Type* shape);
    Expression* component(Expression* object, uint32_t number); ///< of a number without effects
    Expression* fill(Position at, const Type* type, float value);

private:
    friend class IntrinsicBuilder;
    friend class InitializerBuilder;
    friend class MethodBuilder;

    Expression* make(Expression::Kind kind, Position at, const Type* type, Expressions operands);
    Expression* fold(Position at, const Type* type, const std::string& operation,
                     const Expressions& operands);
    const Value* keep(const Value& value);

    const Type* commonShape(Position at, const Type* left, const Type* right, std::string_view op);
    Expression* arithmetic(Position at, std::string_view op, Expression* left, Expression* right);
    Expression* division(Position at, std::string_view op, const Type* type, Expression* left,
                         Expression* right);
    Expression* logical(Position at, std::string_view op, Expression* left, Expression* right);
    Expression* bitwise(Position at, std::string_view op, Expression* left, Expression* right);
    Expression* shift(Position at, std::string_view op, Expression* left, Expression* right);
    bool isAssignable(Position at, Expression* target);
    Expression* assignByFunction(Position at, std::string_view op, Expression* target, Expression* value);
    Expression* store(Position at, Expression* target, Expression* value);

    Expression* convert(Expression* from, const Type* to);
    Expression* convertBase(Expression* from, Base base);
    Expression* convertShape(Expression* from, const Type* to);
    Expression* toNumber(Expression* from, const Type* shape, Base base);
    Expression* swizzle(Position at, Expression* object, std::string_view name);
    Expression* matrixSwizzle(Position at, Expression* object, std::string_view name);
    Expression* rowElement(Expression* matrix, uint32_t row, uint32_t column);
    std::string rowOf(const Type* matrix, const std::string& name, uint32_t row) const;
    const Type* rowType(const Type* matrix);
    const Type* like(const Type* shape, Base base);
    bool refusesUnknownElement(const Expressions& arguments);
    Expression* chooseElement(Position at, Expression* object, std::string_view name,
                              const Expressions& arguments);
    Expression* callFunction(Position at, const Function& function, Expressions arguments);
    Expression* bindArguments(Position at, const Function& function, Expressions arguments,
                              bool copiesObject);
    Expression* convertOutputs(Position at, const Function& function, const Expressions& arguments);
    Expression* texel(Position at, const Type* texture, const std::string& pattern, Expressions operands,
                      bool isImplicit);

    Program& m_program;
    std::unordered_map<std::string, const Helper*> m_helpers;
};

} // namespace helvantine::hlsl
