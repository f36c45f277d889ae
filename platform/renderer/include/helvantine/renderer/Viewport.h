// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Rect.h>
#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>

namespace helvantine
{

/// A rectangle of a render target, in pixels from its top left, that clip space is mapped to.
class HELVANTINE_RENDERER_API Viewport : public IRefCount
{
public:
    Viewport(float x, float y, float width, float height, float minDepth = 0.0f, float maxDepth = 1.0f)
        : m_rect{x, y, width, height}, m_minDepth(minDepth), m_maxDepth(maxDepth)
    {
    }

    const Rect& getRect() const { return m_rect; }
    float getMinDepth() const { return m_minDepth; }
    float getMaxDepth() const { return m_maxDepth; }

private:
    Rect m_rect;
    float m_minDepth;
    float m_maxDepth;
};

} // namespace helvantine
