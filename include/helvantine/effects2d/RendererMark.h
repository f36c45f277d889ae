// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/BlendState.h>

namespace helvantine
{

/// Remembers with which renderer something was made: a state of that renderer's cache, which no other renderer has at
/// this address as long as it is held.
class HELVANTINE_FX_API RendererMark
{
public:
    /// The renderer that is there now; none if there is none.
    void set() { m_state = getBlendState(BlendMode::Solid); }
    void clear() { m_state = nullptr; }
    /// Whether a renderer is marked and still there.
    bool isCurrent() const { return m_state && m_state.get() == getBlendState(BlendMode::Solid); }

private:
    SmartRef<BlendState> m_state;
};

} // namespace helvantine
