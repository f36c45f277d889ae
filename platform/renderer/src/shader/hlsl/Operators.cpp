// SPDX-License-Identifier: MIT
#include "shader/hlsl/Builder.h"
#include "shader/hlsl/FunctionMaker.h"

#include <algorithm>
#include <string>

namespace helvantine::hlsl
{

namespace
{

bool isOneOf(std::string_view op, std::initializer_list<std::string_view> list)
{
    return std::ranges::find(list, op) != list.end();
}

std::string infix(std::string_view op)
{
    return "($0 " + std::string(op) + " $1)";
}

std::string quoted(std::string_view word)
{
    return "'" + std::string(word) + "'";
}

bool isErroneous(const Expression* expression)
{
    return expression->type->isError();
}

} // namespace

Expression* Builder::unary(Position at, std::string_view op, Expression* operand)
{
    if (isErroneous(operand))
        return operand;
    const Type* type = operand->type;
    if (!type->isNumber()) {
        fail(at, quoted(op) + " doesn't work on " + quoted(type->name()));
        return error(at);
    }
    if (op == "!")
        return componentwise(at, like(type, Base::Bool), "(!$0)", {convertBase(operand, Base::Bool)});
    if (op == "~" && type->base == Base::Float) {
        fail(at, "'~' works on whole numbers, not on " + quoted(type->name()));
        return error(at);
    }
    operand = type->base == Base::Bool ? convertBase(operand, Base::Int) : operand;
    return op == "+" ? operand : componentwise(at, operand->type, "(" + std::string(op) + "$0)", {operand});
}

/// The shape that an operation on both works in; null with words if there is none.
const Type* Builder::commonShape(Position at, const Type* left, const Type* right, std::string_view op)
{
    if (left->isScalar() || right->isScalar())
        return left->isScalar() ? right : left;
    const bool isLeftIn = left->rows <= right->rows && left->columns <= right->columns;
    const bool isRightIn = right->rows <= left->rows && right->columns <= left->columns;
    if (left->shape != right->shape) {
        const Type* matrix = left->isMatrix() ? left : right;
        const Type* vector = left->isMatrix() ? right : left;
        if (matrix->components() == vector->components())
            return matrix;
    } else if (isLeftIn || isRightIn) {
        const Type* common = isLeftIn ? left : right;
        const Type* larger = isLeftIn ? right : left;
        if (common->components() != larger->components())
            warn(at, quoted(larger->name()) + " is cut to " + quoted(like(common, larger->base)->name()) +
                         " by " + quoted(op));
        return common;
    }
    fail(at, quoted(op) + " can't work on " + quoted(left->name()) + " and " + quoted(right->name()) +
                 ": neither fits inside the other");
    return nullptr;
}

/// Shape and base at once, without words about what is cut.
Expression* Builder::toNumber(Expression* from, const Type* shape, Base base)
{
    return convert(from, like(shape, base));
}

Expression* Builder::binary(Position at, std::string_view op, Expression* left, Expression* right)
{
    if (isErroneous(left) || isErroneous(right))
        return isErroneous(left) ? left : right;
    if (!left->type->isNumber() || !right->type->isNumber()) {
        const Type* wrong = left->type->isNumber() ? right->type : left->type;
        fail(at, quoted(op) + " doesn't work on " + quoted(wrong->name()));
        return error(at);
    }
    if (isOneOf(op, {"&&", "||"}))
        return logical(at, op, left, right);
    if (isOneOf(op, {"&", "|", "^"}))
        return bitwise(at, op, left, right);
    if (isOneOf(op, {"<<", ">>"}))
        return shift(at, op, left, right);
    return arithmetic(at, op, left, right);
}

Expression* Builder::arithmetic(Position at, std::string_view op, Expression* left, Expression* right)
{
    const Type* shape = commonShape(at, left->type, right->type, op);
    if (!shape)
        return error(at);
    const bool isEquality = isOneOf(op, {"==", "!="});
    Base base = std::max(left->type->base, right->type->base);
    if (base == Base::Bool && !isEquality)
        base = Base::Int;
    left = toNumber(left, shape, base);
    right = toNumber(right, shape, base);
    const Type* type = like(shape, base);
    if (isEquality || isOneOf(op, {"<", ">", "<=", ">="}))
        return componentwise(at, like(shape, Base::Bool), infix(op), {left, right});
    if (isOneOf(op, {"/", "%"}))
        return division(at, op, type, left, right);
    return componentwise(at, type, infix(op), {left, right});
}

Expression* Builder::division(Position at, std::string_view op, const Type* type, Expression* left,
                              Expression* right)
{
    const bool isRest = op == "%";
    if (type->base == Base::Float)
        return componentwise(at, type, isRest ? "fmod" : infix(op), {left, right});
    const bool isSigned = type->base == Base::Int;
    bool isHarmless = right->value != nullptr;
    for (uint32_t i = 0; isHarmless && i < type->components(); ++i)
        isHarmless = (*right->value)[i] != 0 && (!isSigned || (*right->value)[i] != ~0U);
    if (isHarmless && !isRest)
        return componentwise(at, type, infix(op), {left, right});
    const std::string name = isSigned ? isRest ? "irem" : "idiv" : isRest ? "urem" : "udiv";
    return componentwise(at, type, isHarmless ? name + "Known" : name, {left, right});
}

/// Both sides are computed, as Direct3D does: where that makes a difference, a function takes them.
Expression* Builder::logical(Position at, std::string_view op, Expression* left, Expression* right)
{
    const Type* shape = commonShape(at, left->type, right->type, op);
    if (!shape)
        return error(at);
    left = toNumber(left, shape, Base::Bool);
    right = toNumber(right, shape, Base::Bool);
    const bool isByFunction = right->hasEffects || right->isPixelOnly;
    return componentwise(at, like(shape, Base::Bool), isByFunction ? (op == "&&" ? "and" : "or") : infix(op),
                         {left, right});
}

Expression* Builder::bitwise(Position at, std::string_view op, Expression* left, Expression* right)
{
    const Base base = std::max(left->type->base, right->type->base);
    if (base == Base::Float) {
        fail(at, quoted(op) + " works on whole numbers, not on " +
                     quoted((left->type->base == Base::Float ? left : right)->type->name()));
        return error(at);
    }
    const Type* shape = commonShape(at, left->type, right->type, op);
    if (!shape)
        return error(at);
    const Base used = base == Base::Bool ? Base::Int : base;
    return componentwise(at, like(shape, used), infix(op),
                         {toNumber(left, shape, used), toNumber(right, shape, used)});
}

/// Only the five low bits of the distance count.
Expression* Builder::shift(Position at, std::string_view op, Expression* left, Expression* right)
{
    if (left->type->base == Base::Float || right->type->base == Base::Float) {
        fail(at, quoted(op) + " works on whole numbers, not on " +
                     quoted((left->type->base == Base::Float ? left : right)->type->name()));
        return error(at);
    }
    const Type* shape = commonShape(at, left->type, right->type, op);
    if (!shape)
        return error(at);
    const Base base = left->type->base == Base::Bool ? Base::Int : left->type->base;
    left = toNumber(left, shape, base);
    right = toNumber(right, shape, base);
    Value mask{};
    mask.fill(31);
    right = componentwise(at, right->type, infix("&"), {right, constant(at, right->type, mask)});
    return componentwise(at, left->type, infix(op), {left, right});
}

Expression* Builder::conditional(Position at, Expression* condition, Expression* yes, Expression* no)
{
    for (Expression* one : {condition, yes, no})
        if (isErroneous(one))
            return one;
    if (!condition->type->isNumber()) {
        fail(at, "the condition of '?:' is a " + quoted(condition->type->name()));
        return error(at);
    }
    const bool hasNumbers = yes->type->isNumber() && no->type->isNumber();
    if (!hasNumbers && (yes->type != no->type || !condition->type->isScalar())) {
        fail(at,
             "'?:' can't choose between " + quoted(yes->type->name()) + " and " + quoted(no->type->name()));
        return error(at);
    }
    const Type* type = yes->type;
    if (hasNumbers) {
        const Type* shape = commonShape(at, yes->type, no->type, "?:");
        if (shape && !condition->type->isScalar())
            shape = commonShape(at, shape, condition->type, "?:");
        if (!shape)
            return error(at);
        type = like(shape, std::max(yes->type->base, no->type->base));
        yes = convert(yes, type);
        no = convert(no, type);
    }
    const bool isByComponent = !condition->type->isScalar();
    condition = isByComponent ? toNumber(condition, type, Base::Bool) : convertBase(condition, Base::Bool);
    if (condition->value && !isByComponent && !yes->hasEffects && !no->hasEffects)
        return (*condition->value)[0] ? yes : no;
    const std::string pattern = "($0 ? $1 : $2)";
    if (isByComponent && type->isMatrix())
        return componentwise(at, type, pattern, {condition, yes, no});
    const bool isByFunction = yes->hasEffects || no->hasEffects || yes->isPixelOnly || no->isPixelOnly ||
                              !type->isNumber() || type->isMatrix();
    if (!isByFunction)
        return spelled(at, type, pattern, {condition, yes, no});
    const Helper* helper =
        define("select", type->spelling(), {condition, yes, no},
               type->isNumber() && !type->isMatrix() ? "return a ? b : c;"
                                                     : type->spelling() + " r = c; if (a) r = b; return r;");
    return spelled(at, type, helper->name + "($0, $1, $2)", {condition, yes, no}, helper);
}

Expression* Builder::sequence(Position at, Expression* first, Expression* second)
{
    if (isErroneous(first) || isErroneous(second))
        return error(at);
    return spelled(at, second->type, "($0, $1)", {first, second});
}

bool Builder::isAssignable(Position at, Expression* target)
{
    if (target->isAssignable)
        return true;
    const Expression* root = target;
    while (!root->operands.empty() && root->kind != Expression::Kind::Spelled &&
           root->kind != Expression::Kind::Call)
        root = root->operands[0];
    if (root->symbol && root->symbol->kind == Symbol::Kind::Member)
        fail(at, quoted(root->symbol->name) + " is in a constant buffer and can't be written to");
    else if (root->symbol)
        fail(at, quoted(root->symbol->name) + " is const and can't be written to");
    else
        fail(at, "what stands here can't be written to");
    return false;
}

Expression* Builder::store(Position at, Expression* target, Expression* value)
{
    if (target->kind == Expression::Kind::MatrixSwizzle && target->count > 1) {
        Expression* matrix = target->operands[0];
        std::string body;
        for (uint32_t i = 0; i < target->count; ++i) {
            const uint32_t row = target->components[i] / 4;
            const uint32_t column = target->components[i] % 4;
            const std::string place = rowOf(matrix->type, "a", row) +
                                      (matrix->type->columns > 1 ? "[" + std::to_string(column) + "]" : "");
            body += place + " = b[" + std::to_string(i) + "]; ";
        }
        std::string name = "set";
        for (uint32_t i = 0; i < target->count; ++i)
            name += std::to_string(target->components[i]);
        const std::string of = matrix->type->spelling();
        const std::string with = value->type->spelling();
        const Helper* helper = defineText(name + "_" + of, with, "inout " + of + " a, " + with + " b",
                                          body + "return b;", {matrix->type});
        Expression* stored = spelled(at, value->type, helper->name + "($0, $1)", {matrix, value}, helper);
        stored->hasEffects = true;
        return stored;
    }
    Expression* stored = make(Expression::Kind::Assign, at, target->type, {target, value});
    stored->hasEffects = true;
    return stored;
}

Expression* Builder::assign(Position at, std::string_view op, Expression* target, Expression* value)
{
    if (isErroneous(target) || isErroneous(value))
        return error(at);
    if (!isAssignable(at, target))
        return error(at);
    if (op == "=")
        return store(at, target, implicit(value, target->type));
    if (target->hasEffects)
        return assignByFunction(at, op, target, value);
    Expression* result = binary(at, op.substr(0, op.size() - 1), target, value);
    if (isErroneous(result))
        return result;
    return store(at, target, implicit(result, target->type));
}

/// Computing the place twice would make a difference: a function is handed it once.
Expression* Builder::assignByFunction(Position at, std::string_view op, Expression* target, Expression* value)
{
    FunctionMaker function(*this, at, target->type);
    Expression* place = function.parameter(target->type, true, true);
    Expression* operand = function.parameter(value->type);
    Expression* assigned = assign(at, op, place, operand);
    if (isErroneous(assigned))
        return assigned;
    function.giveBack(assigned);
    return callFunction(at, *function.finish(), {target, value});
}

Expression* Builder::increment(Position at, std::string_view op, Expression* target, bool isPrefix)
{
    if (isErroneous(target) || !isAssignable(at, target))
        return error(at);
    const Type* type = target->type;
    if (!type->isNumber() || type->base == Base::Bool) {
        fail(at, quoted(op) + " doesn't work on " + quoted(type->name()));
        return error(at);
    }
    const bool isSwizzle = target->kind == Expression::Kind::MatrixSwizzle ||
                           (target->kind == Expression::Kind::Swizzle && target->count > 1);
    if (isPrefix && (type->isMatrix() || isSwizzle))
        return assign(at, op == "++" ? "+=" : "-=", target, integer(at, 1));
    if (type->isMatrix() || target->kind == Expression::Kind::MatrixSwizzle) {
        const bool isPart = target->kind == Expression::Kind::MatrixSwizzle;
        Expression* whole = isPart ? target->operands[0] : target;
        FunctionMaker function(*this, at, type);
        Expression* place = function.parameter(whole->type, true, true);
        if (isPart) {
            Expression* part = make(Expression::Kind::MatrixSwizzle, at, type, {place});
            part->count = target->count;
            part->components = target->components;
            part->helper = target->helper;
            part->isAssignable = true;
            place = part;
        }
        Expression* before = function.local(type, place);
        function.evaluate(assign(at, op == "++" ? "+=" : "-=", place, integer(at, 1)));
        function.giveBack(before);
        return bindArguments(at, *function.finish(), {whole}, false);
    }
    Expression* made =
        spelled(at, type, isPrefix ? "(" + std::string(op) + "$0)" : "($0" + std::string(op) + ")", {target});
    made->hasEffects = true;
    return made;
}

} // namespace helvantine::hlsl
