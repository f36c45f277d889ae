// SPDX-License-Identifier: MIT
#include "window/SwapchainPresenter.h"

#include "vulkan/FrameRing.h"
#include "vulkan/VulkanContext.h"
#include "window/WindowImpl.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#define SDL_MAIN_HANDLED
#include <SDL.h>
#include <SDL_vulkan.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace helvantine
{

namespace
{

/// What stands in for the display's pace while a window is minimised.
constexpr std::chrono::milliseconds minimizedPace(16);

/// A covered window may get no image to draw on for as long as it is covered: frames then go by unseen.
constexpr std::chrono::duration<uint64_t, std::nano> longestWait(200'000'000);

VkImageMemoryBarrier2 makeBarrier(VkImage image, VkImageLayout from, VkImageLayout to)
{
    VkImageMemoryBarrier2 barrier{VK_STRUCTURE_TYPE_IMAGE_MEMORY_BARRIER_2};
    barrier.oldLayout = from;
    barrier.newLayout = to;
    barrier.srcQueueFamilyIndex = VK_QUEUE_FAMILY_IGNORED;
    barrier.dstQueueFamilyIndex = VK_QUEUE_FAMILY_IGNORED;
    barrier.image = image;
    barrier.subresourceRange = {VK_IMAGE_ASPECT_COLOR_BIT, 0, 1, 0, 1};
    return barrier;
}

void record(VkCommandBuffer commands, const VkImageMemoryBarrier2& barrier)
{
    VkDependencyInfo info{VK_STRUCTURE_TYPE_DEPENDENCY_INFO};
    info.imageMemoryBarrierCount = 1;
    info.pImageMemoryBarriers = &barrier;
    vkCmdPipelineBarrier2(commands, &info);
}

VkSemaphoreSubmitInfo makeSubmitInfo(VkSemaphore semaphore, VkPipelineStageFlags2 stage)
{
    VkSemaphoreSubmitInfo info{VK_STRUCTURE_TYPE_SEMAPHORE_SUBMIT_INFO};
    info.semaphore = semaphore;
    info.stageMask = stage;
    return info;
}

/// The largest place of the picture's proportions in the window, in the middle.
VkRect2D fit(VkExtent2D picture, VkExtent2D window)
{
    const uint64_t across = uint64_t(window.width) * picture.height;
    const uint64_t down = uint64_t(window.height) * picture.width;
    VkExtent2D size = window;
    if (across > down)
        size.width = std::max(static_cast<uint32_t>(down / picture.height), 1u);
    else
        size.height = std::max(static_cast<uint32_t>(across / picture.width), 1u);
    return {{static_cast<int32_t>((window.width - size.width) / 2),
             static_cast<int32_t>((window.height - size.height) / 2)},
            size};
}

void setCorners(VkOffset3D (&corners)[2], const VkRect2D& place)
{
    corners[0] = {place.offset.x, place.offset.y, 0};
    corners[1] = {place.offset.x + static_cast<int32_t>(place.extent.width),
                  place.offset.y + static_cast<int32_t>(place.extent.height), 1};
}

/// What the picture leaves free.
void blacken(VkCommandBuffer commands, VkImage target)
{
    const VkClearColorValue black{{0, 0, 0, 1}};
    const VkImageSubresourceRange whole{VK_IMAGE_ASPECT_COLOR_BIT, 0, 1, 0, 1};
    vkCmdClearColorImage(commands, target, VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL, &black, 1, &whole);
    VkImageMemoryBarrier2 barrier =
        makeBarrier(target, VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL, VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL);
    barrier.srcStageMask = VK_PIPELINE_STAGE_2_CLEAR_BIT;
    barrier.srcAccessMask = VK_ACCESS_2_TRANSFER_WRITE_BIT;
    barrier.dstStageMask = VK_PIPELINE_STAGE_2_BLIT_BIT;
    barrier.dstAccessMask = VK_ACCESS_2_TRANSFER_WRITE_BIT;
    record(commands, barrier);
}

} // namespace

std::unique_ptr<Presenter> createPresenter(RenderWindow& window)
{
    SDL_Window* native = window.impl().window;
    if (!native) {
        reportProblem("window", "a hidden window shows nothing: the renderer has to be off-screen");
        return nullptr;
    }
    return std::make_unique<SwapchainPresenter>(native);
}

bool SwapchainPresenter::getInstanceExtensions(std::vector<const char*>& extensions)
{
    unsigned count = 0;
    const size_t first = extensions.size();
    bool found = SDL_Vulkan_GetInstanceExtensions(m_window, &count, nullptr);
    extensions.resize(first + count);
    found = found && SDL_Vulkan_GetInstanceExtensions(m_window, &count, extensions.data() + first);
    if (!found)
        reportProblem("window", formatString("the display doesn't work with Vulkan: %s", SDL_GetError()));
    return found;
}

VkSurfaceKHR SwapchainPresenter::createSurface(VkInstance instance)
{
    if (!SDL_Vulkan_CreateSurface(m_window, instance, &m_surface)) {
        reportProblem("window", formatString("no surface to draw on: %s", SDL_GetError()));
        m_surface = VK_NULL_HANDLE;
    }
    return m_surface;
}

bool SwapchainPresenter::create(VulkanContext& context, bool verticalSync)
{
    m_context = &context;
    m_verticalSync = verticalSync;
    VulkanDevice& device = context.device();
    const VkSemaphoreCreateInfo info{VK_STRUCTURE_TYPE_SEMAPHORE_CREATE_INFO};
    for (Turn& turn : m_turns) {
        if (!device.check(vkCreateSemaphore(device.getHandle(), &info, nullptr, &turn.acquired),
                          "making a semaphore"))
            return false;
    }
    return true;
}

/// Makes the swapchain anew if the window changed. False while there is nothing to show on.
bool SwapchainPresenter::fitSwapchain()
{
    unsigned width = 0;
    unsigned height = 0;
    getDrawableSize(m_window, width, height);
    if (!m_outdated && width == m_width && height == m_height)
        return true;
    // Frames and their way to the display must be through with the old images.
    vkDeviceWaitIdle(m_context->device().getHandle());
    m_outdated = !m_swapchain.create(m_context->device(), m_surface, width, height, m_verticalSync);
    m_width = width;
    m_height = height;
    return !m_outdated;
}

/// Takes an image to show on. One that is merely not ideal will do: a change of size is seen elsewhere.
bool SwapchainPresenter::acquire(const Turn& turn, uint32_t& index)
{
    VulkanDevice& device = m_context->device();
    for (int attempt = 0; attempt < 2 && fitSwapchain(); ++attempt) {
        const VkResult result =
            vkAcquireNextImageKHR(device.getHandle(), m_swapchain.getHandle(), longestWait.count(),
                                  turn.acquired, VK_NULL_HANDLE, &index);
        if (result == VK_SUCCESS || result == VK_SUBOPTIMAL_KHR)
            return true;
        if (result == VK_TIMEOUT || result == VK_NOT_READY)
            return false;
        m_outdated = true;
        if (result != VK_ERROR_OUT_OF_DATE_KHR) {
            device.check(result, "waiting for the window");
            return false;
        }
    }
    return false;
}

void SwapchainPresenter::present(VulkanImage& backBuffer)
{
    if (m_context->device().isLost())
        return;
    if (SDL_GetWindowFlags(m_window) & SDL_WINDOW_MINIMIZED) {
        if (m_verticalSync)
            std::this_thread::sleep_for(minimizedPace);
        return;
    }
    FrameRing& frames = m_context->frames();
    Turn& turn = m_turns[m_nextTurn];
    frames.wait(turn.serial);
    uint32_t index = 0;
    if (!acquire(turn, index))
        return;
    m_nextTurn = (m_nextTurn + 1) % m_turns.size();

    copy(backBuffer, m_swapchain.getImage(index).image);
    turn.serial = frames.getSerial();
    const VkSemaphoreSubmitInfo wait = makeSubmitInfo(turn.acquired, VK_PIPELINE_STAGE_2_BLIT_BIT);
    const VkSemaphoreSubmitInfo signal =
        makeSubmitInfo(m_swapchain.getImage(index).drawn, VK_PIPELINE_STAGE_2_ALL_COMMANDS_BIT);
    if (m_context->submit(&wait, &signal))
        show(index);
}

void SwapchainPresenter::copy(VulkanImage& backBuffer, VkImage target)
{
    const VkCommandBuffer commands = m_context->commandsOutsideRendering();
    m_context->barriers().add(commands, backBuffer, ImageUse::CopySource);
    m_context->barriers().flush(commands);

    // Starts where the wait for the image ends.
    VkImageMemoryBarrier2 barrier =
        makeBarrier(target, VK_IMAGE_LAYOUT_UNDEFINED, VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL);
    barrier.srcStageMask = VK_PIPELINE_STAGE_2_BLIT_BIT;
    barrier.dstStageMask = VK_PIPELINE_STAGE_2_CLEAR_BIT | VK_PIPELINE_STAGE_2_BLIT_BIT;
    barrier.dstAccessMask = VK_ACCESS_2_TRANSFER_WRITE_BIT;
    record(commands, barrier);

    const VkExtent2D window = m_swapchain.getExtent();
    const ImageDescription& source = backBuffer.description;
    const VkExtent2D picture{source.width, source.height};
    const VkRect2D place = fit(picture, window);
    if (place.extent.width != window.width || place.extent.height != window.height)
        blacken(commands, target);
    VkImageBlit2 region{VK_STRUCTURE_TYPE_IMAGE_BLIT_2};
    region.srcSubresource = {VK_IMAGE_ASPECT_COLOR_BIT, 0, 0, 1};
    setCorners(region.srcOffsets, {{0, 0}, picture});
    region.dstSubresource = {VK_IMAGE_ASPECT_COLOR_BIT, 0, 0, 1};
    setCorners(region.dstOffsets, place);
    VkBlitImageInfo2 blit{VK_STRUCTURE_TYPE_BLIT_IMAGE_INFO_2};
    blit.srcImage = backBuffer.image;
    blit.srcImageLayout = VK_IMAGE_LAYOUT_TRANSFER_SRC_OPTIMAL;
    blit.dstImage = target;
    blit.dstImageLayout = VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL;
    blit.regionCount = 1;
    blit.pRegions = &region;
    const bool linear = (m_context->device().getFormatFeatures(source.format) &
                         VK_FORMAT_FEATURE_SAMPLED_IMAGE_FILTER_LINEAR_BIT) != 0;
    const bool sameSize = place.extent.width == source.width && place.extent.height == source.height;
    blit.filter = linear && !sameSize ? VK_FILTER_LINEAR : VK_FILTER_NEAREST;
    vkCmdBlitImage2(commands, &blit);

    barrier = makeBarrier(target, VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL, VK_IMAGE_LAYOUT_PRESENT_SRC_KHR);
    barrier.srcStageMask = VK_PIPELINE_STAGE_2_BLIT_BIT;
    barrier.srcAccessMask = VK_ACCESS_2_TRANSFER_WRITE_BIT;
    record(commands, barrier);
}

void SwapchainPresenter::show(uint32_t index)
{
    const VkSwapchainKHR swapchain = m_swapchain.getHandle();
    VkPresentInfoKHR info{VK_STRUCTURE_TYPE_PRESENT_INFO_KHR};
    info.waitSemaphoreCount = 1;
    info.pWaitSemaphores = &m_swapchain.getImage(index).drawn;
    info.swapchainCount = 1;
    info.pSwapchains = &swapchain;
    info.pImageIndices = &index;
    const VkResult result = vkQueuePresentKHR(m_context->device().getQueue(), &info);
    if (result == VK_ERROR_OUT_OF_DATE_KHR)
        m_outdated = true;
    else if (result != VK_SUBOPTIMAL_KHR)
        m_context->device().check(result, "showing the back buffer");
}

void SwapchainPresenter::destroy(VkInstance instance)
{
    if (m_context) {
        VulkanDevice& device = m_context->device();
        vkDeviceWaitIdle(device.getHandle());
        m_swapchain.destroy(device);
        for (Turn& turn : m_turns)
            vkDestroySemaphore(device.getHandle(), turn.acquired, nullptr);
    }
    m_turns = {};
    m_context = nullptr;
    vkDestroySurfaceKHR(instance, m_surface, nullptr);
    m_surface = VK_NULL_HANDLE;
}

} // namespace helvantine
