// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Matrix.h>
#include <helvantine/core/Vec3.h>
#include <helvantine/object/Property.h>
#include <helvantine/timeline/Effect.h>

#include <array>

namespace helvantine
{

/// The base of everything that draws a flat quad: turns five properties into matrices and corners.
///
/// In 2D mode the quad lies on a virtual screen of 960 by 540 units, whatever the target's size: "Position"
/// is its top left corner, y grows downwards. In 3D mode it stands in the camera's world: "Position" is its
/// centre, y grows upwards. The difference is deliberate. It draws nothing by itself.
class HELVANTINE_FX_API Effect2D : public Effect
{
    HELVANTINE_PLUGIN_CLASS(Effect2D)

    static constexpr float s_screenWidth = 960.0f;
    static constexpr float s_screenHeight = 540.0f;

    Effect2D();
    ~Effect2D() override;

    /// Where no quad can be had (a field of view that is no number, say), everything stays as it was, and
    /// neither onUpdate nor the children run in this frame.
    void update(FxUpdateContext& context) override;

    /// Quad corners: top left, top right, bottom right, bottom left.
    using Corners = std::array<Vec3, 4>;

    // All of the last successful update; without meaning before.
    const Matrix& getWorld() const { return m_world; }
    const Matrix& getView() const { return m_view; }
    const Matrix& getProjection() const { return m_projection; }
    const Corners& getCorners() const { return m_corners; } ///< in the space that getWorld starts from

protected:
    SmartRef<PropertyGroup> m_transformationGroup;
    Vec3Property m_position;
    Vec2Property m_size;
    Vec3Property m_rotation; ///< degrees
    Vec3Property m_pivot;    ///< fractions of the quad, from its left, top and far end
    BoolProperty m_is3D;
    Matrix m_world;
    Matrix m_view;
    Matrix m_projection;
    Corners m_corners;

private:
    struct Placement;
    bool placeOnScreen(const FxUpdateContext& context, Placement& placement) const;
    void placeInWorld(const FxUpdateContext& context, Placement& placement) const;
    Matrix getRotation() const;
    Matrix rotateAboutPivot(const Corners& corners, const Matrix& rotation) const;
    void publish(EditorBridge& bridge, const Matrix& gizmo) const;
};

} // namespace helvantine
