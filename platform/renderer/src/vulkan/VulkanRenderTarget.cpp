// SPDX-License-Identifier: MIT
#include "vulkan/VulkanRenderTarget.h"

#include "vulkan/FormatTable.h"
#include "vulkan/TargetPass.h"
#include "vulkan/VulkanContext.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>
#include <helvantine/renderer/D3D11Types.h>

#include <algorithm>
#include <bit>
#include <memory>

namespace helvantine
{

namespace
{

constexpr VkImageUsageFlags readable =
    VK_IMAGE_USAGE_SAMPLED_BIT | VK_IMAGE_USAGE_TRANSFER_SRC_BIT | VK_IMAGE_USAGE_TRANSFER_DST_BIT;

/// What a caller asks for, as it stands in the call.
struct TargetRequest
{
    unsigned width;
    unsigned height;
    unsigned format;
    unsigned samples;
    unsigned quality;
    unsigned depthFormat;
};

/// What the device can't give of it; null if it can be made.
const char* findFault(const TargetRequest& request, const FormatInfo* format, const VulkanDevice& device)
{
    const VkPhysicalDeviceLimits& limits = device.getProperties().limits;
    const unsigned side = std::min(
        {16384u, limits.maxImageDimension2D, limits.maxFramebufferWidth, limits.maxFramebufferHeight});
    if (request.width == 0 || request.height == 0 || request.width > side || request.height > side)
        return "size";
    if (request.format != DXGI_FORMAT_UNKNOWN && (!format || !format->colorTarget))
        return "colour format";
    if (request.depthFormat != DXGI_FORMAT_UNKNOWN && request.depthFormat != DXGI_FORMAT_D24_UNORM_S8_UINT &&
        request.depthFormat != DXGI_FORMAT_R32_TYPELESS)
        return "depth format";
    if (request.format == DXGI_FORMAT_UNKNOWN && request.depthFormat == DXGI_FORMAT_UNKNOWN)
        return "target without an image";
    if (!std::has_single_bit(request.samples) || !(device.getFeatures().samples & request.samples))
        return "sample count";
    return request.quality != 0 ? "sample quality" : nullptr;
}

} // namespace

VulkanRenderTarget::VulkanRenderTarget(VulkanContext& context) : GpuObject(context) {}

VulkanRenderTarget::~VulkanRenderTarget()
{
    if (getContext())
        releaseGpu();
}

bool VulkanRenderTarget::create(unsigned width, unsigned height, unsigned format, VkFormat colorFormat,
                                unsigned depthFormat, VkSampleCountFlagBits samples, const char* name)
{
    m_width = width;
    m_height = height;
    m_format = format;
    m_colorFormat = colorFormat;
    m_samples = samples;
    m_depthHistory = FrameHistory::begin(*this);
    m_viewport = new Viewport(0.0f, 0.0f, static_cast<float>(width), static_cast<float>(height));
    if (colorFormat != VK_FORMAT_UNDEFINED && !createColor(name))
        return false;
    if (depthFormat != DXGI_FORMAT_UNKNOWN && !createDepth(depthFormat, name))
        return false;
    clearAll();
    return true;
}

bool VulkanRenderTarget::createColor(const char* name)
{
    ImageDescription description;
    description.format = m_colorFormat;
    description.width = m_width;
    description.height = m_height;
    description.usage = VK_IMAGE_USAGE_COLOR_ATTACHMENT_BIT | readable;
    description.name = name;
    VulkanImage image;
    if (!createImage(*getContext(), description, image))
        return false;
    m_color = new VulkanTexture(*getContext(), image);
    m_color->getHistory() = FrameHistory::begin(*this);
    if (!isMultisampled())
        return true;
    description.usage = VK_IMAGE_USAGE_COLOR_ATTACHMENT_BIT | VK_IMAGE_USAGE_TRANSFER_DST_BIT;
    description.samples = m_samples;
    return createImage(*getContext(), description, m_drawnColor);
}

bool VulkanRenderTarget::createDepth(unsigned depthFormat, const char* name)
{
    const bool shadersRead = depthFormat == DXGI_FORMAT_R32_TYPELESS;
    m_depthFormat =
        shadersRead ? VK_FORMAT_D32_SFLOAT : getContext()->device().getFeatures().depthStencilFormat;
    ImageDescription description;
    description.format = m_depthFormat;
    description.aspect = VK_IMAGE_ASPECT_DEPTH_BIT | (shadersRead ? 0 : VK_IMAGE_ASPECT_STENCIL_BIT);
    description.width = m_width;
    description.height = m_height;
    description.name = name;
    if (shadersRead) {
        description.usage = VK_IMAGE_USAGE_DEPTH_STENCIL_ATTACHMENT_BIT | readable;
        VulkanImage image;
        if (!createImage(*getContext(), description, image))
            return false;
        m_readableDepth = new VulkanTexture(*getContext(), image);
        m_readableDepth->getHistory() = FrameHistory::begin(*this);
        if (!isMultisampled())
            return true;
    }
    description.usage = VK_IMAGE_USAGE_DEPTH_STENCIL_ATTACHMENT_BIT | VK_IMAGE_USAGE_TRANSFER_DST_BIT;
    description.samples = m_samples;
    return createImage(*getContext(), description, m_drawnDepth);
}

/// Colour to 0, depth to 1, stencil to 0: the images that are drawn to and those that are read.
void VulkanRenderTarget::clearAll()
{
    VulkanContext& context = *getContext();
    const VkCommandBuffer commands = context.commandsOutsideRendering();
    VulkanImage* colors[] = {getDrawnColor(), isMultisampled() && m_color ? &m_color->getImage() : nullptr};
    VulkanImage* depths[] = {getDrawnDepth(),
                             isMultisampled() && m_readableDepth ? &m_readableDepth->getImage() : nullptr};
    for (VulkanImage* image : {colors[0], colors[1], depths[0], depths[1]}) {
        if (image)
            context.barriers().add(commands, *image, ImageUse::CopyTarget);
    }
    context.barriers().flush(commands);
    const VkClearColorValue black{};
    const VkClearDepthStencilValue far{1.0f, 0};
    for (VulkanImage* image : colors) {
        const VkImageSubresourceRange range{VK_IMAGE_ASPECT_COLOR_BIT, 0, 1, 0, 1};
        if (image)
            vkCmdClearColorImage(commands, image->image, VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL, &black, 1,
                                 &range);
    }
    for (VulkanImage* image : depths) {
        if (!image)
            continue;
        const VkImageSubresourceRange range{image->description.aspect, 0, 1, 0, 1};
        vkCmdClearDepthStencilImage(commands, image->image, VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL, &far, 1,
                                    &range);
    }
    if (m_color)
        context.barriers().add(commands, m_color->getImage(), ImageUse::Sampled);
    if (m_readableDepth)
        context.barriers().add(commands, m_readableDepth->getImage(), ImageUse::Sampled);
    context.barriers().flush(commands);
}

bool VulkanRenderTarget::hasStencil() const
{
    return m_depthFormat != VK_FORMAT_UNDEFINED && !m_readableDepth;
}

VulkanImage* VulkanRenderTarget::getDrawnColor()
{
    if (m_drawnColor.image)
        return &m_drawnColor;
    return m_color ? &m_color->getImage() : nullptr;
}

VulkanImage* VulkanRenderTarget::getDrawnDepth()
{
    if (m_drawnDepth.image)
        return &m_drawnDepth;
    return m_readableDepth ? &m_readableDepth->getImage() : nullptr;
}

ImageHistory* VulkanRenderTarget::getDepthHistory()
{
    if (m_readableDepth)
        return &m_readableDepth->getHistory();
    return m_depthFormat != VK_FORMAT_UNDEFINED ? &m_depthHistory : nullptr;
}

void VulkanRenderTarget::releaseGpu()
{
    getContext()->pass().forget(*this);
    destroyImage(*getContext(), m_drawnColor);
    destroyImage(*getContext(), m_drawnDepth);
}

RenderTarget* createRenderTarget(unsigned width, unsigned height, unsigned format, unsigned sampleCount,
                                 unsigned sampleQuality, unsigned depthFormat)
{
    VulkanContext* context = VulkanContext::getCurrent();
    if (!context)
        return nullptr;
    const FormatInfo* info = findFormat(format);
    const TargetRequest request{width, height, format, sampleCount, sampleQuality, depthFormat};
    if (const char* fault = findFault(request, info, context->device())) {
        reportProblem("renderer",
                      formatString("no render target of %u by %u, format %u, %u samples of quality %u, "
                                   "depth format %u: the device can't make this %s",
                                   width, height, format, sampleCount, sampleQuality, depthFormat, fault));
        return nullptr;
    }
    auto target = std::make_unique<VulkanRenderTarget>(*context);
    const bool made =
        target->create(width, height, format, info ? info->vulkan : VK_FORMAT_UNDEFINED, depthFormat,
                       static_cast<VkSampleCountFlagBits>(sampleCount), "render target");
    return made ? target.release() : nullptr;
}

} // namespace helvantine
