// SPDX-License-Identifier: MIT
#include "vulkan/VulkanTexture2D.h"

#include "image/ImageData.h"
#include "vulkan/TextureUpload.h"
#include "vulkan/VulkanContext.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#include <algorithm>
#include <cinttypes>
#include <cstring>
#include <memory>

namespace helvantine
{

namespace
{

constexpr uint32_t miscCube = 4; // D3D11_RESOURCE_MISC_TEXTURECUBE

/// The description with mips 0 resolved to a full chain.
bool resolve(D3D11_TEXTURE2D_DESC& desc, const FormatInfo* format)
{
    constexpr uint32_t mostLayers = 2048;
    if (!format || desc.Width == 0 || desc.Height == 0 || desc.Width > maxImageSide ||
        desc.Height > maxImageSide)
        return false;
    const uint32_t fullChain = countMips(desc.Width, desc.Height);
    if (desc.MipLevels == 0)
        desc.MipLevels = fullChain;
    const bool cube = desc.MiscFlags == miscCube;
    return desc.MipLevels <= fullChain && desc.ArraySize >= 1 && desc.ArraySize <= mostLayers &&
           desc.SampleDesc.Count == 1 && desc.SampleDesc.Quality == 0 && (cube || desc.MiscFlags == 0) &&
           (!cube || (desc.ArraySize == 6 && desc.Width == desc.Height)) &&
           desc.BindFlags == D3D11_BIND_SHADER_RESOURCE;
}

/// Bytes of all mips and layers.
uint64_t countTextureBytes(const D3D11_TEXTURE2D_DESC& desc, const FormatInfo& format)
{
    uint64_t bytes = 0;
    for (uint32_t mip = 0; mip < desc.MipLevels; ++mip)
        bytes += countImageBytes(format, std::max(1u, desc.Width >> mip), std::max(1u, desc.Height >> mip));
    return bytes * desc.ArraySize;
}

bool isDynamic(const D3D11_TEXTURE2D_DESC& desc)
{
    return desc.Usage == D3D11_USAGE_DYNAMIC && (desc.CPUAccessFlags & D3D11_CPU_ACCESS_WRITE);
}

/// A texture that was made through the device, as shaders read it.
class WrappedTexture final : public Texture
{
public:
    explicit WrappedTexture(VulkanTexture2D& texture) : m_texture(texture) { m_texture.AddRef(); }
    ~WrappedTexture() override { m_texture.Release(); }

    void bind(unsigned slot) override { m_texture.getTexture().bind(slot); }
    void unbind(unsigned slot) override { m_texture.getTexture().unbind(slot); }
    unsigned getWidth() const override { return m_texture.getTexture().getWidth(); }
    unsigned getHeight() const override { return m_texture.getTexture().getHeight(); }

private:
    VulkanTexture2D& m_texture;
};

} // namespace

VulkanTexture2D::VulkanTexture2D(const D3D11_TEXTURE2D_DESC& desc, const FormatInfo& format)
    : m_desc(desc), m_format(format)
{
}

VulkanTexture2D* VulkanTexture2D::create(VulkanContext& context, const D3D11_TEXTURE2D_DESC& desc,
                                         const D3D11_SUBRESOURCE_DATA* data)
{
    D3D11_TEXTURE2D_DESC resolved = desc;
    const FormatInfo* format = findFormat(desc.Format);
    const bool usable =
        isDynamic(desc) || desc.Usage == D3D11_USAGE_DEFAULT || (desc.Usage == D3D11_USAGE_IMMUTABLE && data);
    if (!resolve(resolved, format) || !usable) {
        reportProblem("renderer",
                      formatString("no texture of %u by %u, %u mips, %u layers, format %u, %u samples, "
                                   "usage %u, bind flags %u, misc %u",
                                   desc.Width, desc.Height, desc.MipLevels, desc.ArraySize,
                                   unsigned(desc.Format), desc.SampleDesc.Count, unsigned(desc.Usage),
                                   desc.BindFlags, desc.MiscFlags));
        return nullptr;
    }
    constexpr uint64_t largest = uint64_t(2) << 30; // as in Direct3D; pitches of 32 bits end at twice that
    const uint64_t bytes = countTextureBytes(resolved, *format);
    if (bytes > largest) {
        reportProblem("renderer", formatString("no texture of %u by %u, %u layers, format %u: %" PRIu64
                                               " bytes, %" PRIu64 " are possible",
                                               desc.Width, desc.Height, desc.ArraySize, unsigned(desc.Format),
                                               bytes, largest));
        return nullptr;
    }
    std::unique_ptr<VulkanTexture2D> texture(new VulkanTexture2D(resolved, *format));
    return texture->createTexture(context, data) ? texture.release() : nullptr;
}

bool VulkanTexture2D::createTexture(VulkanContext& context, const D3D11_SUBRESOURCE_DATA* data)
{
    ImageDescription description;
    description.width = m_desc.Width;
    description.height = m_desc.Height;
    description.mips = m_desc.MipLevels;
    description.layers = m_desc.ArraySize;
    description.cube = m_desc.MiscFlags == miscCube;
    description.name = "texture of the device";
    VulkanImage image;
    if (!createSampledImage(context, m_format, description, image))
        return false;
    m_texture = new VulkanTexture(context, image);
    std::vector<TexelLevel> levels;
    for (uint32_t layer = 0; layer < m_desc.ArraySize; ++layer) {
        for (uint32_t mip = 0; mip < m_desc.MipLevels; ++mip) {
            const D3D11_SUBRESOURCE_DATA source =
                data ? data[layer * m_desc.MipLevels + mip] : D3D11_SUBRESOURCE_DATA();
            levels.push_back({static_cast<const uint8_t*>(source.pSysMem), source.SysMemPitch, mip, layer});
        }
    }
    if (isDynamic(m_desc))
        layOutBytes(data);
    return uploadTexels(context, m_texture->getImage(), m_format, levels);
}

void VulkanTexture2D::layOutBytes(const D3D11_SUBRESOURCE_DATA* data)
{
    size_t offset = 0;
    for (uint32_t index = 0; index < m_desc.ArraySize * m_desc.MipLevels; ++index) {
        const uint32_t mip = index % m_desc.MipLevels;
        const uint32_t width = std::max(1u, m_desc.Width >> mip);
        const uint32_t height = std::max(1u, m_desc.Height >> mip);
        const uint32_t rowBytes = countBlocks(m_format, width) * m_format.layout.blockBytes;
        const uint32_t rows = countBlocks(m_format, height);
        m_subresources.push_back({offset, rowBytes, rowBytes * rows});
        m_bytes.resize(offset + size_t(rowBytes) * rows);
        for (uint32_t row = 0; data && data[index].pSysMem && row < rows; ++row) {
            const auto* source = static_cast<const uint8_t*>(data[index].pSysMem);
            std::memcpy(m_bytes.data() + offset + size_t(row) * rowBytes,
                        source + size_t(row) * data[index].SysMemPitch, rowBytes);
        }
        offset = m_bytes.size();
    }
}

uint32_t VulkanTexture2D::AddRef()
{
    return ++m_references;
}

uint32_t VulkanTexture2D::Release()
{
    const uint32_t left = --m_references;
    if (left == 0)
        delete this;
    return left;
}

void VulkanTexture2D::GetDesc(D3D11_TEXTURE2D_DESC* desc) const
{
    if (desc)
        *desc = m_desc;
}

bool VulkanTexture2D::map(uint32_t subresource, D3D11_MAP type, D3D11_MAPPED_SUBRESOURCE& mapped)
{
    const bool writes = type == D3D11_MAP_WRITE_DISCARD || type == D3D11_MAP_WRITE_NO_OVERWRITE;
    if (!m_texture->getContext() || subresource >= m_subresources.size() || !writes)
        return false;
    Subresource& part = m_subresources[subresource];
    part.mapped = true;
    mapped = {m_bytes.data() + part.offset, part.rowBytes, part.size};
    return true;
}

void VulkanTexture2D::unmap(uint32_t subresource)
{
    if (subresource >= m_subresources.size() || !m_subresources[subresource].mapped)
        return;
    Subresource& part = m_subresources[subresource];
    part.mapped = false;
    VulkanContext* context = m_texture->getContext();
    if (!context || context->device().isLost())
        return;
    const TexelLevel level{m_bytes.data() + part.offset, part.rowBytes, subresource % m_desc.MipLevels,
                           subresource / m_desc.MipLevels};
    uploadTexels(*context, m_texture->getImage(), m_format, {&level, 1});
}

Texture* createTexture(ID3D11Texture2D* texture)
{
    return texture ? new WrappedTexture(static_cast<VulkanTexture2D&>(*texture)) : nullptr;
}

} // namespace helvantine
