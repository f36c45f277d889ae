// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/ActiveQueries.h"
#include "vulkan/VulkanApi.h"

#include <helvantine/core/Vec4.h>

namespace helvantine
{

class VulkanContext;
class VulkanRenderTarget;

/// Where drawing goes: the current target, and the stretch of rendering that is open.
///
/// Setting a target only marks it; rendering opens at the first draw and stays open until something is drawn
/// elsewhere or copied. A clear before the first draw becomes the load operation, a later one is recorded
/// among the draws. All barriers of a change of target are recorded as one.
class TargetPass
{
public:
    explicit TargetPass(VulkanContext& context);

    /// Null: nothing can be drawn. The textures of a target leave the slots.
    void setTarget(VulkanRenderTarget* target);
    VulkanRenderTarget* getTarget() const { return m_target; }

    /// flags: Renderer::ClearFlag.
    void clear(unsigned flags, const Vec4& color, float depth, uint8_t stencil);

    /// Opens rendering on the current target unless it is open; false without a target.
    bool begin();
    /// Closes rendering. Clears that wait for a draw are carried out.
    void end();
    /// Closes rendering and splits the begun queries at the end of a batch.
    void finishBatch();

    /// The target is being deleted. What was drawn or cleared is in its textures, which may outlive it.
    void forget(VulkanRenderTarget& target);

    ActiveQueries& queries() { return m_queries; }
    bool isOpen() const { return m_open != nullptr; }

private:
    struct WaitingClear
    {
        unsigned flags = 0;
        VkClearColorValue color{};
        VkClearDepthStencilValue depth{};
    };

    void close();
    void open();
    void makeReadable(VkCommandBuffer commands);
    void addTargetBarriers(VkCommandBuffer commands);
    void clearAttachments(const WaitingClear& clear);

    VulkanContext& m_context;
    ActiveQueries m_queries;
    VulkanRenderTarget* m_target = nullptr; ///< of the stack's top; the stack keeps it alive
    VulkanRenderTarget* m_open = nullptr;   ///< rendering is open on it
    VulkanRenderTarget* m_left = nullptr;   ///< drawn to last, in this batch or one before; not yet readable
    WaitingClear m_waiting;                 ///< of m_target
};

} // namespace helvantine
