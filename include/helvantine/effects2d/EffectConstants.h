// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/ConstantBuffer.h>

namespace helvantine
{

/// The constants that an effect has for itself, at register b1 of its programs. Made with the effect; where there was
/// no renderer then, or another one, when they are first written.
class HELVANTINE_FX_API EffectConstantBuffer
{
public:
    explicit EffectConstantBuffer(unsigned size);
    ~EffectConstantBuffer();

    void bindVS();
    void bindPS();

protected:
    void write(const void* constants);

private:
    unsigned m_size;
    SmartRef<ConstantBuffer> m_buffer;
};

/// T is laid out as the program has it: whole registers of 16 bytes.
template <class T>
class EffectConstants : public EffectConstantBuffer
{
    static_assert(sizeof(T) % 16 == 0);

public:
    EffectConstants() : EffectConstantBuffer(sizeof(T)) {}

    /// Leaves the old ones where the buffer can't be mapped.
    void write(const T& constants) { EffectConstantBuffer::write(&constants); }
};

} // namespace helvantine
