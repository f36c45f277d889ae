// SPDX-License-Identifier: MIT
#include "vulkan/ImmediateContext.h"

#include "vulkan/DrawRecorder.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanTexture2D.h"

namespace helvantine
{

namespace
{

constexpr int32_t ok = 0;
constexpr int32_t failed = static_cast<int32_t>(0x80004005);          // E_FAIL
constexpr int32_t invalidArgument = static_cast<int32_t>(0x80070057); // E_INVALIDARG

} // namespace

int32_t TextureDevice::CreateTexture2D(const D3D11_TEXTURE2D_DESC* desc, const D3D11_SUBRESOURCE_DATA* data,
                                       ID3D11Texture2D** texture)
{
    if (texture)
        *texture = nullptr;
    if (!desc || !texture)
        return invalidArgument;
    if (m_context.device().isLost())
        return failed;
    *texture = VulkanTexture2D::create(m_context, *desc, data);
    return *texture ? ok : invalidArgument;
}

void ImmediateContext::IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY topology)
{
    m_context.draws().setTopology(topology);
}

void ImmediateContext::Draw(uint32_t vertexCount, uint32_t startVertex)
{
    m_context.draws().draw(vertexCount, startVertex);
}

void ImmediateContext::DrawIndexed(uint32_t indexCount, uint32_t startIndex, int32_t baseVertex)
{
    m_context.draws().drawIndexed(indexCount, startIndex, baseVertex);
}

int32_t ImmediateContext::Map(ID3D11Texture2D* texture, uint32_t subresource, D3D11_MAP type, uint32_t,
                              D3D11_MAPPED_SUBRESOURCE* mapped)
{
    if (mapped)
        *mapped = {};
    if (!texture || !mapped)
        return invalidArgument;
    return static_cast<VulkanTexture2D*>(texture)->map(subresource, type, *mapped) ? ok : invalidArgument;
}

void ImmediateContext::Unmap(ID3D11Texture2D* texture, uint32_t subresource)
{
    if (texture)
        static_cast<VulkanTexture2D*>(texture)->unmap(subresource);
}

} // namespace helvantine
