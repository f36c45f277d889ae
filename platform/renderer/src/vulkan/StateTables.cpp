// SPDX-License-Identifier: MIT
#include "vulkan/StateTables.h"

namespace helvantine
{

bool isComparison(D3D11_COMPARISON_FUNC function)
{
    return function >= D3D11_COMPARISON_NEVER && function <= D3D11_COMPARISON_ALWAYS;
}

VkCompareOp toVulkan(D3D11_COMPARISON_FUNC function)
{
    static_assert(VK_COMPARE_OP_NEVER == D3D11_COMPARISON_NEVER - 1);
    static_assert(VK_COMPARE_OP_ALWAYS == D3D11_COMPARISON_ALWAYS - 1);
    return isComparison(function) ? static_cast<VkCompareOp>(function - 1) : VK_COMPARE_OP_LESS;
}

VkStencilOp toVulkan(D3D11_STENCIL_OP operation)
{
    static_assert(VK_STENCIL_OP_KEEP == D3D11_STENCIL_OP_KEEP - 1);
    static_assert(VK_STENCIL_OP_INCREMENT_AND_CLAMP == D3D11_STENCIL_OP_INCR_SAT - 1);
    static_assert(VK_STENCIL_OP_DECREMENT_AND_WRAP == D3D11_STENCIL_OP_DECR - 1);
    const bool known = operation >= D3D11_STENCIL_OP_KEEP && operation <= D3D11_STENCIL_OP_DECR;
    return known ? static_cast<VkStencilOp>(operation - 1) : VK_STENCIL_OP_KEEP;
}

VkBlendOp toVulkan(D3D11_BLEND_OP operation)
{
    static_assert(VK_BLEND_OP_ADD == D3D11_BLEND_OP_ADD - 1);
    static_assert(VK_BLEND_OP_MAX == D3D11_BLEND_OP_MAX - 1);
    const bool known = operation >= D3D11_BLEND_OP_ADD && operation <= D3D11_BLEND_OP_MAX;
    return known ? static_cast<VkBlendOp>(operation - 1) : VK_BLEND_OP_ADD;
}

VkBlendFactor toVulkan(D3D11_BLEND factor, VkBlendFactor otherwise)
{
    switch (factor) {
    case D3D11_BLEND_ZERO:
        return VK_BLEND_FACTOR_ZERO;
    case D3D11_BLEND_ONE:
        return VK_BLEND_FACTOR_ONE;
    case D3D11_BLEND_SRC_COLOR:
        return VK_BLEND_FACTOR_SRC_COLOR;
    case D3D11_BLEND_INV_SRC_COLOR:
        return VK_BLEND_FACTOR_ONE_MINUS_SRC_COLOR;
    case D3D11_BLEND_SRC_ALPHA:
        return VK_BLEND_FACTOR_SRC_ALPHA;
    case D3D11_BLEND_INV_SRC_ALPHA:
        return VK_BLEND_FACTOR_ONE_MINUS_SRC_ALPHA;
    case D3D11_BLEND_DEST_ALPHA:
        return VK_BLEND_FACTOR_DST_ALPHA;
    case D3D11_BLEND_INV_DEST_ALPHA:
        return VK_BLEND_FACTOR_ONE_MINUS_DST_ALPHA;
    case D3D11_BLEND_DEST_COLOR:
        return VK_BLEND_FACTOR_DST_COLOR;
    case D3D11_BLEND_INV_DEST_COLOR:
        return VK_BLEND_FACTOR_ONE_MINUS_DST_COLOR;
    case D3D11_BLEND_SRC_ALPHA_SAT:
        return VK_BLEND_FACTOR_SRC_ALPHA_SATURATE;
    case D3D11_BLEND_BLEND_FACTOR:
        return VK_BLEND_FACTOR_CONSTANT_COLOR;
    case D3D11_BLEND_INV_BLEND_FACTOR:
        return VK_BLEND_FACTOR_ONE_MINUS_CONSTANT_COLOR;
    }
    return otherwise;
}

VkCullModeFlags toVulkan(D3D11_CULL_MODE mode)
{
    switch (mode) {
    case D3D11_CULL_NONE:
        return VK_CULL_MODE_NONE;
    case D3D11_CULL_FRONT:
        return VK_CULL_MODE_FRONT_BIT;
    default:
        return VK_CULL_MODE_BACK_BIT;
    }
}

VkPrimitiveTopology toVulkan(D3D11_PRIMITIVE_TOPOLOGY topology)
{
    static_assert(VK_PRIMITIVE_TOPOLOGY_POINT_LIST == D3D11_PRIMITIVE_TOPOLOGY_POINTLIST - 1);
    static_assert(VK_PRIMITIVE_TOPOLOGY_TRIANGLE_STRIP == D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP - 1);
    const bool known =
        topology >= D3D11_PRIMITIVE_TOPOLOGY_POINTLIST && topology <= D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP;
    return known ? static_cast<VkPrimitiveTopology>(topology - 1) : VK_PRIMITIVE_TOPOLOGY_MAX_ENUM;
}

VkPrimitiveTopology getTopologyClass(VkPrimitiveTopology topology)
{
    switch (topology) {
    case VK_PRIMITIVE_TOPOLOGY_POINT_LIST:
        return VK_PRIMITIVE_TOPOLOGY_POINT_LIST;
    case VK_PRIMITIVE_TOPOLOGY_LINE_LIST:
    case VK_PRIMITIVE_TOPOLOGY_LINE_STRIP:
        return VK_PRIMITIVE_TOPOLOGY_LINE_LIST;
    default:
        return VK_PRIMITIVE_TOPOLOGY_TRIANGLE_LIST;
    }
}

} // namespace helvantine
