// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"

#include <helvantine/renderer/D3D11Types.h>

/// Direct3D's numbers in Vulkan's. An unknown number becomes Direct3D's default.
namespace helvantine
{

bool isComparison(D3D11_COMPARISON_FUNC function); ///< 1 to 8
VkCompareOp toVulkan(D3D11_COMPARISON_FUNC function);
VkStencilOp toVulkan(D3D11_STENCIL_OP operation);
VkBlendOp toVulkan(D3D11_BLEND_OP operation);
VkBlendFactor toVulkan(D3D11_BLEND factor, VkBlendFactor otherwise);
VkCullModeFlags toVulkan(D3D11_CULL_MODE mode);

/// UNDEFINED gives VK_PRIMITIVE_TOPOLOGY_MAX_ENUM, as every unknown number.
VkPrimitiveTopology toVulkan(D3D11_PRIMITIVE_TOPOLOGY topology);

/// The topology that stands for all of its kind (points, lines, triangles) in a pipeline.
VkPrimitiveTopology getTopologyClass(VkPrimitiveTopology topology);

} // namespace helvantine
