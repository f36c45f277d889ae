// SPDX-License-Identifier: MIT
#define VOLK_IMPLEMENTATION
#include "vulkan/VulkanApi.h"
