// SPDX-License-Identifier: MIT
#include "shader/hlsl/Intrinsics.h"

#include "shader/hlsl/Builder.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace helvantine::hlsl
{

namespace
{

std::string quoted(std::string_view word)
{
    return "'" + std::string(word) + "'";
}

} // namespace

/// One call of a function that the language brings along.
class IntrinsicBuilder
{
public:
    IntrinsicBuilder(Builder& builder, Position at, std::string_view name, Expressions& arguments)
        : m_b(builder), m_at(at), m_name(name), m_arguments(arguments)
    {
    }

    Expression* floats(); ///< by component, in float
    Expression* derivative();
    Expression* test();    ///< by component, to bool
    Expression* numbers(); ///< by component, in the base of the m_arguments
    Expression* sign();
    Expression* bits();
    Expression* reinterpret();
    Expression* halves();
    Expression* together(); ///< any, all
    Expression* dot();
    Expression* vectors(); ///< functions of whole vectors
    Expression* cross();
    Expression* mul();
    Expression* transpose();
    Expression* determinant();
    Expression* outputs(); ///< sincos, modf, frexp
    Expression* clip();
    Expression* lighting();
    Expression* color();
    Expression* refuse();

private:
    /// Brings all m_arguments to one shape; false with words if they don't go together.
    bool unify(Base base)
    {
        const Type* shape = m_arguments[0]->type;
        for (const Expression* argument : m_arguments)
            if (!(shape = m_b.commonShape(m_at, shape, argument->type, m_name)))
                return false;
        for (Expression*& argument : m_arguments)
            argument = m_b.toNumber(argument, shape, base);
        return true;
    }

    Base commonBase() const
    {
        Base base = Base::Bool;
        for (const Expression* argument : m_arguments)
            base = std::max(base, argument->type->base);
        return base == Base::Bool ? Base::Int : base;
    }

    bool unifyVectors(Base base)
    {
        for (Expression*& argument : m_arguments)
            if (argument->type->isMatrix()) {
                m_b.fail(m_at,
                         quoted(m_name) + " works on vectors, not on " + quoted(argument->type->name()));
                return false;
            }
        return unify(base);
    }

    std::string plainCall() const
    {
        std::string pattern = std::string(m_name) + "(";
        for (size_t i = 0; i < m_arguments.size(); ++i)
            pattern += (i ? ", $" : "$") + std::to_string(i);
        return pattern + ")";
    }

    Expression* product(Expression* left, Expression* right);
    Expression* productByFunction(Expression* left, Expression* right, uint32_t rows, uint32_t inner,
                                  uint32_t columns);

    Builder& m_b;
    Position m_at;
    std::string_view m_name;
    Expressions& m_arguments;
};

namespace
{

using Handler = Expression* (IntrinsicBuilder::*)();

struct Entry
{
    size_t arguments;
    Handler handler;
};

const std::unordered_map<std::string_view, Entry> intrinsics = [] {
    using I = IntrinsicBuilder;
    std::unordered_map<std::string_view, Entry> all;
    const auto add = [&all](Handler handler, size_t count, std::initializer_list<std::string_view> names) {
        for (std::string_view name : names)
            all[name] = {count, handler};
    };
    add(&I::floats, 1, {"acos",     "asin", "atan", "ceil",  "cos",  "cosh",    "degrees", "exp",   "exp2",
                        "floor",    "frac", "log",  "log10", "log2", "radians", "rcp",     "round", "rsqrt",
                        "saturate", "sin",  "sinh", "sqrt",  "tan",  "tanh",    "trunc"});
    add(&I::floats, 2, {"atan2", "fmod", "ldexp", "pow", "step"});
    add(&I::floats, 3, {"lerp", "smoothstep"});
    add(&I::derivative, 1, {"ddx", "ddy", "ddx_coarse", "ddy_coarse", "ddx_fine", "ddy_fine", "fwidth"});
    add(&I::test, 1, {"isnan", "isinf", "isfinite"});
    add(&I::numbers, 1, {"abs"});
    add(&I::numbers, 2, {"min", "max"});
    add(&I::numbers, 3, {"clamp", "mad"});
    add(&I::sign, 1, {"sign"});
    add(&I::bits, 1, {"countbits", "reversebits", "firstbithigh", "firstbitlow"});
    add(&I::reinterpret, 1, {"asfloat", "asint", "asuint"});
    add(&I::halves, 1, {"f16tof32", "f32tof16"});
    add(&I::together, 1, {"any", "all"});
    add(&I::dot, 2, {"dot"});
    add(&I::vectors, 1, {"length", "normalize"});
    add(&I::vectors, 2, {"distance", "reflect"});
    add(&I::vectors, 3, {"faceforward", "refract"});
    add(&I::cross, 2, {"cross"});
    add(&I::mul, 2, {"mul"});
    add(&I::transpose, 1, {"transpose"});
    add(&I::determinant, 1, {"determinant"});
    add(&I::outputs, 2, {"modf", "frexp"});
    add(&I::outputs, 3, {"sincos"});
    add(&I::clip, 1, {"clip"});
    add(&I::lighting, 3, {"lit"});
    add(&I::lighting, 2, {"dst"});
    add(&I::color, 1, {"D3DCOLORtoUBYTE4"});
    add(&I::refuse, 0,
        {"tex1D",
         "tex1Dbias",
         "tex1Dgrad",
         "tex1Dlod",
         "tex1Dproj",
         "tex2D",
         "tex2Dbias",
         "tex2Dgrad",
         "tex2Dlod",
         "tex2Dproj",
         "tex3D",
         "tex3Dbias",
         "tex3Dgrad",
         "tex3Dlod",
         "tex3Dproj",
         "texCUBE",
         "texCUBEbias",
         "texCUBEgrad",
         "texCUBElod",
         "texCUBEproj",
         "InterlockedAdd",
         "InterlockedAnd",
         "InterlockedCompareExchange",
         "InterlockedCompareStore",
         "InterlockedExchange",
         "InterlockedMax",
         "InterlockedMin",
         "InterlockedOr",
         "InterlockedXor",
         "AllMemoryBarrier",
         "AllMemoryBarrierWithGroupSync",
         "DeviceMemoryBarrier",
         "DeviceMemoryBarrierWithGroupSync",
         "GroupMemoryBarrier",
         "GroupMemoryBarrierWithGroupSync",
         "EvaluateAttributeAtCentroid",
         "EvaluateAttributeAtSample",
         "EvaluateAttributeSnapped",
         "GetRenderTargetSampleCount",
         "GetRenderTargetSamplePosition",
         "CheckAccessFullyMapped",
         "Process2DQuadTessFactorsAvg",
         "noise",
         "fma",
         "asdouble",
         "msad4",
         "abort",
         "errorf",
         "printf"});
    return all;
}();

} // namespace

bool isIntrinsic(std::string_view name)
{
    return intrinsics.contains(name);
}

Expression* Builder::intrinsic(Position at, std::string_view name, Expressions arguments)
{
    const Entry& entry = intrinsics.at(name);
    IntrinsicBuilder builder(*this, at, name, arguments);
    if (entry.handler == &IntrinsicBuilder::refuse)
        return builder.refuse();
    if (arguments.size() != entry.arguments) {
        fail(at, quoted(name) + " takes " + std::to_string(entry.arguments) +
                     (entry.arguments == 1 ? " argument" : " arguments") + ", not " +
                     std::to_string(arguments.size()));
        return error(at);
    }
    for (Expression* argument : arguments) {
        if (argument->type->isError())
            return argument;
        if (!argument->type->isNumber()) {
            fail(at, quoted(name) + " doesn't work on " + quoted(argument->type->name()));
            return error(at);
        }
    }
    return (builder.*entry.handler)();
}

Expression* IntrinsicBuilder::floats()
{
    if (!unify(Base::Float))
        return m_b.error(m_at);
    const bool isTemplate = m_name == "fmod" || m_name == "ldexp" || m_name == "step";
    return m_b.componentwise(m_at, m_arguments[0]->type, isTemplate ? std::string(m_name) : plainCall(),
                             m_arguments);
}

Expression* IntrinsicBuilder::derivative()
{
    Expression* made = floats();
    made->isPixelOnly = true;
    return made;
}

Expression* IntrinsicBuilder::test()
{
    if (!unify(Base::Float))
        return m_b.error(m_at);
    return m_b.componentwise(m_at, m_b.like(m_arguments[0]->type, Base::Bool), std::string(m_name),
                             m_arguments);
}

Expression* IntrinsicBuilder::numbers()
{
    const Base base = commonBase();
    if (!unify(base))
        return m_b.error(m_at);
    if (m_name == "abs" && base == Base::Uint)
        return m_arguments[0];
    std::string operation = plainCall();
    if (m_name == "clamp")
        operation = base == Base::Float ? "clampFloat" : base == Base::Int ? "clampInt" : "clampUint";
    if (m_name == "mad")
        operation = base == Base::Float ? "mad" : base == Base::Int ? "madInt" : "madUint";
    return m_b.componentwise(m_at, m_arguments[0]->type, operation, m_arguments);
}

Expression* IntrinsicBuilder::sign()
{
    const bool isFloat = m_arguments[0]->type->base == Base::Float;
    m_arguments[0] = isFloat ? m_arguments[0] : m_b.convertBase(m_arguments[0], Base::Int);
    return m_b.componentwise(m_at, m_b.like(m_arguments[0]->type, Base::Int),
                             isFloat ? "signFloat" : "signInt", m_arguments);
}

Expression* IntrinsicBuilder::bits()
{
    const Base base = m_arguments[0]->type->base;
    const bool keepsSign = m_name == "firstbithigh" && base == Base::Int;
    if (base == Base::Float || base == Base::Bool)
        m_arguments[0] = m_b.convertBase(m_arguments[0], Base::Uint);
    else if (!keepsSign && base == Base::Int) // the same bits, without a sign
        m_arguments[0] = m_b.componentwise(m_at, m_b.like(m_arguments[0]->type, Base::Uint), "asuint($0)",
                                           {m_arguments[0]});
    const Type* type = m_b.like(m_arguments[0]->type, Base::Uint);
    return m_b.componentwise(m_at, type, "$T(" + plainCall() + ")", m_arguments);
}

Expression* IntrinsicBuilder::reinterpret()
{
    const Base base = m_name == "asfloat" ? Base::Float : m_name == "asint" ? Base::Int : Base::Uint;
    if (m_arguments[0]->type->base == Base::Bool)
        m_arguments[0] = m_b.convertBase(m_arguments[0], Base::Int);
    const Type* from = m_arguments[0]->type;
    if (from->base == base)
        return m_arguments[0];
    const bool isWhole = from->base != Base::Float && base != Base::Float;
    return m_b.componentwise(m_at, m_b.like(from, base), isWhole ? "$T($0)" : plainCall(), m_arguments);
}

Expression* IntrinsicBuilder::halves()
{
    const bool isWidening = m_name == "f16tof32";
    m_arguments[0] = m_b.convertBase(m_arguments[0], isWidening ? Base::Uint : Base::Float);
    const Type* type = m_b.like(m_arguments[0]->type, isWidening ? Base::Float : Base::Uint);
    return m_b.componentwise(m_at, type, plainCall(), m_arguments);
}

Expression* IntrinsicBuilder::together()
{
    const Type* type = m_arguments[0]->type;
    const Type* result = m_b.types().scalar(Base::Bool);
    if (Expression* known = m_b.fold(m_at, result, std::string(m_name), m_arguments))
        return known;
    Expression* set = m_b.convertBase(m_arguments[0], Base::Bool);
    if (type->isScalar())
        return set;
    if (type->isVector())
        return m_b.spelled(m_at, result, plainCall(), {set});
    std::string body;
    for (uint32_t row = 0; row < type->rows; ++row) {
        const std::string one = "a.r[" + std::to_string(row) + "]";
        body += (row ? m_name == "any" ? " || " : " && " : "") +
                (type->columns > 1 ? std::string(m_name) + "(" + one + ")" : one);
    }
    const Helper* helper = m_b.define(std::string(m_name), "bool", {set}, "return " + body + ";");
    return m_b.spelled(m_at, result, helper->name + "($0)", {set}, helper);
}

Expression* IntrinsicBuilder::dot()
{
    const Base base = commonBase();
    if (!unifyVectors(base))
        return m_b.error(m_at);
    const Type* type = m_arguments[0]->type;
    const Type* result = m_b.types().scalar(base);
    if (type->isScalar())
        return m_b.componentwise(m_at, type, "($0 * $1)", m_arguments);
    if (Expression* known = m_b.fold(m_at, result, "dot", m_arguments))
        return known;
    if (base == Base::Float)
        return m_b.spelled(m_at, result, "dot($0, $1)", m_arguments);
    std::string sum;
    for (uint32_t i = 0; i < type->columns; ++i)
        sum += (i ? " + a[" : "a[") + std::to_string(i) + "] * b[" + std::to_string(i) + "]";
    const Helper* helper = m_b.define("dot", result->spelling(), m_arguments, "return " + sum + ";");
    return m_b.spelled(m_at, result, helper->name + "($0, $1)", m_arguments, helper);
}

Expression* IntrinsicBuilder::vectors()
{
    Expression* index = nullptr;
    if (m_name == "refract") { // its last argument is one number
        index = m_b.implicit(m_arguments[2], m_b.types().scalar(Base::Float));
        m_arguments.pop_back();
    }
    if (!unifyVectors(Base::Float) || (index && index->type->isError()))
        return m_b.error(m_at);
    const Type* type = m_arguments[0]->type;
    if (index)
        m_arguments.push_back(index);
    const bool givesNumber = m_name == "length" || m_name == "distance";
    if (type->isVector())
        return m_b.spelled(m_at, givesNumber ? m_b.types().scalar(Base::Float) : type, plainCall(),
                           m_arguments);
    if (m_name == "length")
        return m_b.componentwise(m_at, type, "abs($0)", m_arguments);
    if (m_name == "distance")
        return m_b.componentwise(m_at, type, "abs($0)",
                                 {m_b.componentwise(m_at, type, "($0 - $1)", m_arguments)});
    return m_b.componentwise(m_at, type, std::string(m_name) + "Scalar", m_arguments);
}

Expression* IntrinsicBuilder::cross()
{
    const Type* type = m_b.types().vector(Base::Float, 3);
    for (Expression*& argument : m_arguments)
        argument = m_b.implicit(argument, type);
    return m_arguments[0]->type->isError() || m_arguments[1]->type->isError()
               ? m_b.error(m_at)
               : m_b.spelled(m_at, type, plainCall(), m_arguments);
}

Expression* IntrinsicBuilder::mul()
{
    Expression* left = m_arguments[0];
    Expression* right = m_arguments[1];
    if (left->type->isScalar() || right->type->isScalar())
        return m_b.arithmetic(m_at, "*", left, right);
    if (left->type->isVector() && right->type->isVector()) {
        m_name = "dot";
        return dot();
    }
    return product(left, right);
}

/// A vector is a row on the left and a column on the right.
Expression* IntrinsicBuilder::product(Expression* left, Expression* right)
{
    const Base base = commonBase();
    left = m_b.convertBase(left, base);
    right = m_b.convertBase(right, base);
    const uint32_t leftInner = left->type->columns;
    const uint32_t rightInner = right->type->isVector() ? right->type->columns : right->type->rows;
    const uint32_t inner = std::min(leftInner, rightInner);
    if (leftInner != rightInner) {
        const bool isLeft = leftInner > rightInner;
        Expression*& cut = isLeft ? left : right;
        const Type* to = cut->type->isVector() ? m_b.types().vector(base, inner)
                         : isLeft              ? m_b.types().matrix(base, cut->type->rows, inner)
                                               : m_b.types().matrix(base, inner, cut->type->columns);
        m_b.warn(m_at, quoted(cut->type->name()) + " is cut to " + quoted(to->name()) + " by 'mul'");
        cut = m_b.convert(cut, to);
    }
    const uint32_t rows = left->type->isVector() ? 1 : left->type->rows;
    const uint32_t columns = right->type->isVector() ? 1 : right->type->columns;
    const bool isNative = base == Base::Float && !left->type->isRowsMatrix() &&
                          !right->type->isRowsMatrix() && (rows > 1 || left->type->isVector()) &&
                          (columns > 1 || right->type->isVector());
    if (!isNative)
        return productByFunction(left, right, rows, inner, columns);
    const Type* type = left->type->isVector()    ? m_b.types().vector(base, columns)
                       : right->type->isVector() ? m_b.types().vector(base, rows)
                                                 : m_b.types().matrix(base, rows, columns);
    return m_b.spelled(m_at, type, "mul($0, $1)", {left, right});
}

Expression* IntrinsicBuilder::productByFunction(Expression* left, Expression* right, uint32_t rows,
                                                uint32_t inner, uint32_t columns)
{
    const auto element = [this](const Type* type, const std::string& operand, uint32_t row, uint32_t column) {
        if (type->isVector())
            return operand + "[" + std::to_string(std::max(row, column)) + "]";
        const std::string line = m_b.rowOf(type, operand, row);
        return type->columns == 1 ? line : line + "[" + std::to_string(column) + "]";
    };
    std::string components;
    for (uint32_t row = 0; row < rows; ++row)
        for (uint32_t column = 0; column < columns; ++column) {
            components += components.empty() ? "" : ", ";
            for (uint32_t i = 0; i < inner; ++i)
                components += (i ? " + " : "") + element(left->type, "a", row, i) + " * " +
                              element(right->type, "b", i, column);
        }
    const Base base = left->type->base;
    const Type* type = left->type->isVector()    ? m_b.types().vector(base, columns)
                       : right->type->isVector() ? m_b.types().vector(base, rows)
                                                 : m_b.types().matrix(base, rows, columns);
    std::vector<const Helper*> uses;
    std::string maker = type->spelling();
    if (type->isRowsMatrix()) {
        uses.push_back(m_b.instantiate("make", type));
        maker = uses[0]->name;
    }
    const Helper* helper =
        m_b.define("mul", type->spelling(), {left, right}, "return " + maker + "(" + components + ");", uses);
    return m_b.spelled(m_at, type, helper->name + "($0, $1)", {left, right}, helper);
}

Expression* IntrinsicBuilder::transpose()
{
    const Type* from = m_arguments[0]->type;
    if (!from->isMatrix()) {
        m_b.fail(m_at, "'transpose' works on matrices, not on " + quoted(from->name()));
        return m_b.error(m_at);
    }
    const Type* type = m_b.types().matrix(from->base, from->columns, from->rows);
    if (!from->isRowsMatrix())
        return m_b.spelled(m_at, type, plainCall(), m_arguments);
    std::string components;
    for (uint32_t row = 0; row < from->columns; ++row)
        for (uint32_t column = 0; column < from->rows; ++column)
            components += (components.empty() ? "" : ", ") + m_b.rowOf(from, "a", column) +
                          (from->columns > 1 ? "[" + std::to_string(row) + "]" : "");
    const Helper* maker = m_b.instantiate("make", type);
    const Helper* helper = m_b.define("transpose", type->spelling(), m_arguments,
                                      "return " + maker->name + "(" + components + ");", {maker});
    return m_b.spelled(m_at, type, helper->name + "($0)", m_arguments, helper);
}

Expression* IntrinsicBuilder::determinant()
{
    m_arguments[0] = m_b.convertBase(m_arguments[0], Base::Float);
    const Type* type = m_arguments[0]->type;
    if (!type->isMatrix() || type->rows != type->columns) {
        m_b.fail(m_at, "'determinant' works on square matrices, not on " + quoted(type->name()));
        return m_b.error(m_at);
    }
    if (type->rows == 1)
        return m_b.component(m_arguments[0], 0);
    return m_b.spelled(m_at, m_b.types().scalar(Base::Float), plainCall(), m_arguments);
}

Expression* IntrinsicBuilder::outputs()
{
    m_arguments[0] = m_b.convertBase(m_arguments[0], Base::Float);
    const Type* type = m_arguments[0]->type;
    const bool isWhole = m_name == "modf" && m_arguments[1]->type == m_b.like(type, Base::Int);
    for (size_t i = 1; i < m_arguments.size(); ++i) {
        if (!m_b.isAssignable(m_arguments[i]->at, m_arguments[i]))
            return m_b.error(m_at);
        if ((m_arguments[i]->type != type && !isWhole) || type->isMatrix()) {
            m_b.fail(m_arguments[i]->at, quoted(m_name) + " of " + quoted(type->name()) + " can't write to " +
                                             quoted(m_arguments[i]->type->name()));
            return m_b.error(m_at);
        }
    }
    const Helper* helper = m_b.instantiate(isWhole ? "modfInt" : std::string(m_name), type);
    const std::string pattern = helper->name + (m_arguments.size() == 3 ? "($0, $1, $2)" : "($0, $1)");
    Expression* made =
        m_b.spelled(m_at, m_name == "sincos" ? m_b.types().none() : type, pattern, m_arguments, helper);
    made->hasEffects = true;
    return made;
}

Expression* IntrinsicBuilder::clip()
{
    m_arguments[0] = m_b.convertBase(m_arguments[0], Base::Float);
    const Type* type = m_arguments[0]->type;
    if (type->isMatrix()) {
        m_b.fail(m_at, "'clip' of a matrix isn't supported");
        return m_b.error(m_at);
    }
    const Helper* helper =
        m_b.define("clip", "void", m_arguments,
                   type->isScalar() ? "if (a < 0.0) discard;"
                                    : "if (any(a < (" + type->spelling() + ")(0.0))) discard;");
    Expression* made = m_b.spelled(m_at, m_b.types().none(), helper->name + "($0)", m_arguments, helper);
    made->hasEffects = true;
    made->isPixelOnly = true;
    return made;
}

Expression* IntrinsicBuilder::lighting()
{
    const bool isLit = m_name == "lit";
    const Type* result = m_b.types().vector(Base::Float, 4);
    for (Expression*& argument : m_arguments) {
        argument = m_b.implicit(argument, isLit ? m_b.types().scalar(Base::Float) : result);
        if (argument->type->isError())
            return argument;
    }
    const Helper* helper = m_b.instantiate(std::string(m_name), m_b.types().scalar(Base::Float));
    return m_b.spelled(m_at, result, helper->name + (isLit ? "($0, $1, $2)" : "($0, $1)"), m_arguments,
                       helper);
}

Expression* IntrinsicBuilder::color()
{
    Expression* value = m_b.implicit(m_arguments[0], m_b.types().vector(Base::Float, 4));
    if (value->type->isError())
        return value;
    Expression* swapped = m_b.member(m_at, value, "zyxw");
    return m_b.convertBase(m_b.arithmetic(m_at, "*", swapped, m_b.fill(m_at, value->type, 255.001953f)),
                           Base::Int);
}

Expression* IntrinsicBuilder::refuse()
{
    std::string words = " isn't supported";
    if (m_name.starts_with("tex"))
        words = " is of shader model 3; use a texture and its method Sample";
    else if (m_name.starts_with("Interlocked") || m_name.find("Barrier") != m_name.npos)
        words = " is for compute programs, which aren't supported";
    else if (m_name == "fma")
        words = " works on double, which isn't supported; use mad";
    else if (m_name == "asdouble")
        words = " gives double, which isn't supported";
    m_b.fail(m_at, quoted(m_name) + words);
    return m_b.error(m_at);
}

} // namespace helvantine::hlsl
