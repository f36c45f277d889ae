// SPDX-License-Identifier: MIT
#include <helvantine/renderer/ConstantBuffer.h>

#include "vulkan/ConstantBufferImpl.h"
#include "vulkan/DrawRecorder.h"
#include "vulkan/SlotState.h"
#include "vulkan/VulkanContext.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

namespace helvantine
{

ConstantBuffer::ConstantBuffer() = default;
ConstantBuffer::~ConstantBuffer() = default;

bool ConstantBuffer::create(unsigned size)
{
    constexpr unsigned largest = 65536;
    VulkanContext* context = VulkanContext::getCurrent();
    if (!context)
        return false;
    if (size == 0 || size > largest) {
        reportProblem("renderer",
                      formatString("no constant buffer of %u bytes: 1 to %u are possible", size, largest));
        return false;
    }
    m_impl = std::make_unique<Impl>(*context);
    m_impl->bytes.resize((size + 15) / 16 * 16);
    context->draws().inputsChanged(); // it may be bound already
    return true;
}

void* ConstantBuffer::map()
{
    return m_impl && m_impl->getContext() ? m_impl->bytes.getData() : nullptr;
}

void ConstantBuffer::unmap()
{
    if (m_impl && m_impl->getContext())
        m_impl->bytes.markChanged(*m_impl->getContext());
}

void ConstantBuffer::bindVS(unsigned slot)
{
    if (m_impl && m_impl->getContext())
        m_impl->getContext()->slots().setConstants(ShaderStage::Vertex, slot, this);
}

void ConstantBuffer::bindPS(unsigned slot)
{
    if (m_impl && m_impl->getContext())
        m_impl->getContext()->slots().setConstants(ShaderStage::Pixel, slot, this);
}

} // namespace helvantine
