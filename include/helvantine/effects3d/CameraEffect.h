// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Matrix.h>
#include <helvantine/object/Property.h>
#include <helvantine/timeline/Effect.h>

namespace helvantine
{

/// A camera: writes its view and projection into the traversal's contexts.
///
/// Everything that is visited later sees them, and nothing restores what was there before. A composition runs
/// its default camera ahead of its effects; one on the timeline takes over from where it stands.
class HELVANTINE_FX_API CameraEffect : public Effect
{
    HELVANTINE_PLUGIN_CLASS(CameraEffect)

    /// Width to height, whatever the target's shape: another shape shows the picture stretched.
    static constexpr float s_aspect = 1.7777778f;

    CameraEffect();
    ~CameraEffect() override;

    void onUpdate(FxUpdateContext& context) override;
    void onRender(FxRenderContext& context) override;

    /// Vertical field of view in degrees; shows with the next update.
    void setFov(float fov);
    float getFov() const;

    const Matrix& getView() const { return m_view; }             ///< of the last update
    const Matrix& getProjection() const { return m_projection; } ///< of the last update

private:
    void publish(FxContext& context) const;
    void drawGrid(const FxRenderContext& context) const;

    SmartRef<PropertyGroup> m_attributesGroup;
    FloatProperty m_fov;
    BoolProperty m_grid;
    FloatProperty m_gridScale;
    FloatProperty m_nearClip;
    FloatProperty m_farClip;
    SmartRef<PropertyGroup> m_transformationGroup;
    Vec3Property m_position;
    Vec3Property m_rotation; ///< degrees: x is the yaw, y the pitch
    SmartRef<PropertyGroup> m_outputGroup;
    Vec3Property m_cameraPosition; ///< output: the eye as the view matrix has it
    Matrix m_view;
    Matrix m_projection;
};

} // namespace helvantine
