// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"

#include <vector>

namespace helvantine
{

/// The Vulkan instance, with the validation layer and its messenger when asked for.
///
/// Messages of the layer go to the report under "validation". Loading Vulkan's library happens once a
/// process.
class VulkanInstance
{
public:
    VulkanInstance() = default;
    ~VulkanInstance();
    VulkanInstance(const VulkanInstance&) = delete;
    VulkanInstance& operator=(const VulkanInstance&) = delete;

    /// extensions: what a window's surface needs. False with the reason in the report.
    bool create(const std::vector<const char*>& extensions, bool validation);

    VkInstance getHandle() const { return m_instance; }
    bool hasDebugUtils() const { return m_debugUtils; } ///< objects can be named, passes labelled

private:
    bool createInstance(std::vector<const char*>& extensions, bool validation);
    void createMessenger();

    VkInstance m_instance = VK_NULL_HANDLE;
    VkDebugUtilsMessengerEXT m_messenger = VK_NULL_HANDLE;
    bool m_debugUtils = false;
};

} // namespace helvantine
