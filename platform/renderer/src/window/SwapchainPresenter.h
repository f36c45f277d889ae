// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/Presenter.h"
#include "window/Swapchain.h"

#include <array>

struct SDL_Window;

namespace helvantine
{

/// Shows the back buffer in a window of the desktop.
class SwapchainPresenter final : public Presenter
{
public:
    explicit SwapchainPresenter(SDL_Window* window) : m_window(window) {}

    bool getInstanceExtensions(std::vector<const char*>& extensions) override;
    VkSurfaceKHR createSurface(VkInstance instance) override;
    bool create(VulkanContext& context, bool verticalSync) override;
    void present(VulkanImage& backBuffer) override;
    void destroy(VkInstance instance) override;

private:
    /// A semaphore that tells when an image of the window may be written, and the batch that waits for it.
    struct Turn
    {
        VkSemaphore acquired = VK_NULL_HANDLE;
        uint64_t serial = 0;
    };

    bool fitSwapchain();
    bool acquire(const Turn& turn, uint32_t& index);
    void copy(VulkanImage& backBuffer, VkImage target);
    void show(uint32_t index);

    SDL_Window* m_window;
    VulkanContext* m_context = nullptr;
    VkSurfaceKHR m_surface = VK_NULL_HANDLE;
    Swapchain m_swapchain;
    std::array<Turn, 3> m_turns;
    uint32_t m_nextTurn = 0;
    unsigned m_width = 0; ///< of the window when the swapchain was made
    unsigned m_height = 0;
    bool m_verticalSync = false;
    bool m_outdated = true; ///< the swapchain no longer fits the window
};

} // namespace helvantine
