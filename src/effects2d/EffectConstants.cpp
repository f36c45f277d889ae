// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/EffectConstants.h>

#include <cstring>

namespace helvantine
{

namespace
{

constexpr unsigned slot = 1;

} // namespace

EffectConstantBuffer::EffectConstantBuffer(unsigned size) : m_size(size), m_buffer(new ConstantBuffer())
{
    m_buffer->create(size);
}

EffectConstantBuffer::~EffectConstantBuffer() = default;

void EffectConstantBuffer::bindVS()
{
    m_buffer->bindVS(slot);
}

void EffectConstantBuffer::bindPS()
{
    m_buffer->bindPS(slot);
}

void EffectConstantBuffer::write(const void* constants)
{
    void* bytes = m_buffer->map();
    if (!bytes && m_buffer->create(m_size))
        bytes = m_buffer->map();
    if (!bytes)
        return;
    std::memcpy(bytes, constants, m_size);
    m_buffer->unmap();
}

} // namespace helvantine
