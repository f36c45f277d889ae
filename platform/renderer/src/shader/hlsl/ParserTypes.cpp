// SPDX-License-Identifier: MIT
#include "shader/hlsl/Names.h"
#include "shader/hlsl/Parser.h"

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

const std::unordered_map<std::string_view, Base> bases = {
    {"bool", Base::Bool},        {"int", Base::Int},          {"uint", Base::Uint},
    {"dword", Base::Uint},       {"float", Base::Float},      {"half", Base::Float},
    {"min16float", Base::Float}, {"min10float", Base::Float}, {"min16int", Base::Int},
    {"min12int", Base::Int},     {"min16uint", Base::Uint},
};

const std::unordered_map<std::string_view, TextureKind> textures = {
    {"Texture1D", TextureKind::Texture1D},
    {"Texture1DArray", TextureKind::Texture1DArray},
    {"Texture2D", TextureKind::Texture2D},
    {"Texture2DArray", TextureKind::Texture2DArray},
    {"Texture2DMS", TextureKind::Texture2DMS},
    {"Texture2DMSArray", TextureKind::Texture2DMSArray},
    {"Texture3D", TextureKind::Texture3D},
    {"TextureCube", TextureKind::TextureCube},
    {"TextureCubeArray", TextureKind::TextureCubeArray},
};

/// Types that are known and can't be had, with what to do instead.
const std::unordered_map<std::string_view, std::string_view> refusedTypes = {
    {"double", "isn't supported; use float"},
    {"string", "isn't supported"},
    {"Buffer", "isn't supported; use a StructuredBuffer or a texture"},
    {"ConstantBuffer", "isn't supported; use cbuffer"},
    {"RWBuffer", "unordered access isn't supported"},
    {"RWByteAddressBuffer", "unordered access isn't supported"},
    {"RWStructuredBuffer", "unordered access isn't supported"},
    {"RWTexture1D", "unordered access isn't supported"},
    {"RWTexture1DArray", "unordered access isn't supported"},
    {"RWTexture2D", "unordered access isn't supported"},
    {"RWTexture2DArray", "unordered access isn't supported"},
    {"RWTexture3D", "unordered access isn't supported"},
    {"AppendStructuredBuffer", "unordered access isn't supported"},
    {"ConsumeStructuredBuffer", "unordered access isn't supported"},
    {"InputPatch", "is for hull and domain programs, which aren't supported"},
    {"OutputPatch", "is for hull and domain programs, which aren't supported"},
    {"PointStream", "is for geometry programs, which aren't supported"},
    {"LineStream", "is for geometry programs, which aren't supported"},
    {"TriangleStream", "is for geometry programs, which aren't supported"},
    {"sampler1D", "is of shader model 3; use a Texture1D and a SamplerState"},
    {"sampler2D", "is of shader model 3; use a Texture2D and a SamplerState"},
    {"sampler3D", "is of shader model 3; use a Texture3D and a SamplerState"},
    {"samplerCUBE", "is of shader model 3; use a TextureCube and a SamplerState"},
    {"texture", "is of shader model 3; use Texture2D or another kind"},
    {"texture2D", "is of shader model 3; use Texture2D"},
    {"texture3D", "is of shader model 3; use Texture3D"},
    {"textureCUBE", "is of shader model 3; use TextureCube"},
};

constexpr size_t maxFields = 4096;

constexpr std::string_view interpolations[] = {"nointerpolation", "linear", "centroid",
                                               "noperspective",   "sample", "precise"};
constexpr std::string_view ignoredModifiers[] = {"extern",   "volatile", "inline",      "shared", "unorm",
                                                 "snorm",    "export",   "groupshared", "point",  "line",
                                                 "triangle", "lineadj",  "triangleadj"};

bool isOneOf(std::string_view word, const auto& list)
{
    return std::ranges::find(list, word) != std::end(list);
}

} // namespace

/// "float", "int3", "bool2x4"; null for other words.
const Type* Parser::findBuiltIn(std::string_view name)
{
    size_t end = name.size();
    while (end > 0 && name[end - 1] >= '1' && name[end - 1] <= '4')
        --end;
    const auto found = bases.find(name);
    if (found != bases.end())
        return m_builder.types().scalar(found->second);
    const auto digit = [&](size_t i) { return i < name.size() && name[i] >= '1' && name[i] <= '4'; };
    const size_t size = name.size();
    if (size > 3 && name[size - 2] == 'x' && digit(size - 1) && digit(size - 3)) {
        const auto base = bases.find(name.substr(0, size - 3));
        return base == bases.end() ? nullptr
                                   : m_builder.types().matrix(base->second, uint32_t(name[size - 3] - '0'),
                                                              uint32_t(name[size - 1] - '0'));
    }
    if (size < 2 || !digit(size - 1))
        return nullptr;
    const auto base = bases.find(name.substr(0, size - 1));
    return base == bases.end() ? nullptr
                               : m_builder.types().vector(base->second, uint32_t(name[size - 1] - '0'));
}

/// A word that is a type unless the author declared something of that name.
bool Parser::startsType() const
{
    const Token& token = peek();
    if (!token.isWord())
        return false;
    if (const Entity* entity = find(token.text))
        return entity->type != nullptr;
    const std::string_view name = token.text;
    return const_cast<Parser*>(this)->findBuiltIn(name) || textures.contains(name) ||
           (refusedTypes.contains(name) && (isName(peek(1)) || peek(1).is("<"))) || name == "void" ||
           name == "struct" || name == "class" || name == "vector" || name == "matrix" ||
           name == "unsigned" || name == "signed" || name == "SamplerState" || name == "sampler" ||
           name == "SamplerComparisonState" || name == "StructuredBuffer" || name == "ByteAddressBuffer" ||
           name == "double";
}

const Type* Parser::parseType()
{
    const Token& token = next();
    const std::string_view name = token.text;
    if (token.isWord()) {
        if (const Entity* entity = find(name); entity && entity->type)
            return entity->type;
        if (name == "void")
            return m_builder.types().none();
        if (name == "struct" || name == "class" || name == "class")
            return parseStructure();
        if (name == "unsigned" || name == "signed") {
            const bool isPlain = !accept("int");
            if (isPlain && findBuiltIn(peek().text) && peek().text.starts_with("int")) {
                const Type* type = findBuiltIn(next().text);
                return name == "unsigned" ? m_builder.types().withBase(type, Base::Uint) : type;
            }
            return m_builder.types().scalar(name == "unsigned" ? Base::Uint : Base::Int);
        }
        if ((name == "vector" || name == "matrix"))
            return parseNumberTemplate(name == "matrix");
        if (const Type* number = findBuiltIn(name))
            return number;
        if (const Type* object = parseObject(token))
            return object;
        if (const std::string_view instead = findGlslHabit(name); !instead.empty()) {
            stop(token, quoted(name) + " is GLSL; HLSL has " + std::string(instead));
            return m_builder.types().error();
        }
        if (!isKeyword(name) && isName(peek())) {
            stop(token, quoted(name) + " is no type");
            return m_builder.types().error();
        }
    }
    stop(token, token.kind == Token::Kind::End ? "a declaration is missing before the end of the text"
                                               : "a declaration can't begin with " + quoted(name));
    return m_builder.types().error();
}

/// vector<float, 3>, matrix<float, 4, 4>; without brackets all of float and 4.
const Type* Parser::parseNumberTemplate(bool isMatrix)
{
    Base base = Base::Float;
    uint32_t sizes[2] = {4, 4};
    if (accept("<")) {
        const Token& name = peek();
        const Type* type = parseType();
        if (!type->isScalar())
            m_builder.fail(name.at, quoted(name.text) + " can't be what a vector or matrix is made of");
        else
            base = type->base;
        for (uint32_t i = 0; i < (isMatrix ? 2U : 1U) && expect(","); ++i) {
            const Token& size = peek();
            uint32_t number = 4;
            m_builder.wholeNumber(parseBinary(9), "a size", number);
            sizes[i] = number;
            if (number < 1 || number > 4) {
                m_builder.fail(size.at, "a size is 1 to 4, not " + std::to_string(int32_t(number)));
                sizes[i] = 4;
            }
        }
        expect(">");
    }
    return isMatrix ? m_builder.types().matrix(base, sizes[0], sizes[1])
                    : m_builder.types().vector(base, sizes[0]);
}

/// Null if the name isn't that of a texture, sampler or buffer.
const Type* Parser::parseObject(const Token& token)
{
    const std::string_view name = token.text;
    if (const auto found = textures.find(name); found != textures.end())
        return parseTexture(found->second);
    if (name == "SamplerState" || name == "sampler" || name == "SamplerComparisonState")
        return m_builder.types().sampler(name == "SamplerComparisonState");
    if (name == "ByteAddressBuffer")
        return m_builder.types().byteAddressBuffer();
    if (name == "StructuredBuffer") {
        if (!expect("<"))
            return m_builder.types().error();
        const Type* element = parseType();
        expect(">");
        if (holdsRowsMatrix(*element) || element->isResource() || element->isVoid())
            m_builder.fail(token.at, "a structured buffer can't hold " + quoted(element->name()));
        return m_builder.types().structuredBuffer(element);
    }
    const auto refused = refusedTypes.find(name);
    if (refused == refusedTypes.end())
        return nullptr;
    if (accept("<")) {
        while (!atEnd() && !is(">") && !is(";"))
            next();
        accept(">");
    }
    const bool isVariable = isName(peek()) && refused->second.starts_with("unordered");
    const bool isBuffer = name == "Buffer";
    m_builder.fail(token.at, isVariable ? quoted(peek().text) + ": " + std::string(refused->second)
                             : isBuffer && isName(peek())
                                 ? quoted(peek().text) + ": Buffer " + std::string(refused->second)
                                 : quoted(name) + " " + std::string(refused->second));
    return m_builder.types().error();
}

const Type* Parser::parseTexture(TextureKind kind)
{
    const Type* texel = m_builder.types().vector(Base::Float, 4);
    if (accept("<")) {
        while (is("unorm") || is("snorm"))
            next();
        const Token& name = peek();
        const Type* type = parseType();
        if ((type->isScalar() || type->isVector()) && type->base != Base::Bool)
            texel = type;
        else if (!type->isError())
            m_builder.fail(name.at, "a texture can't hold " + quoted(type->name()));
        if (accept(",")) // samples: the texture that is bound decides
            parseBinary(9);
        expect(">");
    }
    return m_builder.types().texture(kind, texel);
}

const Type* Parser::parseDimensions(const Type* element)
{
    std::vector<uint32_t> counts;
    while (accept("[")) {
        uint32_t count = 0;
        const Token& size = peek();
        if (is("]")) {
            if (!counts.empty())
                m_builder.fail(size.at, "only the first size of an array may be left out");
            count = counts.empty() ? 0 : 1;
        } else if (m_builder.wholeNumber(parseConditional(), "an array's size", count) && int32_t(count) <= 0)
        {
            m_builder.fail(size.at, "an array can't have " + std::to_string(int32_t(count)) + " elements");
            count = 1;
        }
        counts.push_back(count);
        if (!expect("]"))
            return m_builder.types().error();
    }
    for (auto count = counts.rbegin(); count != counts.rend() && !element->isError(); ++count)
        element = m_builder.types().array(element, *count);
    return element;
}

Parser::Modifiers Parser::parseModifiers()
{
    Modifiers modifiers;
    modifiers.packsRows = peek().packsRows;
    for (; peek().isWord() && !atEnd(); next()) {
        const std::string_view word = peek().text;
        // Such a word may as well be the name or the type of something.
        const bool isModifier = peek(1).isWord();
        if (word == "static")
            modifiers.isStatic = true;
        else if (word == "const")
            modifiers.isConst = true;
        else if (word == "uniform")
            modifiers.isUniform = true;
        else if (word == "in" || word == "out" || word == "inout") {
            modifiers.isIn |= word != "out";
            modifiers.isOut |= word != "in";
        } else if (word == "row_major" || word == "column_major")
            modifiers.packsRows = word == "row_major";
        else if (isModifier && isOneOf(word, interpolations))
            modifiers.interpolation += std::string(word) + " ";
        else if (!isModifier || !isOneOf(word, ignoredModifiers))
            break;
    }
    return modifiers;
}

const Type* Parser::parseStructure()
{
    Structure& structure = m_program.structures.emplace_back();
    structure.at = peek().at;
    structure.name = "a structure without a name";
    structure.spelling = std::string(helperPrefix) + "struct" + std::to_string(m_program.structures.size());
    const Type* type = m_builder.types().structure(&structure);
    if (isName(peek())) {
        const Token& name = next();
        structure.name = name.text;
        structure.spelling = spell(name.text);
        if (m_scopes.size() > 1) // structures are written out before all functions
            structure.spelling += "_" + std::to_string(m_program.structures.size());
        if (declareName(name))
            m_scopes.back()[name.text].type = type;
    }
    if (is(":"))
        stop(peek(), "structures can't inherit");
    if (!expect("{"))
        return type;
    const std::vector<size_t> methods = parseFields(structure);
    expect("}");
    if (!methods.empty() && !atEnd())
        parseMethods(structure, type, methods);
    return type;
}

/// Methods are functions that get their object handed over. They may use whatever the structure has, so they are read
/// when all of it is known.
void Parser::parseMethods(const Structure& structure, const Type* type, const std::vector<size_t>& places)
{
    const size_t end = m_at;
    Symbol& object = m_program.symbols.emplace_back();
    object.name = "this";
    object.spelling = std::string(helperPrefix) + "this";
    object.type = type;
    m_object = &object;
    m_bodies.clear();
    for (size_t place : places) {
        m_at = place;
        const Modifiers modifiers = parseModifiers();
        const Type* result = parseType();
        parseFunction(modifiers, result);
        if (m_at > end) // an error has ended the reading
            return;
    }
    m_object = nullptr;
    m_scopes.emplace_back();
    for (const Field& field : structure.fields)
        m_scopes.back()[field.name].owner = &object;
    for (const auto& [name, method] : m_methods[&structure])
        m_scopes.back()[name].owner = &object;
    m_scopes.back()["this"].symbol = &object;
    for (Body& body : m_bodies) {
        m_at = body.place;
        parseBody(*body.function, std::move(body.parameters));
        if (m_at > end)
            return;
    }
    m_scopes.pop_back();
    m_at = end;
}

const Parser::Entity* Parser::findMethod(const Type* type, std::string_view name) const
{
    const auto structure = m_methods.find(type->structure);
    if (!type->isStructure() || structure == m_methods.end())
        return nullptr;
    const auto found = structure->second.find(name);
    return found == structure->second.end() ? nullptr : &found->second;
}

std::vector<size_t> Parser::parseFields(Structure& structure)
{
    std::vector<size_t> methods;
    while (!atEnd() && !is("}")) {
        if (accept(";"))
            continue;
        const size_t start = m_at;
        const Modifiers modifiers = parseModifiers();
        const Type* type = parseType();
        if (isName(peek()) && peek(1).is("(")) {
            if (m_scopes.size() > 1)
                stop(peek(), quoted(peek().text) + ": a structure within a function can't have functions");
            methods.push_back(start);
            while (!atEnd() && !is("{"))
                next();
            skipBraces();
            continue;
        }
        do {
            const Token& name = next();
            if (refusesName(name))
                return methods;
            Field field;
            field.name = name.text;
            field.type = parseDimensions(type);
            field.at = name.at;
            field.semantic = parseSemantic();
            field.modifiers = modifiers.interpolation;
            field.packsRows = modifiers.packsRows;
            const bool isInItself = field.type->isStructure() && field.type->structure == &structure;
            if (field.type->isResource() || field.type->isVoid() || isInItself)
                m_builder.fail(name.at,
                               quoted(name.text) + ": a structure can't hold " + quoted(field.type->name()));
            else if (structure.find(name.text))
                m_builder.fail(name.at, quoted(name.text) + " is declared twice");
            else if (structure.fields.size() >= maxFields)
                return stop(name, "a structure has more than " + std::to_string(maxFields) + " members"),
                       methods;
            else
                structure.fields.push_back(std::move(field));
        } while (accept(","));
        if (!expect(";"))
            return methods;
    }
    return methods;
}

} // namespace helvantine::hlsl
