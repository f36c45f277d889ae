// SPDX-License-Identifier: MIT
#include "vulkan/TargetPass.h"

#include "vulkan/DrawRecorder.h"
#include "vulkan/FrameHistory.h"
#include "vulkan/SlotState.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanRenderTarget.h"

#include <helvantine/renderer/Renderer.h>

#include <algorithm>
#include <cmath>

namespace helvantine
{

TargetPass::TargetPass(VulkanContext& context) : m_context(context), m_queries(context) {}

void TargetPass::setTarget(VulkanRenderTarget* target)
{
    if (target == m_target)
        return;
    if (m_waiting.flags != 0)
        end();
    m_target = target;
    m_context.draws().targetChanged();
    if (target)
        m_context.slots().unbindTexturesOf(*target);
}

void TargetPass::clear(unsigned flags, const Vec4& color, float depth, uint8_t stencil)
{
    if (!m_target || m_context.device().isLost())
        return;
    if (!m_target->getColorTexture())
        flags &= ~static_cast<unsigned>(Renderer::ClearColor);
    if (!m_target->getDrawnDepth())
        flags &= ~static_cast<unsigned>(Renderer::ClearDepth);
    flags &= Renderer::ClearColor | Renderer::ClearDepth;
    m_context.history().noteClear(*m_target, flags);
    WaitingClear clear = m_open == m_target ? WaitingClear() : m_waiting;
    clear.flags |= flags;
    if (flags & Renderer::ClearColor)
        clear.color = {{color.x, color.y, color.z, color.w}};
    if (flags & Renderer::ClearDepth)
        clear.depth = {std::isnan(depth) ? 1.0f : std::clamp(depth, 0.0f, 1.0f), stencil};
    if (m_open == m_target)
        clearAttachments(clear);
    else
        m_waiting = clear;
}

void TargetPass::clearAttachments(const WaitingClear& clear)
{
    VkClearAttachment attachments[2];
    uint32_t count = 0;
    if (clear.flags & Renderer::ClearColor) {
        attachments[count] = {VK_IMAGE_ASPECT_COLOR_BIT, 0, {}};
        attachments[count++].clearValue.color = clear.color;
    }
    if (clear.flags & Renderer::ClearDepth) {
        attachments[count] = {m_target->getDrawnDepth()->description.aspect, 0, {}};
        attachments[count++].clearValue.depthStencil = clear.depth;
    }
    const VkClearRect whole{{{0, 0}, {m_target->getWidth(), m_target->getHeight()}}, 0, 1};
    if (count > 0)
        vkCmdClearAttachments(m_context.commands(), count, attachments, 1, &whole);
}

bool TargetPass::begin()
{
    if (!m_target)
        return false;
    if (m_open == m_target)
        return true;
    close();
    const VkCommandBuffer commands = m_context.commands();
    if (m_left != m_target)
        makeReadable(commands);
    m_left = nullptr;
    m_context.slots().addBarriers(commands);
    addTargetBarriers(commands);
    m_context.barriers().flush(commands);
    open();
    m_queries.openRendering();
    return true;
}

void TargetPass::end()
{
    if (m_waiting.flags != 0)
        begin();
    close();
}

void TargetPass::close()
{
    if (!m_open)
        return;
    m_queries.closeRendering();
    vkCmdEndRendering(m_context.commands());
    m_context.device().endLabel(m_context.commands());
    m_context.draws().renderingClosed();
    m_left = m_open;
    m_open = nullptr;
}

void TargetPass::finishBatch()
{
    end();
    m_queries.finishBatch();
}

void TargetPass::forget(VulkanRenderTarget& target)
{
    if (m_target == &target)
        setTarget(nullptr);
    if (m_open == &target)
        close();
    if (m_left == &target)
        m_left = nullptr; // its textures become readable when they are bound
}

void TargetPass::makeReadable(VkCommandBuffer commands)
{
    if (!m_left)
        return;
    for (VulkanTexture* texture : {m_left->getColorTexture(), m_left->getReadableDepth()}) {
        if (texture && texture->getImage().image)
            m_context.barriers().add(commands, texture->getImage(), ImageUse::Sampled);
    }
}

void TargetPass::addTargetBarriers(VkCommandBuffer commands)
{
    ImageBarriers& barriers = m_context.barriers();
    if (VulkanImage* color = m_target->getDrawnColor())
        barriers.add(commands, *color, ImageUse::ColorTarget);
    if (VulkanImage* depth = m_target->getDrawnDepth())
        barriers.add(commands, *depth, ImageUse::DepthTarget);
    if (!m_target->isMultisampled())
        return;
    if (m_target->getColorTexture())
        barriers.add(commands, m_target->getColorTexture()->getImage(), ImageUse::ColorTarget);
    if (m_target->getReadableDepth())
        barriers.add(commands, m_target->getReadableDepth()->getImage(), ImageUse::DepthTarget);
}

void TargetPass::open()
{
    VkRenderingAttachmentInfo color{VK_STRUCTURE_TYPE_RENDERING_ATTACHMENT_INFO};
    VkRenderingAttachmentInfo depth{VK_STRUCTURE_TYPE_RENDERING_ATTACHMENT_INFO};
    VkRenderingInfo info{VK_STRUCTURE_TYPE_RENDERING_INFO};
    info.renderArea.extent = {m_target->getWidth(), m_target->getHeight()};
    info.layerCount = 1;
    if (VulkanImage* image = m_target->getDrawnColor()) {
        color.imageView = image->targetView;
        color.imageLayout = VK_IMAGE_LAYOUT_COLOR_ATTACHMENT_OPTIMAL;
        color.loadOp =
            m_waiting.flags & Renderer::ClearColor ? VK_ATTACHMENT_LOAD_OP_CLEAR : VK_ATTACHMENT_LOAD_OP_LOAD;
        color.storeOp = VK_ATTACHMENT_STORE_OP_STORE;
        color.clearValue.color = m_waiting.color;
        if (m_target->isMultisampled()) {
            color.resolveMode = VK_RESOLVE_MODE_AVERAGE_BIT;
            color.resolveImageView = m_target->getColorTexture()->getImage().targetView;
            color.resolveImageLayout = VK_IMAGE_LAYOUT_COLOR_ATTACHMENT_OPTIMAL;
        }
        info.colorAttachmentCount = 1;
        info.pColorAttachments = &color;
    }
    if (VulkanImage* image = m_target->getDrawnDepth()) {
        depth.imageView = image->targetView;
        depth.imageLayout = VK_IMAGE_LAYOUT_DEPTH_STENCIL_ATTACHMENT_OPTIMAL;
        depth.loadOp =
            m_waiting.flags & Renderer::ClearDepth ? VK_ATTACHMENT_LOAD_OP_CLEAR : VK_ATTACHMENT_LOAD_OP_LOAD;
        depth.storeOp = VK_ATTACHMENT_STORE_OP_STORE;
        depth.clearValue.depthStencil = m_waiting.depth;
        if (m_target->isMultisampled() && m_target->getReadableDepth()) {
            depth.resolveMode = VK_RESOLVE_MODE_SAMPLE_ZERO_BIT;
            depth.resolveImageView = m_target->getReadableDepth()->getImage().targetView;
            depth.resolveImageLayout = VK_IMAGE_LAYOUT_DEPTH_STENCIL_ATTACHMENT_OPTIMAL;
        }
        info.pDepthAttachment = &depth;
        info.pStencilAttachment = m_target->hasStencil() ? &depth : nullptr;
    }
    m_context.device().beginLabel(m_context.commands(), "draw to target", m_target->getWidth(),
                                  m_target->getHeight());
    vkCmdBeginRendering(m_context.commands(), &info);
    m_waiting = {};
    m_open = m_target;
}

} // namespace helvantine
