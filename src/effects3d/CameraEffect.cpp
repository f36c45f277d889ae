// SPDX-License-Identifier: MIT
#include <helvantine/effects3d/CameraEffect.h>

#include <helvantine/editor/EditorBridge.h>
#include <helvantine/object/AddProperties.h>
#include <helvantine/renderer/RenderUtil.h>
#include <helvantine/renderer/Renderer.h>

namespace helvantine
{

namespace
{

constexpr float radiansPerDegree = 0.017453292f;
constexpr float gridThickness = 1.0f;
constexpr Vec4 gridColor(0.5f, 0.5f, 0.5f, 1.0f);

} // namespace

CameraEffect::CameraEffect()
    : m_attributesGroup(new PropertyGroup(this, "Attributes")), m_fov(this, KindFloat, "Fov"),
      m_grid(this, KindBool, "Grid"), m_gridScale(this, KindFloat, "Grid Scale"),
      m_nearClip(this, KindFloat, "Near Clip"), m_farClip(this, KindFloat, "Far Clip"),
      m_transformationGroup(new PropertyGroup(this, "Transformation")),
      m_position(this, KindVec3, "Position"), m_rotation(this, KindVec3, "Rotation"),
      m_outputGroup(new PropertyGroup(this, "Output")), m_cameraPosition(this, KindVec3, "Camera Position")
{
    m_fov.setDefault(45.0f);
    m_grid.setDefault(true);
    m_gridScale.setDefault(100.0f);
    m_nearClip.setDefault(0.1f);
    m_farClip.setDefault(4096.0f);
    addProperties(*m_attributesGroup, {&m_fov, &m_grid, &m_gridScale, &m_nearClip, &m_farClip});
    addInputGroup(m_attributesGroup.get());

    m_position.setDefault(Vec3(0.0f, 0.0f, -512.0f));
    m_rotation.setDefault(Vec3(0.0f, 0.0f, 0.0f));
    m_rotation.m_viewStep = 1.0f;
    addProperties(*m_transformationGroup, {&m_position, &m_rotation});
    addInputGroup(m_transformationGroup.get());

    m_cameraPosition.setDefault(Vec3(0.0f, 0.0f, 0.0f));
    addProperties(*m_outputGroup, {&m_cameraPosition});
    addOutputGroup(m_outputGroup.get());
}

CameraEffect::~CameraEffect() = default;

void CameraEffect::onUpdate(FxUpdateContext& context)
{
    MatrixPerspectiveFov(&m_projection, m_fov.m_value * radiansPerDegree, s_aspect, m_nearClip.m_value,
                         m_farClip.m_value);

    // x turns about the y axis and y about the x axis: deliberate, and unlike the rotation of 3D effects.
    const Vec3& rotation = m_rotation.m_value;
    m_view = MatrixTranslation(-m_position.m_value);
    MatrixMultiply(&m_view, m_view, MatrixRotateY(rotation.x * radiansPerDegree));
    MatrixMultiply(&m_view, m_view, MatrixRotateX(rotation.y * radiansPerDegree));
    MatrixMultiply(&m_view, m_view, MatrixRotateZ(rotation.z * radiansPerDegree));

    publish(context);
    m_cameraPosition = MatrixGetCameraPosition(m_view);
}

void CameraEffect::onRender(FxRenderContext& context)
{
    publish(context);
    if (m_grid.m_value && context.editorBridge)
        drawGrid(context);
}

void CameraEffect::setFov(float fov)
{
    m_fov = fov;
}

float CameraEffect::getFov() const
{
    return m_fov.m_value;
}

void CameraEffect::publish(FxContext& context) const
{
    context.view = m_view;
    context.projection = m_projection;
    MatrixMultiply(&context.viewProjection, m_view, m_projection);
    context.fov = m_fov.m_value;
    context.farPlane = m_farClip.m_value;
}

void CameraEffect::drawGrid(const FxRenderContext& context) const
{
    RenderUtil& util = *context.editorBridge->getRenderUtil();
    util.setTransform(context.viewProjection);
    util.setViewport(g_renderer ? g_renderer->getViewport() : nullptr);
    util.drawLineGrid(m_gridScale.m_value, gridThickness, gridColor, false);
}

} // namespace helvantine
