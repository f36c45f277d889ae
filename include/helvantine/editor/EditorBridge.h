// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/Matrix.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/UniqueId.h>
#include <helvantine/editor/Gizmo2D.h>
#include <helvantine/renderer/RenderUtil.h>
#include <helvantine/renderer/Viewport.h>

#include <memory>

namespace helvantine
{

/// Where a running composition and an editor meet.
///
/// The editor makes one and hands it down in the contexts of update and render; a player leaves that field
/// null. A frame is beginFrame, update, preRender, render, endFrame. The selection outlives the frame, the
/// transform that the selected effect publishes during update doesn't.
class HELVANTINE_FX_API EditorBridge
{
public:
    EditorBridge();
    virtual ~EditorBridge();

    void beginFrame() { m_gizmoVisible = false; }
    void preRender() {} ///< nothing is due there
    void endFrame() {}  ///< nothing is due there

    /// Null selects nothing, which is the id of all zeros.
    void selectEffect(const UniqueId* id);
    bool isEffectSelected(const UniqueId& id) const { return id == m_selection; }
    const UniqueId& getSelection() const { return m_selection; }

    /// The selected effect's transform in this frame; the last call of a frame wins. Keeps the viewport,
    /// which may be null.
    void setGizmoTransform(const Matrix& view, const Matrix& projection, const Matrix& world,
                           Viewport* viewport);

    bool isGizmoVisible() const { return m_gizmoVisible; } ///< a transform came since beginFrame
    const Matrix& getGizmoWorld() const { return m_gizmoWorld; }
    const Matrix& getGizmoView() const { return m_gizmoView; }
    const Matrix& getGizmoProjection() const { return m_gizmoProjection; }
    Viewport* getGizmoViewport() const { return m_gizmoViewport.get(); }

    Gizmo2D* getGizmo2D() const { return m_gizmo2D.get(); }          ///< never null
    RenderUtil* getRenderUtil() const { return m_renderUtil.get(); } ///< never null

private:
    Matrix m_gizmoWorld;
    Matrix m_gizmoView;
    Matrix m_gizmoProjection;
    SmartRef<Viewport> m_gizmoViewport;
    bool m_gizmoVisible = false;
    UniqueId m_selection;
    std::unique_ptr<RenderUtil> m_renderUtil;
    std::unique_ptr<Gizmo2D> m_gizmo2D;
};

} // namespace helvantine
