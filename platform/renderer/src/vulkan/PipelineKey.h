// SPDX-License-Identifier: MIT
#pragma once

#include "shader/SpirvComparison.h"
#include "vulkan/VulkanApi.h"
#include "vulkan/VulkanVertexDeclaration.h"

#include <array>
#include <cstdint>
#include <type_traits>

namespace helvantine
{

/// Everything of a draw that a pipeline fixes; the rest is dynamic state. Without padding: its bytes are
/// hashed.
struct PipelineKey
{
    static constexpr uint16_t unboundSlot = 0xFFFF;

    uint64_t declaration = 0; ///< hash of its content; 0 for none
    uint64_t comparison = 0;  ///< packed ColorComparison
    uint32_t program = 0;     ///< VulkanProgram::getId
    uint32_t blend = 0;       ///< VulkanBlendState::getId, 0 for Direct3D's default
    VkFormat color = VK_FORMAT_UNDEFINED;
    VkFormat depth = VK_FORMAT_UNDEFINED;
    VkPrimitiveTopology topologyClass = VK_PRIMITIVE_TOPOLOGY_TRIANGLE_LIST;
    VkSampleCountFlagBits samples = VK_SAMPLE_COUNT_1_BIT;
    uint32_t sampleMask = 1; ///< only the bits of existing samples
    uint16_t wireframe = 0;
    uint16_t depthClamp = 0;                         ///< depth clip off
    std::array<uint16_t, vertexSlotCount> strides{}; ///< of the slots that the declaration reads, else 0

    bool operator==(const PipelineKey&) const = default;
};
static_assert(std::has_unique_object_representations_v<PipelineKey>);

/// 16 bits for the textures, three for the function of each sampler.
inline uint64_t pack(const ColorComparison& comparison)
{
    uint64_t bits = comparison.textures;
    for (size_t i = 0; bits != 0 && i < comparison.functions.size(); ++i)
        bits |= uint64_t((comparison.functions[i] - 1) & 7) << (textureRegisterCount + 3 * i);
    return bits;
}
inline ColorComparison unpackComparison(uint64_t bits)
{
    ColorComparison comparison;
    comparison.textures = static_cast<uint16_t>(bits);
    for (size_t i = 0; i < comparison.functions.size(); ++i)
        comparison.functions[i] = static_cast<uint8_t>((bits >> (textureRegisterCount + 3 * i) & 7) + 1);
    return comparison;
}

/// FNV-1a over the key's words.
struct PipelineKeyHash
{
    size_t operator()(const PipelineKey& key) const;
};

} // namespace helvantine
