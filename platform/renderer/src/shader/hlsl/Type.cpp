// SPDX-License-Identifier: MIT
#include "shader/hlsl/Type.h"

#include "shader/hlsl/Names.h"

#include <algorithm>
#include <array>
#include <limits>

namespace helvantine::hlsl
{

namespace
{

const char* baseName(Base base)
{
    static constexpr const char* names[] = {"bool", "int", "uint", "float"};
    return names[size_t(base)];
}

const char* textureName(TextureKind kind)
{
    static constexpr const char* names[] = {"Texture1D",      "Texture1DArray", "Texture2D",
                                            "Texture2DArray", "Texture2DMS",    "Texture2DMSArray",
                                            "Texture3D",      "TextureCube",    "TextureCubeArray"};
    return names[size_t(kind)];
}

std::string numberName(const Type& type)
{
    const std::string name = baseName(type.base);
    if (type.shape == Shape::Scalar)
        return name;
    if (type.shape == Shape::Vector)
        return name + std::to_string(type.columns);
    return name + std::to_string(type.rows) + "x" + std::to_string(type.columns);
}

} // namespace

bool Type::isResource() const
{
    if (kind == Kind::Array)
        return element->isResource();
    return kind == Kind::Texture || kind == Kind::Sampler || kind == Kind::StructuredBuffer ||
           kind == Kind::ByteAddressBuffer;
}

std::string Type::name() const
{
    switch (kind) {
    case Kind::Void:
        return "void";
    case Kind::Number:
        return numberName(*this);
    case Kind::Structure:
        return structure->name;
    case Kind::Array: {
        const Type* inner = this;
        while (inner->kind == Kind::Array)
            inner = inner->element;
        return inner->name() + dimensions();
    }
    case Kind::Texture:
        return std::string(textureName(texture)) + "<" + element->name() + ">";
    case Kind::Sampler:
        return isComparison ? "SamplerComparisonState" : "SamplerState";
    case Kind::StructuredBuffer:
        return "StructuredBuffer<" + element->name() + ">";
    case Kind::ByteAddressBuffer:
        return "ByteAddressBuffer";
    default:
        return "?";
    }
}

std::string Type::spelling() const
{
    switch (kind) {
    case Kind::Number:
        return isRowsMatrix() ? helperPrefix + numberName(*this) : numberName(*this);
    case Kind::Structure:
        return structure->spelling;
    case Kind::Array:
        return element->spelling();
    case Kind::Texture: // texels always have four components, of which the caller takes what it wants
        return std::string(textureName(texture)) + "<" + baseName(element->base) + "4>";
    case Kind::StructuredBuffer:
        return "StructuredBuffer<" + element->spelling() + ">";
    default:
        return name();
    }
}

std::string Type::dimensions() const
{
    std::string text;
    for (const Type* inner = this; inner->kind == Kind::Array; inner = inner->element)
        text += "[" + (inner->count ? std::to_string(inner->count) : "") + "]";
    return text;
}

const Field* Structure::find(std::string_view wanted) const
{
    const auto found = std::ranges::find(fields, wanted, &Field::name);
    return found == fields.end() ? nullptr : &*found;
}

TypeTable::TypeTable()
{
    m_types.emplace_back();
    m_types.emplace_back().kind = Type::Kind::Void;
}

const Type* TypeTable::intern(const Type& type)
{
    const auto same = [&type](const Type& one) {
        return one.kind == type.kind && one.base == type.base && one.shape == type.shape &&
               one.rows == type.rows && one.columns == type.columns &&
               one.isComparison == type.isComparison && one.texture == type.texture &&
               one.count == type.count && one.element == type.element && one.structure == type.structure;
    };
    const auto found = std::find_if(m_types.begin(), m_types.end(), same);
    return found != m_types.end() ? &*found : &m_types.emplace_back(type);
}

const Type* TypeTable::number(Base base, Shape shape, uint32_t rows, uint32_t columns)
{
    Type type;
    type.kind = Type::Kind::Number;
    type.base = base;
    type.shape = shape;
    type.rows = uint8_t(rows);
    type.columns = uint8_t(columns);
    return intern(type);
}

const Type* TypeTable::vector(Base base, uint32_t count)
{
    return count == 1 ? scalar(base) : number(base, Shape::Vector, 1, count);
}

const Type* TypeTable::matrix(Base base, uint32_t rows, uint32_t columns)
{
    return number(base, Shape::Matrix, rows, columns);
}

const Type* TypeTable::array(const Type* element, uint32_t count)
{
    Type type;
    type.kind = Type::Kind::Array;
    type.element = element;
    type.count = count;
    return intern(type);
}

const Type* TypeTable::structure(const Structure* structure)
{
    Type type;
    type.kind = Type::Kind::Structure;
    type.structure = structure;
    return intern(type);
}

const Type* TypeTable::texture(TextureKind kind, const Type* texel)
{
    Type type;
    type.kind = Type::Kind::Texture;
    type.texture = kind;
    type.element = texel;
    return intern(type);
}

const Type* TypeTable::sampler(bool isComparison)
{
    Type type;
    type.kind = Type::Kind::Sampler;
    type.isComparison = isComparison;
    return intern(type);
}

const Type* TypeTable::structuredBuffer(const Type* element)
{
    Type type;
    type.kind = Type::Kind::StructuredBuffer;
    type.element = element;
    return intern(type);
}

const Type* TypeTable::byteAddressBuffer()
{
    Type type;
    type.kind = Type::Kind::ByteAddressBuffer;
    return intern(type);
}

const Type* TypeTable::withBase(const Type* type, Base base)
{
    return type->isNumber() ? number(base, type->shape, type->rows, type->columns) : error();
}

bool holdsRowsMatrix(const Type& type)
{
    if (type.isStructure())
        return std::ranges::any_of(type.structure->fields,
                                   [](const Field& field) { return holdsRowsMatrix(*field.type); });
    return type.element ? holdsRowsMatrix(*type.element) : type.isRowsMatrix();
}

uint32_t countComponents(const Type& type)
{
    uint64_t count = 0;
    if (type.isNumber()) {
        count = type.components();
    } else if (type.isArray()) {
        count = uint64_t(countComponents(*type.element)) * type.count;
    } else if (type.isStructure()) {
        for (const Field& field : type.structure->fields) {
            const uint32_t inner = countComponents(*field.type);
            if (inner == 0)
                return 0;
            count += inner;
        }
    }
    return uint32_t(std::min<uint64_t>(count, std::numeric_limits<uint32_t>::max()));
}

} // namespace helvantine::hlsl
