// SPDX-License-Identifier: MIT
#pragma once

#include "shader/Hash128.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// A compiled pair of vertex and pixel stage, as the Vulkan side consumes it.
///
/// - Registers keep their Direct3D meaning: b0 to b13 apart for each stage, t0 to t15 and s0 to s15
///   shared by both. All land in descriptor set 0, at bindings that follow from kind and register, and of a sampler
///   that several textures are read through from the texture's too.
/// - What an entry point doesn't use isn't listed.
/// - Both modules are linked (each pixel input bears the location of its vertex output, an input that
///   nothing writes reads 0), carry no vendor extension, and passed SPIRV-Tools' validation for Vulkan 1.3.
/// - Entry points keep the author's names.
/// - A program never changes; whoever holds the pointer shares it.

namespace helvantine
{

enum class ShaderStage : uint8_t
{
    Vertex,
    Pixel
};

constexpr uint32_t vertexStageBit = 1;
constexpr uint32_t pixelStageBit = 2;

constexpr uint32_t constantRegisterCount = 14;
constexpr uint32_t textureRegisterCount = 16;
constexpr uint32_t samplerRegisterCount = 16;

/// Vulkan binding = base of the kind + register.
constexpr uint32_t vertexConstantBindingBase = 0;
constexpr uint32_t pixelConstantBindingBase = vertexConstantBindingBase + constantRegisterCount;
constexpr uint32_t textureBindingBase = pixelConstantBindingBase + constantRegisterCount;
constexpr uint32_t samplerBindingBase = textureBindingBase + textureRegisterCount;
/// A sampler that several textures are read through has a binding for each of them.
constexpr uint32_t samplerPairBindingBase = samplerBindingBase + samplerRegisterCount;
constexpr uint32_t samplerPairBinding(uint32_t sampler, uint32_t texture)
{
    return samplerPairBindingBase + sampler * textureRegisterCount + texture;
}
constexpr uint32_t shaderBindingEnd = samplerPairBinding(samplerRegisterCount, 0);

/// The most that a program has: all buffers of both stages, all textures, as many samplers in each stage as devices
/// must offer.
constexpr uint32_t maxShaderBindings =
    2 * constantRegisterCount + textureRegisterCount + 2 * samplerRegisterCount;

/// Bytes of SPIR-V in one stage. Far above what people write; drivers take minutes over more.
constexpr size_t maxModuleSize = 1 << 20;

enum class ShaderBindingKind : uint8_t
{
    ConstantBuffer,
    Texture,
    Sampler,
    StructuredBuffer ///< a read-only storage buffer on a t register
};

enum class ShaderDeclarationKind : uint8_t
{
    ConstantBuffer,
    Texture,
    Sampler,
    StructuredBuffer,
    VertexInput
};

enum class TextureDimension : uint8_t
{
    None, ///< the binding is no texture
    Texture1D,
    Texture1DArray,
    Texture2D,
    Texture2DArray,
    Texture2DMultisampled,
    Texture2DMultisampledArray,
    Texture3D,
    TextureCube,
    TextureCubeArray
};

enum class ShaderComponentType : uint8_t
{
    Float,
    Int,
    Uint
};

struct ShaderBinding
{
    ShaderBindingKind kind = ShaderBindingKind::ConstantBuffer;
    TextureDimension dimension = TextureDimension::None;
    ShaderComponentType component = ShaderComponentType::Float; ///< of a texture's texels
    bool comparison = false; ///< sampler: used to compare; texture: is compared somewhere
    uint8_t stages = 0;      ///< vertexStageBit, pixelStageBit; a constant buffer has exactly one
    uint8_t slot = 0;        ///< number of the b, t or s register
    uint16_t binding = 0;    ///< Vulkan binding in set 0
    uint32_t size = 0;       ///< bytes that a constant buffer's members span; 0 for the others
    uint16_t textures = 0;   ///< of a sampler: a bit for each t register that is read through it

    bool operator==(const ShaderBinding&) const = default;
};

/// One attribute of the vertex stage. A matrix shows as its rows, with consecutive indices and locations.
struct ShaderVertexInput
{
    std::string semantic; ///< upper case, without its index
    uint32_t index = 0;
    uint32_t location = 0;
    ShaderComponentType component = ShaderComponentType::Float;
    uint32_t componentCount = 0; ///< 1 to 4

    bool operator==(const ShaderVertexInput&) const = default;
};

/// A resource or an attribute as its stage's text declares it. Several may lie on one register.
struct ShaderDeclaration
{
    ShaderDeclarationKind kind = ShaderDeclarationKind::ConstantBuffer;
    uint8_t stages =
        0; ///< vertexStageBit, pixelStageBit; both only if they declare it in the same line of one text
    uint32_t number = 0; ///< of the b, t or s register, or a semantic's index
    std::string name;    ///< as in the text; of an attribute the semantic in upper case, without its index
    uint32_t line = 0;   ///< 1 if the text itself doesn't name it

    bool operator==(const ShaderDeclaration&) const = default;
};

struct ShaderPixelOutput
{
    uint32_t target = 0; ///< n of SV_TARGETn, which is its location
    ShaderComponentType component = ShaderComponentType::Float;
    uint32_t componentCount = 0; ///< 1 to 4

    bool operator==(const ShaderPixelOutput&) const = default;
};

/// What a text does that its author may not mean. Such a text compiles.
struct ShaderWarning
{
    std::string file; ///< the included text; empty: the program's own
    uint32_t line = 1;
    std::string text;

    bool operator==(const ShaderWarning&) const = default;
};

struct ShaderProgram
{
    std::vector<uint32_t> vertexWords; ///< SPIR-V
    std::vector<uint32_t> pixelWords;  ///< SPIR-V; empty for a program that draws depth alone
    std::string vertexEntry;
    std::string pixelEntry;
    std::vector<ShaderBinding> bindings;         ///< by binding number, each number once
    std::vector<ShaderVertexInput> vertexInputs; ///< by location
    std::vector<ShaderPixelOutput> pixelOutputs; ///< by target
    std::vector<ShaderDeclaration> declarations; ///< what both stages use of the world outside
    bool writesDepth = false;                    ///< the pixel stage has an SV_Depth
    std::vector<ShaderWarning> warnings; ///< of both texts, each once; no part of what makes programs equal
    Hash128 hash; ///< of both modules, entry points and vertex semantics: equal programs have equal hashes

    const ShaderBinding* findBinding(uint32_t binding) const;
    const ShaderVertexInput* findVertexInput(const std::string& semantic, uint32_t index) const;

    /// The warnings as lines of the form `name:line: warning: …`; `name` is that of the program's own text.
    std::string describeWarnings(const std::string& name) const;
};

using ShaderProgramPtr = std::shared_ptr<const ShaderProgram>;

} // namespace helvantine
