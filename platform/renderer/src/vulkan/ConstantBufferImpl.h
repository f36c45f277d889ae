// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/GpuObject.h"
#include "vulkan/ShadowedBytes.h"

#include <helvantine/renderer/ConstantBuffer.h>

namespace helvantine
{

struct ConstantBuffer::Impl final : GpuObject
{
    explicit Impl(VulkanContext& context) : GpuObject(context) {}

    ShadowedBytes bytes;
};

} // namespace helvantine
