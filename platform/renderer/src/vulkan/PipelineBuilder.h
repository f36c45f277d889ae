// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/PipelineCache.h"

namespace helvantine
{

/// Vulkan binding of the buffer that inputs without an element read: (0, 0, 0, 1).
inline constexpr uint32_t missingInputBinding = vertexSlotCount;

/// Makes the pipeline of a key. Null, with the reason in the report, if the device refuses it.
VkPipeline buildPipeline(VulkanContext& context, VkPipelineCache driverCache, const PipelineKey& key,
                         const PipelineCache::Parts& parts);

} // namespace helvantine
