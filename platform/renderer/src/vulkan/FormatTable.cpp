// SPDX-License-Identifier: MIT
#include "vulkan/FormatTable.h"

#include <algorithm>
#include <iterator>

namespace helvantine
{

namespace
{

constexpr bool target = true;
constexpr bool vertexElement = true;

constexpr FormatInfo formatTable[] = {
    {DXGI_FORMAT_R32G32B32A32_FLOAT, VK_FORMAT_R32G32B32A32_SFLOAT, target, vertexElement},
    {DXGI_FORMAT_R32G32B32_FLOAT, VK_FORMAT_R32G32B32_SFLOAT, false, vertexElement},
    {DXGI_FORMAT_R16G16B16A16_FLOAT, VK_FORMAT_R16G16B16A16_SFLOAT, target, vertexElement},
    {DXGI_FORMAT_R32G32_FLOAT, VK_FORMAT_R32G32_SFLOAT, false, vertexElement},
    {DXGI_FORMAT_R8G8B8A8_UNORM, VK_FORMAT_R8G8B8A8_UNORM, target, vertexElement},
    {DXGI_FORMAT_R8G8B8A8_UNORM_SRGB, VK_FORMAT_R8G8B8A8_SRGB, false, false},
    {DXGI_FORMAT_R16G16_FLOAT, VK_FORMAT_R16G16_SFLOAT, false, vertexElement},
    {DXGI_FORMAT_R32_FLOAT, VK_FORMAT_R32_SFLOAT, target, vertexElement},
    {DXGI_FORMAT_R32_UINT, VK_FORMAT_R32_UINT, false, vertexElement},
    {DXGI_FORMAT_R16_FLOAT, VK_FORMAT_R16_SFLOAT, target, vertexElement},
    {DXGI_FORMAT_R16_UINT, VK_FORMAT_R16_UINT, false, vertexElement},
    {DXGI_FORMAT_BC1_UNORM, VK_FORMAT_BC1_RGBA_UNORM_BLOCK, false, false},
    {DXGI_FORMAT_BC1_UNORM_SRGB, VK_FORMAT_BC1_RGBA_SRGB_BLOCK, false, false},
    {DXGI_FORMAT_BC2_UNORM, VK_FORMAT_BC2_UNORM_BLOCK, false, false},
    {DXGI_FORMAT_BC2_UNORM_SRGB, VK_FORMAT_BC2_SRGB_BLOCK, false, false},
    {DXGI_FORMAT_BC3_UNORM, VK_FORMAT_BC3_UNORM_BLOCK, false, false},
    {DXGI_FORMAT_BC3_UNORM_SRGB, VK_FORMAT_BC3_SRGB_BLOCK, false, false},
    {DXGI_FORMAT_BC4_UNORM, VK_FORMAT_BC4_UNORM_BLOCK, false, false},
    {DXGI_FORMAT_BC4_SNORM, VK_FORMAT_BC4_SNORM_BLOCK, false, false},
    {DXGI_FORMAT_BC5_UNORM, VK_FORMAT_BC5_UNORM_BLOCK, false, false},
    {DXGI_FORMAT_BC5_SNORM, VK_FORMAT_BC5_SNORM_BLOCK, false, false},
    {DXGI_FORMAT_B8G8R8A8_UNORM, VK_FORMAT_B8G8R8A8_UNORM, target, vertexElement},
    {DXGI_FORMAT_B8G8R8A8_UNORM_SRGB, VK_FORMAT_B8G8R8A8_SRGB, false, false},
    {DXGI_FORMAT_BC6H_UF16, VK_FORMAT_BC6H_UFLOAT_BLOCK, false, false},
    {DXGI_FORMAT_BC6H_SF16, VK_FORMAT_BC6H_SFLOAT_BLOCK, false, false},
    {DXGI_FORMAT_BC7_UNORM, VK_FORMAT_BC7_UNORM_BLOCK, false, false},
    {DXGI_FORMAT_BC7_UNORM_SRGB, VK_FORMAT_BC7_SRGB_BLOCK, false, false},
};

} // namespace

const FormatInfo* findFormat(uint32_t format)
{
    const auto found =
        std::lower_bound(std::begin(formatTable), std::end(formatTable), format,
                         [](const FormatInfo& info, uint32_t number) { return info.dxgi < number; });
    return found != std::end(formatTable) && found->dxgi == format ? found : nullptr;
}

} // namespace helvantine
