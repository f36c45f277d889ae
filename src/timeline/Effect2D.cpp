// SPDX-License-Identifier: MIT
#include <helvantine/timeline/Effect2D.h>

#include <helvantine/editor/EditorBridge.h>
#include <helvantine/object/AddProperties.h>
#include <helvantine/renderer/Renderer.h>

#include <algorithm>

namespace helvantine
{

namespace
{

constexpr float radiansPerDegree = 0.017453292f;

// The camera in front of the virtual screen, and the screen's depth.
constexpr float screenAspect = 1.7777778f;
constexpr float screenNear = 0.1f;
constexpr float screenFar = 16.0f;
constexpr float screenDepth = 0.9f;
constexpr Vec3 screenEye(0.0f, 0.0f, -5.0f);

} // namespace

/// What an update computes before it stores anything.
struct Effect2D::Placement
{
    Matrix world;
    Matrix view;
    Matrix projection;
    Corners corners;
    Matrix gizmo; ///< for the 3D gizmos, which don't show the pivot
};

Effect2D::Effect2D()
    : m_transformationGroup(new PropertyGroup(this, "Transformation")),
      m_position(this, KindVec3, "Position"), m_size(this, KindVec2, "Size"),
      m_rotation(this, KindVec3, "Rotation"), m_pivot(this, KindVec3, "Pivot"), m_is3D(this, KindBool, "3D")
{
    m_position.setDefault(Vec3(0.0f, 0.0f, 0.0f));
    m_position.m_viewStep = 1.0f;
    m_size.setDefault(Vec2(256.0f, 256.0f));
    m_size.m_viewStep = 1.0f;
    m_rotation.setDefault(Vec3(0.0f, 0.0f, 0.0f));
    m_rotation.m_viewStep = 1.0f;
    m_pivot.setDefault(Vec3(0.5f, 0.5f, 0.5f));
    m_is3D.setDefault(false);
    addProperties(*m_transformationGroup, {&m_position, &m_size, &m_rotation, &m_pivot, &m_is3D});
    addInputGroup(m_transformationGroup.get());
}

Effect2D::~Effect2D() = default;

void Effect2D::update(FxUpdateContext& context)
{
    Placement placement;
    if (m_is3D.m_value)
        placeInWorld(context, placement);
    else if (!placeOnScreen(context, placement))
        return;

    m_world = placement.world;
    m_corners = placement.corners;
    m_view = placement.view;
    m_projection = placement.projection;
    if (context.editorBridge && context.editorBridge->isEffectSelected(m_id))
        publish(*context.editorBridge, placement.gizmo);
    Effect::update(context);
}

Matrix Effect2D::getRotation() const
{
    const Vec3& degrees = m_rotation.m_value;
    const Matrix xy = MatrixMultiply(MatrixRotateX(degrees.x * radiansPerDegree),
                                     MatrixRotateY(degrees.y * radiansPerDegree));
    // The negated angle is deliberate: positive turns clockwise on the screen.
    return MatrixMultiply(xy, MatrixRotateZ(-degrees.z * radiansPerDegree));
}

Matrix Effect2D::rotateAboutPivot(const Corners& corners, const Matrix& rotation) const
{
    Vec3 low = corners[0];
    Vec3 high = corners[0];
    for (const Vec3& corner : corners) {
        low = Vec3(std::min(low.x, corner.x), std::min(low.y, corner.y), std::min(low.z, corner.z));
        high = Vec3(std::max(high.x, corner.x), std::max(high.y, corner.y), std::max(high.z, corner.z));
    }
    const Vec3& pivot = m_pivot.m_value;
    const Vec3 point(low.x + (high.x - low.x) * pivot.x, low.y + (high.y - low.y) * (1.0f - pivot.y),
                     low.z + (high.z - low.z) * (1.0f - pivot.z));
    const Matrix toPoint = MatrixTranslation(point);
    return MatrixMultiply(MatrixInverse(toPoint), MatrixMultiply(rotation, toPoint));
}

bool Effect2D::placeOnScreen(const FxUpdateContext& context, Placement& placement) const
{
    MatrixPerspectiveFov(&placement.projection, context.fov * radiansPerDegree, screenAspect, screenNear,
                         screenFar);
    placement.view = MatrixLookAt(screenEye, Vec3(0.0f, 0.0f, 0.0f), Vec3(0.0f, 1.0f, 0.0f));

    const Rect screen{0.0f, 0.0f, s_screenWidth, s_screenHeight};
    const float left = m_position.m_value.x;
    const float top = m_position.m_value.y;
    const float right = left + m_size.m_value.x;
    const float bottom = top + m_size.m_value.y;
    const Corners points{Vec3(left, top, screenDepth), Vec3(right, top, screenDepth),
                         Vec3(right, bottom, screenDepth), Vec3(left, bottom, screenDepth)};
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!MatrixUnproject(placement.view, placement.projection, screen, points[i], placement.corners[i]))
            return false;
    }

    placement.gizmo = getRotation();
    placement.world = rotateAboutPivot(placement.corners, placement.gizmo);
    return true;
}

void Effect2D::placeInWorld(const FxUpdateContext& context, Placement& placement) const
{
    placement.view = context.view;
    placement.projection = context.projection;

    const float width = m_size.m_value.x;
    const float height = m_size.m_value.y;
    placement.corners = {Vec3(0.0f, height, 0.0f), Vec3(width, height, 0.0f), Vec3(width, 0.0f, 0.0f),
                         Vec3(0.0f, 0.0f, 0.0f)};

    const Vec3& centre = m_position.m_value;
    const Matrix toPlace =
        MatrixTranslation(Vec3(centre.x - width * 0.5f, centre.y - height * 0.5f, centre.z));
    const Matrix rotation = getRotation();
    placement.world = MatrixMultiply(rotateAboutPivot(placement.corners, rotation), toPlace);
    placement.gizmo = MatrixMultiply(rotation, toPlace);
}

void Effect2D::publish(EditorBridge& bridge, const Matrix& gizmo) const
{
    const SmartRef<Viewport> viewport(g_renderer ? g_renderer->getViewport() : nullptr);

    Gizmo2D::GizmoInfo info;
    info.id = m_id;
    info.world = m_world;
    info.view = m_view;
    info.projection = m_projection;
    info.viewport = viewport;
    std::copy(m_corners.begin(), m_corners.end(), info.corners);
    info.depth = screenDepth;
    info.is3D = m_is3D.m_value;
    bridge.getGizmo2D()->set(info);

    if (m_is3D.m_value)
        bridge.setGizmoTransform(m_view, m_projection, gizmo, viewport.get());
}

} // namespace helvantine
