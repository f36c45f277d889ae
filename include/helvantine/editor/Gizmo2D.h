// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/Matrix.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/UniqueId.h>
#include <helvantine/core/Vec3.h>
#include <helvantine/renderer/Viewport.h>

namespace helvantine
{

/// The frame that the editor shows around a selected 2D effect, as the effect described itself last.
class HELVANTINE_FX_API Gizmo2D
{
public:
    struct GizmoInfo
    {
        UniqueId id; ///< of the effect; all zero while nothing was set
        Matrix world;
        Matrix local;
        Matrix view;
        Matrix projection;
        SmartRef<Viewport> viewport;
        Vec3 corners[4];    ///< in the quad's own space, in rectangle order
        float depth = 0.0f; ///< in screen space, at which handles are drawn
        bool is3D = false;  ///< the frame then stays out of the way of the 3D gizmos
    };

    Gizmo2D();
    virtual ~Gizmo2D();

    void set(const GizmoInfo& info);
    const GizmoInfo& getInfo() const { return m_info; }

private:
    GizmoInfo m_info;
};

} // namespace helvantine
