// SPDX-License-Identifier: MIT
#pragma once

/// Vulkan's types and functions. The functions are pointers that VulkanInstance and VulkanDevice load.
#include <volk.h>
