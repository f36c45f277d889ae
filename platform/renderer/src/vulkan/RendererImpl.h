// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/ImmediateContext.h"
#include "vulkan/Presenter.h"
#include "vulkan/ReadBack.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanRenderTarget.h"

#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/renderer/ScreenRenderer.h>
#include <helvantine/renderer/Viewport.h>

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace helvantine
{

/// What a Renderer consists of. Members go in reverse order: the presenter's window side last but for itself.
struct Renderer::Impl
{
    /// A target with the viewport that came with it.
    struct TargetEntry
    {
        SmartRef<VulkanRenderTarget> target;
        size_t viewports = 0; ///< on the stack before it was pushed
    };

    bool createBackBuffer(const DXGI_MODE_DESC& mode, unsigned sampleCount, unsigned sampleQuality);
    void applyTarget();
    void applyViewport();
    void clearStacks();
    void destroy();

    std::unique_ptr<Presenter> presenter; ///< null off-screen
    std::unique_ptr<VulkanContext> context;
    std::unique_ptr<ReadBack> readBack;
    std::unique_ptr<TextureDevice> device;
    std::unique_ptr<ImmediateContext> immediate;
    std::unique_ptr<ScreenRenderer> screen;
    SmartRef<VulkanRenderTarget> backBuffer;
    std::vector<TargetEntry> targets;
    std::vector<SmartRef<Viewport>> viewports;
    std::array<uint64_t, 2> frameSerials{}; ///< batches that ended the last frames, oldest first
    mutable RendererStats stats;            ///< as handed out last
    static bool s_validation;
};

} // namespace helvantine
