// SPDX-License-Identifier: MIT
#include "shader/hlsl/Builder.h"
#include "shader/hlsl/FunctionMaker.h"

#include <algorithm>
#include <string>
#include <utility>

namespace helvantine::hlsl
{

namespace
{

std::string quoted(std::string_view word)
{
    return "'" + std::string(word) + "'";
}

struct TextureShape
{
    uint32_t place;  ///< components of a place in it, with the element of an array
    uint32_t offset; ///< components of an offset in texels; 0: none can be given
    bool isMultisampled = false;
    bool isArray = false;
};

TextureShape shapeOf(TextureKind kind)
{
    switch (kind) {
    case TextureKind::Texture1D:
        return {1, 1};
    case TextureKind::Texture1DArray:
        return {2, 1, false, true};
    case TextureKind::Texture2D:
        return {2, 2};
    case TextureKind::Texture2DArray:
        return {3, 2, false, true};
    case TextureKind::Texture2DMS:
        return {2, 2, true};
    case TextureKind::Texture2DMSArray:
        return {3, 2, true, true};
    case TextureKind::Texture3D:
        return {3, 3};
    case TextureKind::TextureCube:
        return {3, 0};
    default:
        return {4, 0, false, true};
    }
}

/// What a method takes between the sampler and the offset.
struct Sampling
{
    std::string_view name;
    std::string_view extras; ///< f: a number, g: a gradient
    bool isComparison = false;
    bool isImplicit = false; ///< chooses its mip by derivatives
    bool isGather = false;
};

constexpr Sampling samplings[] = {
    {"Sample", "", false, true},
    {"SampleBias", "f", false, true},
    {"SampleLevel", "f"},
    {"SampleGrad", "gg"},
    {"SampleCmp", "f", true, true},
    {"SampleCmpLevelZero", "f", true},
    {"Gather", "", false, false, true},
    {"GatherRed", "", false, false, true},
    {"GatherGreen", "", false, false, true},
    {"GatherBlue", "", false, false, true},
    {"GatherAlpha", "", false, false, true},
    {"GatherCmp", "f", true, false, true},
    {"GatherCmpRed", "f", true, false, true},
    {"CalculateLevelOfDetail", "", false, true},
    {"CalculateLevelOfDetailUnclamped", "", false, true},
};

std::string callPattern(const std::string& before, size_t first, size_t count)
{
    std::string pattern = before + "(";
    for (size_t i = 0; i < count; ++i)
        pattern += (i ? ", $" : "$") + std::string(1, char('0' + first + i));
    return pattern + ")";
}

} // namespace

/// Texels come with four components; the type says how many of them count.
Expression* Builder::texel(Position at, const Type* texture, const std::string& pattern, Expressions operands,
                           bool isImplicit)
{
    const Type* full = types().vector(texture->element->base, 4);
    Expression* made = spelled(at, full, pattern, std::move(operands));
    made->isPixelOnly |= isImplicit;
    return convertShape(made, texture->element);
}

/// One method of a texture or buffer.
class MethodBuilder
{
public:
    MethodBuilder(Builder& builder, Position at, Expression* object, std::string_view name,
                  Expressions& arguments)
        : m_b(builder), m_at(at), m_object(object), m_name(name), m_arguments(arguments)
    {
    }

    Expression* texture()
    {
        const Type* type = m_object->type;
        const TextureShape shape = shapeOf(type->texture);
        if (m_object->kind == Expression::Kind::Member)
            return inner(shape);
        if (m_name == "[]")
            return element(m_object, 0, m_arguments[0], shape);
        if (m_name == "Load")
            return load(shape);
        if (m_name == "GetDimensions")
            return dimensions(shape);
        const auto* const found = std::ranges::find(samplings, m_name, &Sampling::name);
        if (found == std::end(samplings) || shape.isMultisampled)
            return unknown();
        return sample(*found, shape);
    }

    Expression* structuredBuffer()
    {
        if (m_name == "Load" && m_arguments.size() == 1)
            return m_b.index(m_at, m_object, m_arguments[0]);
        if (m_name == "GetDimensions")
            return sizes(2, 0);
        return unknown();
    }

    Expression* byteAddressBuffer()
    {
        if (m_name == "GetDimensions")
            return sizes(1, 0);
        const bool isLoad = m_name.starts_with("Load") && m_name.size() <= 5 && m_arguments.size() == 1;
        const char digit = m_name.size() == 5 ? m_name[4] : '1';
        if (!isLoad || digit < '1' || digit > '4' || m_name == "Load1")
            return unknown();
        Expression* place = m_b.implicit(m_arguments[0], number(Base::Uint));
        if (place->type->isError())
            return place;
        return m_b.spelled(m_at, m_b.types().vector(Base::Uint, uint32_t(digit - '0')),
                           "$0." + std::string(m_name) + "(int($1))", {m_object, place});
    }

private:
    const Type* number(Base base, uint32_t count = 1) { return m_b.types().vector(base, count); }

    Expression* unknown()
    {
        m_b.fail(m_at, quoted(m_object->type->name()) + " has no method " + quoted(m_name) +
                           (m_name.starts_with("Load") || m_name.starts_with("GetD") ? " with these arguments"
                                                                                     : ""));
        return m_b.error(m_at);
    }

    Expression* wrongCount()
    {
        m_b.fail(m_at, quoted(m_name) + " of " + quoted(m_object->type->name()) + " doesn't take " +
                           std::to_string(m_arguments.size()) + " arguments");
        return m_b.error(m_at);
    }

    /// texture[place], texture.mips[mip][place], texture.sample[sample][place]
    Expression* element(Expression* texture, Expression* mip, Expression* place, const TextureShape& shape)
    {
        place = m_b.implicit(place, number(Base::Uint, shape.place));
        mip = mip ? m_b.implicit(mip, number(Base::Int)) : m_b.integer(m_at, 0);
        if (place->type->isError() || mip->type->isError())
            return m_b.error(m_at);
        const std::string count = std::to_string(shape.place);
        if (shape.isMultisampled)
            return m_b.texel(m_at, texture->type, "$0.Load(int" + count + "($1), $2)", {texture, place, mip},
                             false);
        if (shape.offset == 0)
            return unknown();
        const std::string base = shape.place == 1 ? "int($1)" : "int" + count + "($1)";
        const std::string full = "int" + std::to_string(shape.place + 1);
        return m_b.texel(m_at, texture->type, "$0.Load(" + full + "(" + base + ", $2))",
                         {texture, place, mip}, false);
    }

    /// The second index of mips and sample; the first one is kept until it comes.
    Expression* inner(const TextureShape& shape)
    {
        const bool isSample = m_object->text == "sample";
        if (m_name != "[]" || isSample != shape.isMultisampled) {
            m_b.fail(m_at, quoted(m_object->type->name()) + " has no member " + quoted(m_object->text));
            return m_b.error(m_at);
        }
        if (m_object->operands.size() == 1) {
            Expression* kept = m_b.spelled(m_at, m_object->type, "", {m_object->operands[0], m_arguments[0]});
            kept->kind = Expression::Kind::Member;
            kept->text = m_object->text;
            return kept;
        }
        return element(m_object->operands[0], m_object->operands[1], m_arguments[0], shape);
    }

    Expression* load(const TextureShape& shape)
    {
        const size_t least = shape.isMultisampled ? 2 : 1;
        if (shape.offset == 0)
            return unknown();
        if (m_arguments.size() < least || m_arguments.size() > least + 1)
            return wrongCount();
        Expressions operands = {
            m_object,
            m_b.implicit(m_arguments[0], number(Base::Int, shape.place + (shape.isMultisampled ? 0 : 1)))};
        if (shape.isMultisampled)
            operands.push_back(m_b.implicit(m_arguments[1], number(Base::Int)));
        if (m_arguments.size() > least)
            operands.push_back(offset(m_arguments.back(), shape));
        if (hasError(operands))
            return m_b.error(m_at);
        return m_b.texel(m_at, m_object->type, callPattern("$0.Load", 1, operands.size() - 1), operands,
                         false);
    }

    Expression* offset(Expression* given, const TextureShape& shape)
    {
        Expression* made = m_b.implicit(given, number(Base::Int, shape.offset));
        if (made->value || made->type->isError() || m_name.starts_with("Gather"))
            return made;
        m_b.fail(given->at, "the offset of " + quoted(m_name) + " must be known while compiling");
        return m_b.error(given->at);
    }

    static bool hasError(const Expressions& operands)
    {
        return std::ranges::any_of(operands, [](const Expression* one) { return one->type->isError(); });
    }

    Expression* sample(const Sampling& sampling, const TextureShape& shape)
    {
        const bool isQuery = m_name.starts_with("Calculate");
        const size_t least = 2 + sampling.extras.size();
        const size_t most = least + (isQuery || shape.offset == 0 ? 0 : 1);
        const bool hasFourOffsets = sampling.isGather && !sampling.isComparison && m_name != "Gather" &&
                                    m_arguments.size() == least + 4;
        if (m_arguments.size() < least || (m_arguments.size() > most && !hasFourOffsets))
            return wrongCount();
        const Type* sampler = m_arguments[0]->type;
        if (!sampler->isSampler() || sampler->isComparison != sampling.isComparison) {
            m_b.fail(m_at, quoted(m_name) + " takes a " +
                               (sampling.isComparison ? "SamplerComparisonState" : "SamplerState") +
                               ", not " + quoted(sampler->name()));
            return m_b.error(m_at);
        }
        if (m_object->type->element->base != Base::Float && !sampling.isGather && !isQuery) {
            m_b.fail(m_at, quoted(m_object->type->name()) + " can't be filtered; use its method Load");
            return m_b.error(m_at);
        }
        const uint32_t gradient =
            isQuery || sampling.extras == "gg" ? shape.place - (shape.isArray ? 1 : 0) : shape.place;
        Expressions operands = {
            m_object, m_arguments[0],
            m_b.implicit(m_arguments[1], number(Base::Float, isQuery ? gradient : shape.place))};
        for (size_t i = 0; i < sampling.extras.size(); ++i)
            operands.push_back(m_b.implicit(m_arguments[2 + i],
                                            number(Base::Float, sampling.extras[i] == 'g' ? gradient : 1)));
        for (size_t i = least; i < m_arguments.size(); ++i)
            operands.push_back(offset(m_arguments[i], shape));
        if (hasError(operands))
            return m_b.error(m_at);
        return finishSample(sampling, isQuery, std::move(operands));
    }

    /// The compiler has no gathers of comparisons: see makeComparedGathers.
    static std::string comparedGather(size_t operands)
    {
        return std::string("$0.SampleCmpLevelZero($1, $2, asfloat(reversebits(reversebits(asuint($3))))") +
               (operands > 4 ? ", $4).xxxx" : ").xxxx");
    }

    Expression* finishSample(const Sampling& sampling, bool isQuery, Expressions operands)
    {
        const std::string pattern = sampling.isComparison && sampling.isGather
                                        ? comparedGather(operands.size())
                                        : callPattern("$0." + std::string(m_name), 1, operands.size() - 1);
        const bool givesNumber = isQuery || (sampling.isComparison && !sampling.isGather);
        if (!givesNumber && !sampling.isGather)
            return m_b.texel(m_at, m_object->type, pattern, std::move(operands), sampling.isImplicit);
        const Type* type = givesNumber             ? number(Base::Float)
                           : sampling.isComparison ? number(Base::Float, 4)
                                                   : number(m_object->type->element->base, 4);
        Expression* made = m_b.spelled(m_at, type, pattern, std::move(operands));
        made->isPixelOnly |= sampling.isImplicit;
        return made;
    }

    Expression* dimensions(const TextureShape& shape)
    {
        const bool isCube = shape.offset == 0;
        const size_t sizeCount = (isCube ? 2 : shape.offset) + (shape.isArray ? 1 : 0);
        const size_t results = sizeCount + (shape.isMultisampled ? 1 : 0);
        if (m_arguments.size() == results)
            return sizes(results, 0);
        if (m_arguments.size() == results + 2 && !shape.isMultisampled)
            return sizes(results + 1, 1);
        return wrongCount();
    }

    /// The results are uints; a function converts them to what the arguments are.
    Expression* sizes(size_t results, size_t inputs)
    {
        if (m_arguments.size() != results + inputs)
            return wrongCount();
        std::string parameters = m_object->type->spelling() + " t";
        std::string temporaries;
        std::string handed;
        std::string copies;
        std::string name = "size";
        for (size_t i = 0; i < m_arguments.size(); ++i) {
            const std::string n = std::to_string(i);
            if (i < inputs) {
                m_arguments[i] = m_b.implicit(m_arguments[i], number(Base::Uint));
            } else if (!m_b.isAssignable(m_arguments[i]->at, m_arguments[i])) {
                return m_b.error(m_at);
            } else if (!m_arguments[i]->type->isScalar() || m_arguments[i]->type->base == Base::Bool) {
                m_b.fail(m_arguments[i]->at,
                         "'GetDimensions' can't write to " + quoted(m_arguments[i]->type->name()));
                return m_b.error(m_at);
            }
            const std::string type = m_arguments[i]->type->spelling();
            parameters += (i < inputs ? ", " : ", out ") + type + " a" + n;
            handed += (i ? ", " : "") + std::string(i < inputs ? "a" : "u") + n;
            if (i >= inputs) {
                temporaries += "uint u" + n + "; ";
                copies += " a" + n + " = " + type + "(u" + n + ");";
            }
            name += "_" + type;
        }
        if (hasError(m_arguments))
            return m_b.error(m_at);
        Expressions operands = {m_object};
        operands.insert(operands.end(), m_arguments.begin(), m_arguments.end());
        const Helper* helper =
            m_b.defineText(name + "_" + m_object->type->spelling(), "void", parameters,
                           temporaries + "t.GetDimensions(" + handed + ");" + copies, {m_object->type});
        Expression* called = m_b.spelled(m_at, m_b.types().none(),
                                         callPattern(helper->name, 0, operands.size()), operands, helper);
        called->hasEffects = true;
        return called;
    }

    Builder& m_b;
    Position m_at;
    Expression* m_object;
    std::string_view m_name;
    Expressions& m_arguments;
};

namespace
{

/// An element of an array of textures or samplers, and which one isn't known while compiling.
bool isUnknownElement(const Expression& expression)
{
    return expression.kind == Expression::Kind::Index && expression.operands[0]->type->isArray() &&
           expression.type->isResource() && !expression.operands[1]->value;
}

} // namespace

bool Builder::refusesUnknownElement(const Expressions& arguments)
{
    for (const Expression* argument : arguments)
        if (isUnknownElement(*argument)) {
            fail(argument->at, "which element of '" + argument->operands[0]->symbol->name +
                                   "' is handed over must be known while compiling");
            return true;
        }
    return false;
}

/// A function asks all textures of the array, so that derivatives are those of the whole quad, and takes the answer of
/// the one that is meant.
Expression* Builder::chooseElement(Position at, Expression* object, std::string_view name,
                                   const Expressions& arguments)
{
    Expression* textures = object->operands[0];
    const auto ask = [&](uint32_t element, const Expressions& with) {
        return method(at, index(at, textures, integer(at, int32_t(element))), name, with);
    };
    const Expression* first = ask(0, arguments);
    if (!first->type->isNumber()) {
        if (!first->type->isError())
            refusesUnknownElement({object});
        return error(at);
    }
    FunctionMaker function(*this, at, first->type);
    Expression* place = function.parameter(object->operands[1]->type);
    Expressions handed;
    for (Expression* argument : arguments)
        handed.push_back(argument->value ? argument : function.parameter(argument->type));
    Expressions answers;
    for (uint32_t i = 0; i < textures->type->count; ++i)
        answers.push_back(function.local(first->type, ask(i, handed)));
    Expression* chosen = answers[0];
    for (uint32_t i = 1; i < answers.size(); ++i)
        chosen = conditional(at, binary(at, "==", place, integer(at, int32_t(i))), answers[i], chosen);
    function.giveBack(chosen);
    Expressions given = {object->operands[1]};
    for (Expression* argument : arguments)
        if (!argument->value)
            given.push_back(argument);
    return callFunction(at, *function.finish(), given);
}

Expression* Builder::method(Position at, Expression* object, std::string_view name, Expressions arguments)
{
    if (object->type->isError())
        return object;
    for (Expression* argument : arguments)
        if (argument->type->isError())
            return argument;
    if (refusesUnknownElement(arguments))
        return error(at);
    if (isUnknownElement(*object))
        return chooseElement(at, object, name, arguments);
    MethodBuilder builder(*this, at, object, name, arguments);
    switch (object->type->kind) {
    case Type::Kind::Texture:
        return builder.texture();
    case Type::Kind::StructuredBuffer:
        return builder.structuredBuffer();
    case Type::Kind::ByteAddressBuffer:
        return builder.byteAddressBuffer();
    default:
        fail(at, quoted(object->type->name()) + " has no method " + quoted(name));
        return error(at);
    }
}

} // namespace helvantine::hlsl
