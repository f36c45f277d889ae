// SPDX-License-Identifier: MIT
#include <helvantine/editor/EditorBridge.h>

namespace helvantine
{

EditorBridge::EditorBridge()
    : m_renderUtil(std::make_unique<RenderUtil>()), m_gizmo2D(std::make_unique<Gizmo2D>())
{
}

EditorBridge::~EditorBridge() = default;

void EditorBridge::selectEffect(const UniqueId* id)
{
    m_selection = id ? *id : UniqueId();
}

void EditorBridge::setGizmoTransform(const Matrix& view, const Matrix& projection, const Matrix& world,
                                     Viewport* viewport)
{
    m_gizmoWorld = world;
    m_gizmoView = view;
    m_gizmoProjection = projection;
    m_gizmoViewport = viewport;
    m_gizmoVisible = true;
}

} // namespace helvantine
