// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/renderer/Device.h>

namespace helvantine
{

class VulkanContext;

/// The renderer's face as Direct3D's device.
class TextureDevice final : public ID3D11Device
{
public:
    explicit TextureDevice(VulkanContext& context) : m_context(context) {}

    int32_t CreateTexture2D(const D3D11_TEXTURE2D_DESC* desc, const D3D11_SUBRESOURCE_DATA* data,
                            ID3D11Texture2D** texture) override;

private:
    VulkanContext& m_context;
};

/// The renderer's face as Direct3D's immediate context.
class ImmediateContext final : public ID3D11DeviceContext
{
public:
    explicit ImmediateContext(VulkanContext& context) : m_context(context) {}

    void IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY topology) override;
    void Draw(uint32_t vertexCount, uint32_t startVertex) override;
    void DrawIndexed(uint32_t indexCount, uint32_t startIndex, int32_t baseVertex) override;
    int32_t Map(ID3D11Texture2D* texture, uint32_t subresource, D3D11_MAP type, uint32_t flags,
                D3D11_MAPPED_SUBRESOURCE* mapped) override;
    void Unmap(ID3D11Texture2D* texture, uint32_t subresource) override;

private:
    VulkanContext& m_context;
};

} // namespace helvantine
