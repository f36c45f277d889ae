// SPDX-License-Identifier: MIT
#include "vulkan/GpuObject.h"

#include "vulkan/VulkanContext.h"

namespace helvantine
{

GpuObject::GpuObject(VulkanContext& context) : m_context(&context), m_next(context.m_firstObject)
{
    if (m_next)
        m_next->m_previous = this;
    context.m_firstObject = this;
}

GpuObject::~GpuObject()
{
    if (!m_context)
        return;
    if (m_next)
        m_next->m_previous = m_previous;
    if (m_previous)
        m_previous->m_next = m_next;
    else
        m_context->m_firstObject = m_next;
}

} // namespace helvantine
