// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/GpuObject.h"
#include "vulkan/VulkanImage.h"
#include "vulkan/VulkanTexture.h"

#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/Viewport.h>

namespace helvantine
{

/// A render target: colour, depth, and the multisampled images that resolve into them.
///
/// What shaders can read are textures, which may outlive the target.
class VulkanRenderTarget final : public RenderTarget, public GpuObject
{
public:
    explicit VulkanRenderTarget(VulkanContext& context);
    ~VulkanRenderTarget() override;

    /// Arguments checked. False with the reason in the report.
    bool create(unsigned width, unsigned height, unsigned format, VkFormat colorFormat, unsigned depthFormat,
                VkSampleCountFlagBits samples, const char* name);

    unsigned getWidth() const override { return m_width; }
    unsigned getHeight() const override { return m_height; }
    unsigned getFormat() const override { return m_format; }
    Texture* getTexture() const override { return m_color.get(); }
    Texture* getDepthTexture() const override { return m_readableDepth.get(); }

    Viewport* getWholeViewport() const { return m_viewport.get(); } ///< of the target's size

    VkSampleCountFlagBits getSamples() const { return m_samples; }
    bool isMultisampled() const { return m_samples != VK_SAMPLE_COUNT_1_BIT; }
    bool hasStencil() const;

    VulkanTexture* getColorTexture() const { return m_color.get(); }
    VulkanTexture* getReadableDepth() const { return m_readableDepth.get(); }
    /// The images that are drawn to, multisampled where the target is; null where it has none.
    VulkanImage* getDrawnColor();
    VulkanImage* getDrawnDepth();
    VkFormat getColorFormat() const { return m_colorFormat; } ///< UNDEFINED without colour
    VkFormat getDepthFormat() const { return m_depthFormat; } ///< UNDEFINED without depth

    /// Of what the target's images hold; null where it has none.
    ImageHistory* getColorHistory() { return m_color ? &m_color->getHistory() : nullptr; }
    ImageHistory* getDepthHistory();

    /// True if the texture's image is one of this target's.
    bool owns(const VulkanTexture* texture) const
    {
        return texture && (texture == m_color.get() || texture == m_readableDepth.get());
    }

private:
    bool createColor(const char* name);
    bool createDepth(unsigned depthFormat, const char* name);
    void clearAll();
    void releaseGpu() override;

    unsigned m_width = 0;
    unsigned m_height = 0;
    unsigned m_format = 0;
    VkFormat m_colorFormat = VK_FORMAT_UNDEFINED;
    VkFormat m_depthFormat = VK_FORMAT_UNDEFINED;
    VkSampleCountFlagBits m_samples = VK_SAMPLE_COUNT_1_BIT;
    SmartRef<Viewport> m_viewport;
    SmartRef<VulkanTexture> m_color;
    SmartRef<VulkanTexture> m_readableDepth;
    ImageHistory m_depthHistory; ///< where shaders can't read the depth
    VulkanImage m_drawnColor;    ///< multisampled; empty if m_color itself is drawn to
    VulkanImage m_drawnDepth;    ///< empty if m_readableDepth itself is drawn to
};

} // namespace helvantine
