// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"

#include <memory>
#include <vector>

namespace helvantine
{

class RenderWindow;
class VulkanContext;
struct VulkanImage;

/// What the renderer needs of a window: a surface, and the back buffer's way onto it.
///
/// Made before the instance, deleted before the device. Implemented beside RenderWindow.
class Presenter
{
public:
    virtual ~Presenter() = default;

    /// Appends the instance extensions that the window's surface needs.
    virtual bool getInstanceExtensions(std::vector<const char*>& extensions) = 0;

    /// The surface, owned by the presenter; null with the reason in the report.
    virtual VkSurfaceKHR createSurface(VkInstance instance) = 0;

    /// Called once the device is there. The swapchain itself may be made at the first present.
    virtual bool create(VulkanContext& context, bool verticalSync) = 0;

    /// Copies the back buffer, scaled to the window, and presents it.
    ///
    /// Records into context.commandsOutsideRendering() (the back buffer through context.barriers()), submits
    /// with context.submit and the acquire and present semaphores, and presents. Makes the swapchain anew
    /// when the window changed.
    virtual void present(VulkanImage& backBuffer) = 0;

    /// Destroys swapchain and surface. The GPU is idle; instance and device are still there.
    virtual void destroy(VkInstance instance) = 0;
};

/// Implemented beside RenderWindow; null when the window has no native window, with the reason in the report.
std::unique_ptr<Presenter> createPresenter(RenderWindow& window);

} // namespace helvantine
