// SPDX-License-Identifier: MIT
#pragma once

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

/// FNV-1a over the key's words.
struct PipelineKeyHash
{
    size_t operator()(const PipelineKey& key) const;
};

} // namespace helvantine
