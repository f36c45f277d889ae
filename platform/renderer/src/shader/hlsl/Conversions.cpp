// SPDX-License-Identifier: MIT
#include "shader/hlsl/Builder.h"

#include "shader/hlsl/Folding.h"
#include "shader/hlsl/FunctionMaker.h"

#include <algorithm>
#include <string>

namespace helvantine::hlsl
{

namespace
{

constexpr uint32_t maxCastSize = 1 << 16; ///< components; more than all registers hold

std::string quoted(const Type* type)
{
    return "'" + type->name() + "'";
}

/// Can the number be made one of the other shape, and what does that lose?
enum class Fit
{
    Same,
    Filled, ///< a scalar becomes every component
    Cut,
    None
};

Fit fitOf(const Type& from, const Type& to)
{
    if (from.shape == to.shape && from.rows == to.rows && from.columns == to.columns)
        return Fit::Same;
    if (from.isScalar())
        return Fit::Filled;
    if (to.isScalar())
        return from.components() == 1 ? Fit::Same : Fit::Cut;
    if (from.shape == to.shape)
        return to.rows <= from.rows && to.columns <= from.columns ? Fit::Cut : Fit::None;
    if (from.components() == to.components())
        return Fit::Same;
    const bool isRow =
        from.isMatrix() ? from.rows == 1 || from.columns == 1 : to.rows == 1 || to.columns == 1;
    return isRow && from.components() > to.components() ? Fit::Cut : Fit::None;
}

} // namespace

Expression* Builder::convertBase(Expression* from, Base base)
{
    const Type* type = from->type;
    if (type->base == base)
        return from;
    const Type* to = like(type, base);
    if (from->value) {
        Value value{};
        for (uint32_t i = 0; i < type->components(); ++i)
            value[i] = convertBits((*from->value)[i], type->base, base);
        return constant(from->at, to, value);
    }
    if (base == Base::Bool)
        return componentwise(from->at, to, "($0 != $1)", {from, fill(from->at, type, 0)});
    if (type->base == Base::Float)
        return componentwise(from->at, to, base == Base::Int ? "toInt" : "toUint", {from});
    return componentwise(from->at, to, "$T($0)", {from});
}

/// Fills or cuts; the base stays.
Expression* Builder::convertShape(Expression* from, const Type* to)
{
    const Type* type = from->type;
    if (type == to)
        return from;
    const auto source = [&](uint32_t i) -> uint32_t {
        if (type->isScalar())
            return 0;
        if (type->isMatrix() && to->isMatrix())
            return i / to->columns * type->columns + i % to->columns;
        return i;
    };
    if (from->value) {
        Value value{};
        for (uint32_t i = 0; i < to->components(); ++i)
            value[i] = (*from->value)[source(i)];
        return constant(from->at, to, value);
    }
    if (type->isScalar() && to->isVector())
        return spelled(from->at, to, "((" + to->spelling() + ")$0)", {from});
    if (type->isVector() && !to->isMatrix())
        return member(from->at, from, std::string_view("xyzw").substr(0, to->columns));
    if (type->isMatrix() && to->isScalar())
        return rowElement(from, 0, 0);
    const auto component = [&](uint32_t i) -> std::string {
        if (type->isScalar())
            return "a";
        if (type->isVector())
            return "a[" + std::to_string(i) + "]";
        const std::string row = rowOf(type, "a", i / type->columns);
        return type->columns == 1 ? row : row + "[" + std::to_string(i % type->columns) + "]";
    };
    std::string components;
    for (uint32_t i = 0; i < to->components(); ++i)
        components += (i ? ", " : "") + component(source(i));
    std::vector<const Helper*> uses;
    std::string maker = to->spelling();
    if (to->isRowsMatrix()) {
        uses.push_back(instantiate("make", to));
        maker = uses[0]->name;
    }
    const Helper* helper = define("to_" + to->spelling(), to->spelling(), {from},
                                  "return " + maker + "(" + components + ");", uses);
    return spelled(from->at, to, helper->name + "($0)", {from}, helper);
}

Expression* Builder::convert(Expression* from, const Type* to)
{
    return convertShape(convertBase(from, to->base), to);
}

int Builder::distance(const Type* from, const Type* to) const
{
    if (from == to || from->isError() || to->isError())
        return 0;
    if (!from->isNumber() || !to->isNumber())
        return -1;
    const Fit fit = fitOf(*from, *to);
    if (fit == Fit::None)
        return -1;
    const int steps = int(to->base) - int(from->base);
    const int base = to->base == Base::Bool && steps != 0 ? 7 : steps >= 0 ? steps : 3 - steps;
    return base + (fit == Fit::Filled ? 8 : fit == Fit::Cut ? 64 : from->shape == to->shape ? 0 : 4);
}

Expression* Builder::implicit(Expression* from, const Type* to)
{
    if (from->type == to || from->type->isError())
        return from;
    if (to->isError())
        return error(from->at);
    if (distance(from->type, to) < 0) {
        fail(from->at, quoted(from->type) + " doesn't convert to " + quoted(to));
        return error(from->at);
    }
    if (fitOf(*from->type, *to) == Fit::Cut)
        warn(from->at, quoted(from->type) + " is cut to " + quoted(to));
    return convert(from, to);
}

Expression* Builder::cast(Position at, const Type* to, Expression* from)
{
    if (from->type == to || from->type->isError())
        return from;
    if (to->isNumber() && from->type->isNumber() && fitOf(*from->type, *to) != Fit::None)
        return convert(from, to);
    const uint32_t wanted = countComponents(*to);
    const uint32_t given = countComponents(*from->type);
    if (wanted == 0 || given == 0 || (given < wanted && given != 1) || wanted > maxCastSize) {
        fail(at, quoted(from->type) + " can't be cast to " + quoted(to));
        return error(at);
    }
    if (to->isArray()) {
        fail(at, "casts to arrays aren't supported");
        return error(at);
    }
    // A function hands the components over one by one.
    FunctionMaker function(*this, at, to);
    Expression* source = function.parameter(from->type);
    const Expressions components(given == 1 ? wanted : 1, source);
    const size_t errorsBefore = m_program.errors.size();
    const Type* result = to;
    Expression* value =
        to->isStructure() ? initialize(at, result, list(at, components)) : construct(at, to, components);
    if (m_program.errors.size() != errorsBefore)
        return error(at);
    function.giveBack(function.local(to, value));
    return callFunction(at, *function.finish(), {from});
}

Expression* Builder::condition(Expression* from)
{
    if (from->type->isError())
        return from;
    if (!from->type->isNumber() || from->type->components() != 1) {
        fail(from->at, "a condition is one bool, not " + quoted(from->type) +
                           (from->type->isNumber() ? "; use any or all" : ""));
        return error(from->at);
    }
    return convert(from, types().scalar(Base::Bool));
}

} // namespace helvantine::hlsl
