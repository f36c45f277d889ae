// SPDX-License-Identifier: MIT
#include <helvantine/renderer/Renderer.h>

#include "vulkan/DrawRecorder.h"
#include "vulkan/FormatTable.h"
#include "vulkan/FrameHistory.h"
#include "vulkan/FrameRing.h"
#include "vulkan/RendererImpl.h"
#include "vulkan/TargetPass.h"
#include "vulkan/VulkanShader.h"

#include <helvantine/core/Report.h>
#include <helvantine/renderer/RenderWindow.h>

#include <algorithm>
#include <cstring>

namespace helvantine
{

Renderer* g_renderer = nullptr;
bool Renderer::Impl::s_validation = false;

Renderer::Renderer() : m_impl(std::make_unique<Impl>())
{
    m_impl->targets.reserve(16);
    m_impl->viewports.reserve(32);
}

Renderer::~Renderer()
{
    m_impl->destroy();
    if (g_renderer == this)
        g_renderer = nullptr;
}

/// The order counts: what draws goes before the device, the window's part before the instance.
void Renderer::Impl::destroy()
{
    clearStacks();
    screen.reset();
    backBuffer = nullptr;
    if (context)
        context->waitForGpu();
    readBack.reset();
    if (presenter && context && context->instance().getHandle())
        presenter->destroy(context->instance().getHandle());
    device.reset();
    immediate.reset();
    context.reset();
    presenter.reset();
}

bool Renderer::create(const DXGI_MODE_DESC& mode, bool fullscreen, bool verticalSync, unsigned sampleCount,
                      unsigned sampleQuality, RenderWindow* window, bool offScreen)
{
    if (m_impl->context || g_renderer) {
        reportProblem("renderer", "there is a renderer already");
        return false;
    }
    if (!offScreen) {
        m_impl->presenter = window ? createPresenter(*window) : nullptr;
        if (!m_impl->presenter) {
            reportProblem("renderer", "there is no window to draw to");
            return false;
        }
    }
    prepareShaderCompiler();
    m_impl->context = std::make_unique<VulkanContext>();
    g_renderer = this;
    const bool made = m_impl->context->create(m_impl->presenter.get(), Impl::s_validation) &&
                      m_impl->createBackBuffer(mode, sampleCount, sampleQuality) &&
                      (!m_impl->presenter || m_impl->presenter->create(*m_impl->context, verticalSync));
    if (!made) {
        m_impl->destroy();
        g_renderer = nullptr;
        return false;
    }
    if (fullscreen && !offScreen)
        window->setFullscreen(true);
    m_impl->readBack = std::make_unique<ReadBack>(*m_impl->context);
    m_impl->device = std::make_unique<TextureDevice>(*m_impl->context);
    m_impl->immediate = std::make_unique<ImmediateContext>(*m_impl->context);
    m_impl->screen = std::make_unique<ScreenRenderer>();
    return true;
}

bool Renderer::Impl::createBackBuffer(const DXGI_MODE_DESC& mode, unsigned sampleCount,
                                      unsigned sampleQuality)
{
    const unsigned format = mode.Format == DXGI_FORMAT_UNKNOWN ? DXGI_FORMAT_B8G8R8A8_UNORM : mode.Format;
    backBuffer = static_cast<VulkanRenderTarget*>(createRenderTarget(
        mode.Width, mode.Height, format, sampleCount, sampleQuality, DXGI_FORMAT_D24_UNORM_S8_UINT));
    return backBuffer.get() != nullptr;
}

ID3D11Device* Renderer::getDevice() const
{
    return m_impl->device.get();
}

ID3D11DeviceContext* Renderer::getContext() const
{
    return m_impl->immediate.get();
}

ScreenRenderer* Renderer::getScreenRenderer() const
{
    return m_impl->screen.get();
}

void Renderer::beginFrame(RenderTarget* target)
{
    if (!m_impl->context)
        return;
    m_impl->clearStacks();
    m_impl->context->frames().wait(m_impl->frameSerials[0]);
    m_impl->context->frames().beginFrame();
    m_impl->context->stats().drawsLastFrame = 0;
    pushRenderTarget(target ? target : m_impl->backBuffer.get());
}

void Renderer::endFrame()
{
    if (!m_impl->context)
        return;
    m_impl->clearStacks();
    VulkanContext& context = *m_impl->context;
    context.frames().endFrame();
    m_impl->frameSerials = {m_impl->frameSerials[1], context.frames().getSerial()};
    context.submit();
    if (context.isOffline())
        context.frames().waitForAll();
    ++context.stats().frames;
}

void Renderer::present()
{
    if (!m_impl->presenter || !m_impl->context || m_impl->context->device().isLost())
        return;
    m_impl->presenter->present(m_impl->backBuffer->getColorTexture()->getImage());
}

void Renderer::setOffline(bool offline)
{
    if (m_impl->context)
        m_impl->context->setOffline(offline);
}

void Renderer::setTimed(bool timed)
{
    if (m_impl->context)
        m_impl->context->frames().setTimed(timed);
}

void Renderer::pushRenderTarget(RenderTarget* target)
{
    auto* entry = static_cast<VulkanRenderTarget*>(target);
    if (!entry || !m_impl->context || entry->getContext() != m_impl->context.get())
        return;
    m_impl->targets.push_back({entry, m_impl->viewports.size()});
    m_impl->viewports.push_back(entry->getWholeViewport());
    m_impl->applyTarget();
    m_impl->applyViewport();
}

void Renderer::popRenderTarget()
{
    if (m_impl->targets.empty())
        return;
    m_impl->viewports.resize(m_impl->targets.back().viewports);
    m_impl->targets.pop_back();
    m_impl->applyTarget();
    m_impl->applyViewport();
}

RenderTarget* Renderer::getRenderTarget() const
{
    return m_impl->targets.empty() ? nullptr : m_impl->targets.back().target.get();
}

unsigned Renderer::getRenderTargetCount() const
{
    return static_cast<unsigned>(m_impl->targets.size());
}

void Renderer::pushViewport(Viewport* viewport)
{
    if (!viewport || !m_impl->context)
        return;
    m_impl->viewports.push_back(viewport);
    m_impl->applyViewport();
}

void Renderer::popViewport()
{
    const bool hasTarget = !m_impl->targets.empty();
    const size_t kept = hasTarget ? m_impl->targets.back().viewports + 1 : 0;
    if (m_impl->viewports.size() <= kept)
        return;
    m_impl->viewports.pop_back();
    m_impl->applyViewport();
}

Viewport* Renderer::getViewport() const
{
    return m_impl->viewports.empty() ? nullptr : m_impl->viewports.back().get();
}

void Renderer::Impl::applyTarget()
{
    context->pass().setTarget(targets.empty() ? nullptr : targets.back().target.get());
}

void Renderer::Impl::applyViewport()
{
    context->draws().setViewport(viewports.empty() ? nullptr : viewports.back().get());
}

void Renderer::Impl::clearStacks()
{
    if (targets.empty() && viewports.empty())
        return;
    context->pass().setTarget(nullptr);
    context->draws().setViewport(nullptr);
    targets.clear();
    viewports.clear();
}

void Renderer::clear(unsigned flags, const Vec4& color, float depth, unsigned char stencil)
{
    if (m_impl->context)
        m_impl->context->pass().clear(flags, color, depth, stencil);
}

void Renderer::skipFrames()
{
    if (m_impl->context)
        m_impl->context->history().skipFrames();
}

CarriedPicture Renderer::findCarried(const RenderTarget* target) const
{
    const auto* source = target ? static_cast<const VulkanRenderTarget*>(target) : m_impl->backBuffer.get();
    if (!source || !source->getColorTexture() || source->getContext() != m_impl->context.get())
        return {};
    return m_impl->context->history().findCarried(source->getColorTexture()->getHistory());
}

void Renderer::declareQuad(const std::array<Vec3, 4>& corners, const Matrix& toClip)
{
    if (m_impl->context)
        m_impl->context->history().noteQuad(corners, toClip);
}

bool Renderer::readBack(RenderTarget* target, std::vector<uint8_t>& pixels)
{
    auto* source = target ? static_cast<VulkanRenderTarget*>(target) : m_impl->backBuffer.get();
    const FormatInfo* format = source ? findFormat(source->getFormat()) : nullptr;
    if (!format || !m_impl->readBack || source->getContext() != m_impl->context.get())
        return false;
    const uint64_t bytes = countImageBytes(*format, source->getWidth(), source->getHeight());
    const uint8_t* data = m_impl->readBack->read(source->getColorTexture()->getImage(), bytes);
    if (data)
        pixels.assign(data, data + bytes);
    return data != nullptr;
}

bool Renderer::readBackDepth(RenderTarget* target, std::vector<float>& depth)
{
    auto* source = static_cast<VulkanRenderTarget*>(target);
    if (!source || !m_impl->readBack || !source->getReadableDepth() ||
        source->getContext() != m_impl->context.get())
        return false;
    const size_t count = size_t(source->getWidth()) * source->getHeight();
    const uint8_t* data =
        m_impl->readBack->read(source->getReadableDepth()->getImage(), count * sizeof(float));
    if (!data)
        return false;
    depth.resize(count);
    std::memcpy(depth.data(), data, count * sizeof(float));
    return true;
}

RenderTarget* Renderer::getBackBuffer() const
{
    return m_impl->backBuffer.get();
}

const RendererStats& Renderer::getStats() const
{
    if (m_impl->context) {
        m_impl->stats = m_impl->context->stats();
        m_impl->stats.gpuSecondsLastFrame = m_impl->context->frames().getGpuSeconds();
    }
    return m_impl->stats;
}

const char* Renderer::getDeviceName() const
{
    return m_impl->context ? m_impl->context->device().getProperties().deviceName : "";
}

void Renderer::enableValidation(bool enable)
{
    Impl::s_validation = enable;
}

} // namespace helvantine
