// SPDX-License-Identifier: MIT
#pragma once

#include "shader/hlsl/Lexer.h"

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace helvantine::hlsl
{

struct Structure;

/// In the order of conversions: of two, an operation takes the later one.
enum class Base : uint8_t
{
    Bool,
    Int,
    Uint,
    Float
};

enum class Shape : uint8_t
{
    Scalar,
    Vector,
    Matrix
};

enum class TextureKind : uint8_t
{
    Texture1D,
    Texture1DArray,
    Texture2D,
    Texture2DArray,
    Texture2DMS,
    Texture2DMSArray,
    Texture3D,
    TextureCube,
    TextureCubeArray
};

/// A type. Each exists once, so that equal types are equal pointers.
struct Type
{
    enum class Kind : uint8_t
    {
        Error, ///< of what was refused already: nothing more is said about it
        Void,
        Number,
        Structure,
        Array,
        Texture,
        Sampler,
        StructuredBuffer,
        ByteAddressBuffer
    };

    Kind kind = Kind::Error;
    Base base = Base::Float;
    Shape shape = Shape::Scalar;
    uint8_t rows = 1;                             ///< of a matrix
    uint8_t columns = 1;                          ///< of a matrix, or components of a vector
    bool isComparison = false;                    ///< of a sampler
    TextureKind texture = TextureKind::Texture2D; ///< of a texture
    uint32_t count = 0;                           ///< of an array's elements; 0: not yet known
    const Type* element = nullptr;                ///< of an array or a structured buffer; texel of a texture
    const Structure* structure = nullptr;

    bool isError() const { return kind == Kind::Error; }
    bool isVoid() const { return kind == Kind::Void; }
    bool isNumber() const { return kind == Kind::Number; }
    bool isScalar() const { return isNumber() && shape == Shape::Scalar; }
    bool isVector() const { return isNumber() && shape == Shape::Vector; }
    bool isMatrix() const { return isNumber() && shape == Shape::Matrix; }
    bool isFloat() const { return isNumber() && base == Base::Float; }
    bool isInteger() const { return isNumber() && (base == Base::Int || base == Base::Uint); }
    bool isArray() const { return kind == Kind::Array; }
    bool isStructure() const { return kind == Kind::Structure; }
    bool isTexture() const { return kind == Kind::Texture; }
    bool isSampler() const { return kind == Kind::Sampler; }
    /// A texture, sampler or buffer, or an array of them.
    bool isResource() const;
    uint32_t components() const { return uint32_t(rows) * columns; }
    /// Matrices that SPIR-V doesn't have (of integers, of one row or column) are arrays of rows in a structure.
    bool isRowsMatrix() const { return isMatrix() && (base != Base::Float || rows == 1 || columns == 1); }

    std::string name() const;       ///< as messages show it
    std::string spelling() const;   ///< as the normalised text spells it; of an array, its element's
    std::string dimensions() const; ///< "[2][3]"; empty if it is no array
};

struct Field
{
    std::string name;
    const Type* type = nullptr;
    Position at;
    std::string modifiers;  ///< "nointerpolation "
    bool packsRows = false; ///< the order of a matrix
    std::string semantic;   ///< with its colon, or empty
};

struct Structure
{
    std::string name;
    std::string spelling;
    Position at;
    std::vector<Field> fields;

    const Field* find(std::string_view wanted) const;
};

class TypeTable
{
public:
    const Type* error() const { return &m_types[0]; }
    const Type* none() const { return &m_types[1]; } ///< void
    const Type* scalar(Base base) { return number(base, Shape::Scalar, 1, 1); }
    const Type* vector(Base base, uint32_t count); ///< of one component: the scalar
    const Type* matrix(Base base, uint32_t rows, uint32_t columns);
    const Type* array(const Type* element, uint32_t count);
    const Type* structure(const Structure* structure);
    const Type* texture(TextureKind kind, const Type* texel);
    const Type* sampler(bool isComparison);
    const Type* structuredBuffer(const Type* element);
    const Type* byteAddressBuffer();

    /// The number of another base in the same shape.
    const Type* withBase(const Type* type, Base base);

    TypeTable();

private:
    const Type* number(Base base, Shape shape, uint32_t rows, uint32_t columns);
    const Type* intern(const Type& type);

    std::deque<Type> m_types;
};

/// Is or holds a matrix that is an array of rows: its places in memory aren't those of a matrix.
bool holdsRowsMatrix(const Type& type);

/// Numbers in a row: of a scalar, vector or matrix; 0 if the type holds anything else.
uint32_t countComponents(const Type& type);

} // namespace helvantine::hlsl
