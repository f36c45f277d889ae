// SPDX-License-Identifier: MIT
#include "shader/hlsl/Builder.h"

#include <algorithm>
#include <string>

namespace helvantine::hlsl
{

namespace
{

std::string quoted(std::string_view word)
{
    return "'" + std::string(word) + "'";
}

bool hasRepetition(const Expression& swizzle)
{
    for (uint32_t i = 0; i < swizzle.count; ++i)
        for (uint32_t j = 0; j < i; ++j)
            if (swizzle.components[i] == swizzle.components[j])
                return true;
    return false;
}

} // namespace

Expression* Builder::member(Position at, Expression* object, std::string_view name)
{
    const Type* type = object->type;
    if (type->isError())
        return object;
    if (type->isMatrix())
        return matrixSwizzle(at, object, name);
    if (type->isNumber())
        return swizzle(at, object, name);
    if (type->isStructure()) {
        if (const Field* field = type->structure->find(name)) {
            Expression* made = make(Expression::Kind::Member, at, field->type, {object});
            made->text = name;
            made->isAssignable = object->isAssignable;
            return made;
        }
    }
    if (type->isTexture() && (name == "mips" || name == "sample")) {
        Expression* made = make(Expression::Kind::Member, at, type, {object});
        made->text = name;
        return made;
    }
    fail(at, quoted(type->name()) + " has no member " + quoted(name));
    return error(at);
}

Expression* Builder::swizzle(Position at, Expression* object, std::string_view name)
{
    constexpr std::string_view sets[] = {"xyzw", "rgba"};
    const Type* type = object->type;
    std::array<uint8_t, 4> components{};
    const std::string_view set = sets[name.find_first_of(sets[1]) == name.npos ? 0 : 1];
    bool isKnown = !name.empty() && name.size() <= 4;
    for (size_t i = 0; isKnown && i < name.size(); ++i) {
        components[i] = uint8_t(set.find(name[i]));
        isKnown = set.find(name[i]) < type->columns;
    }
    if (!isKnown) {
        fail(at, quoted(type->name()) + " has no component " + quoted(name));
        return error(at);
    }
    const Type* result = types().vector(type->base, uint32_t(name.size()));
    if (object->value) {
        Value value{};
        for (size_t i = 0; i < name.size(); ++i)
            value[i] = (*object->value)[components[i]];
        return constant(at, result, value);
    }
    if (type->isScalar())
        return convertShape(object, result);
    Expression* made = make(Expression::Kind::Swizzle, at, result, {object});
    made->count = uint8_t(name.size());
    made->components = components;
    made->isAssignable = object->isAssignable && !hasRepetition(*made);
    return made;
}

/// "_m01_m10" counts rows and columns from 0, "_12_21" from 1.
Expression* Builder::matrixSwizzle(Position at, Expression* object, std::string_view name)
{
    const Type* type = object->type;
    const bool fromZero = name.starts_with("_m");
    const size_t length = fromZero ? 4 : 3;
    const size_t count = name.size() / length;
    std::array<uint8_t, 4> places{};
    bool isKnown = count >= 1 && count <= 4 && name.size() % length == 0;
    for (size_t i = 0; isKnown && i < count; ++i) {
        const std::string_view one = name.substr(i * length, length);
        const int row = one[length - 2] - (fromZero ? '0' : '1');
        const int column = one[length - 1] - (fromZero ? '0' : '1');
        isKnown = one[0] == '_' && (one[1] == 'm') == fromZero && row >= 0 && row < type->rows &&
                  column >= 0 && column < type->columns;
        places[i] = uint8_t(isKnown ? row * 4 + column : 0);
    }
    if (!isKnown) {
        fail(at, quoted(type->name()) + " has no component " + quoted(name));
        return error(at);
    }
    if (count == 1)
        return rowElement(object, places[0] / 4, places[0] % 4);
    const Type* result = types().vector(type->base, uint32_t(count));
    if (object->value) {
        Value value{};
        for (size_t i = 0; i < count; ++i)
            value[i] = (*object->value)[places[i] / 4 * type->columns + places[i] % 4];
        return constant(at, result, value);
    }
    Expression* made = make(Expression::Kind::MatrixSwizzle, at, result, {object});
    made->count = uint8_t(count);
    made->components = places;
    made->isAssignable = object->isAssignable && !hasRepetition(*made);
    std::string function = "get";
    std::string components;
    for (size_t i = 0; i < count; ++i) {
        function += std::to_string(places[i]);
        components += (i ? ", " : "") + rowOf(type, "a", places[i] / 4) +
                      (type->columns > 1 ? "[" + std::to_string(places[i] % 4) + "]" : "");
    }
    made->helper = define(function, result->spelling(), {object},
                          "return " + result->spelling() + "(" + components + ");");
    return made;
}

Expression* Builder::index(Position at, Expression* object, Expression* place)
{
    const Type* type = object->type;
    if (type->isError() || place->type->isError())
        return error(at);
    if (type->isTexture())
        return method(at, object, "[]", {place});
    if (type->isScalar() && place->value && place->type->isScalar() && (*place->value)[0] == 0)
        return object; // a vector of one component
    const bool isList = type->isArray() || type->kind == Type::Kind::StructuredBuffer;
    if (!isList && !type->isVector() && !type->isMatrix()) {
        fail(at, quoted(type->name()) + " has no elements");
        return error(at);
    }
    if (!place->type->isNumber() || place->type->components() != 1) {
        fail(at, "an index is one number, not " + quoted(place->type->name()));
        return error(at);
    }
    if (place->type->base != Base::Uint)
        place = convert(place, types().scalar(Base::Int));
    const uint32_t count = type->isArray() ? type->count : type->isMatrix() ? type->rows : type->columns;
    const bool hasEnd = type->kind != Type::Kind::StructuredBuffer && count > 0;
    if (hasEnd && place->value && (*place->value)[0] >= count) {
        fail(at, "index " + std::to_string(int32_t((*place->value)[0])) + " is outside of " +
                     quoted(type->name()));
        return error(at);
    }
    const Type* result = isList             ? type->element
                         : type->isMatrix() ? rowType(type)
                                            : types().scalar(type->base);
    if (object->value && place->value) {
        Value value{};
        for (uint32_t i = 0; i < result->components(); ++i)
            value[i] = (*object->value)[(*place->value)[0] * result->components() + i];
        return constant(at, result, value);
    }
    Expression* made = make(Expression::Kind::Index, at, result, {object, place});
    made->isAssignable = object->isAssignable;
    return made;
}

} // namespace helvantine::hlsl
