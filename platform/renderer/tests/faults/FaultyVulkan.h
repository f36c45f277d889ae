// SPDX-License-Identifier: MIT
#pragma once

/// What the library that stands in for Vulkan's offers beside Vulkan. Found by name, for it is opened and not linked.
extern "C"
{
    /// The call after so many, of those that may fail, gives that VkResult; with goesOn all after it do. A result of 0
    /// ends it.
    void setVulkanFault(unsigned callsBefore, int result, bool goesOn);
    /// Whether such a call has come since.
    bool hasVulkanFailed();
}
