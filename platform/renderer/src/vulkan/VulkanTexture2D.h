// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/FormatTable.h"
#include "vulkan/VulkanTexture.h"

#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/Device.h>

#include <vector>

namespace helvantine
{

/// The one class behind ID3D11Texture2D: a texture and, where it is dynamic, the bytes that Map shows.
class VulkanTexture2D final : public ID3D11Texture2D
{
public:
    /// Null, with the reason in the report where the device is the reason, if the description can't be met.
    static VulkanTexture2D* create(VulkanContext& context, const D3D11_TEXTURE2D_DESC& desc,
                                   const D3D11_SUBRESOURCE_DATA* data);

    uint32_t AddRef() override;
    uint32_t Release() override;
    void GetDesc(D3D11_TEXTURE2D_DESC* desc) const override;

    VulkanTexture& getTexture() const { return *m_texture; }

    bool map(uint32_t subresource, D3D11_MAP type, D3D11_MAPPED_SUBRESOURCE& mapped);
    void unmap(uint32_t subresource);

private:
    /// A mip of a layer among the bytes of a dynamic texture.
    struct Subresource
    {
        size_t offset = 0;
        uint32_t rowBytes = 0;
        uint32_t size = 0;
        bool mapped = false;
    };

    VulkanTexture2D(const D3D11_TEXTURE2D_DESC& desc, const FormatInfo& format);

    bool createTexture(VulkanContext& context, const D3D11_SUBRESOURCE_DATA* data);
    void layOutBytes(const D3D11_SUBRESOURCE_DATA* data);

    uint32_t m_references = 1;
    D3D11_TEXTURE2D_DESC m_desc;
    const FormatInfo& m_format;
    SmartRef<VulkanTexture> m_texture;
    std::vector<Subresource> m_subresources; ///< of a dynamic texture
    std::vector<uint8_t> m_bytes;            ///< of a dynamic texture, rows without padding
};

} // namespace helvantine
