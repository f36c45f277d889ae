// SPDX-License-Identifier: MIT
#include <helvantine/editor/EditorBridge.h>
#include <helvantine/testsupport/ProjectTest.h>
#include <helvantine/timeline/Effect2D.h>
#include <helvantine/timeline/FxContext.h>

#include <gtest/gtest.h>

#include <limits>

using namespace helvantine;

namespace
{

/// Counts its ticks and opens its properties.
class Quad : public Effect2D
{
public:
    void onUpdate(FxUpdateContext&) override { ++m_updates; }

    using Effect2D::m_is3D;
    using Effect2D::m_pivot;
    using Effect2D::m_position;
    using Effect2D::m_rotation;
    using Effect2D::m_size;
    int m_updates = 0;
};

void expectNear(const Vec3& actual, const Vec3& expected, float tolerance = 1e-2f)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

class Effect2DTest : public test::ProjectTest
{
protected:
    Effect2DTest() : m_quad(new Quad()) { m_context.fov = 45.0f; }

    /// Where a corner ends up on the virtual screen, with its depth.
    Vec3 onScreen(int corner) const
    {
        const Matrix chain =
            MatrixMultiply(MatrixMultiply(m_quad->getWorld(), m_quad->getView()), m_quad->getProjection());
        Vec3 point;
        EXPECT_TRUE(MatrixProject(chain, Rect{0, 0, 960, 540}, m_quad->getCorners()[corner], point));
        return point;
    }
    Vec3 inWorld(int corner) const
    {
        return MatrixTransformCoord(m_quad->getCorners()[corner], m_quad->getWorld());
    }

    FxUpdateContext m_context;
    SmartRef<Quad> m_quad;
};

TEST_F(Effect2DTest, OnTheScreenPositionIsTheTopLeftCornerInVirtualPixels)
{
    m_quad->m_position = Vec3(120, 30, 999); // z doesn't count
    m_quad->m_size = Vec2(400, 200);
    for (const float fov : {20.0f, 45.0f, 110.0f}) {
        m_context.fov = fov;
        m_quad->update(m_context);
        expectNear(onScreen(0), Vec3(120, 30, 0.9f));
        expectNear(onScreen(1), Vec3(520, 30, 0.9f));
        expectNear(onScreen(2), Vec3(520, 230, 0.9f));
        expectNear(onScreen(3), Vec3(120, 230, 0.9f));
    }
}

TEST_F(Effect2DTest, OnTheScreenPositiveAnglesTurnClockwiseAboutThePivot)
{
    m_quad->m_position = Vec3(200, 100, 0);
    m_quad->m_size = Vec2(100, 100);
    m_quad->m_rotation = Vec3(0, 0, 90);
    m_quad->update(m_context);
    expectNear(onScreen(0), Vec3(300, 100, 0.9f));
    expectNear(onScreen(1), Vec3(300, 200, 0.9f));

    m_quad->m_pivot = Vec3(0, 0, 0.5f); // top left
    m_quad->update(m_context);
    expectNear(onScreen(0), Vec3(200, 100, 0.9f));
    expectNear(onScreen(1), Vec3(200, 200, 0.9f));
}

TEST_F(Effect2DTest, InTheWorldPositionIsTheCentreAndTheCameraIsTheContexts)
{
    m_context.view = MatrixTranslation(1, 2, 3);
    m_context.projection = MatrixScaling(4, 5, 6);
    m_quad->m_is3D = true;
    m_quad->m_position = Vec3(10, 20, 30);
    m_quad->m_size = Vec2(8, -4); // a negative size mirrors
    m_quad->update(m_context);
    EXPECT_EQ(m_quad->getView(), m_context.view);
    EXPECT_EQ(m_quad->getProjection(), m_context.projection);
    expectNear(inWorld(0), Vec3(6, 18, 30), 1e-4f);
    expectNear(inWorld(2), Vec3(14, 22, 30), 1e-4f);
}

TEST_F(Effect2DTest, InTheWorldRotationsTurnAboutThePivotInTheOrderXYZ)
{
    m_quad->m_is3D = true;
    m_quad->m_size = Vec2(2, 2);
    m_quad->m_rotation = Vec3(90, 90, 0);
    m_quad->update(m_context);
    // Top right (1, 1, 0): about x to (1, 0, 1), then about y to (1, 0, -1).
    expectNear(inWorld(1), Vec3(1, 0, -1), 1e-4f);

    m_quad->m_rotation = Vec3(0, 0, 90);
    m_quad->m_pivot = Vec3(1, 1, 0); // bottom right; the flat quad has no far end
    m_quad->update(m_context);
    expectNear(inWorld(2), Vec3(1, -1, 0), 1e-4f);
    expectNear(inWorld(1), Vec3(3, -1, 0), 1e-4f);
}

TEST_F(Effect2DTest, WithoutAQuadTheFrameIsLeftOut)
{
    const SmartRef<Quad> child(new Quad());
    m_quad->addObject(child.get(), -1);
    m_quad->update(m_context);
    const Matrix world = m_quad->getWorld();
    const Matrix projection = m_quad->getProjection();

    m_context.fov = std::numeric_limits<float>::quiet_NaN();
    m_quad->m_rotation = Vec3(0, 0, 45);
    m_quad->update(m_context);
    EXPECT_EQ(m_quad->getWorld(), world);
    EXPECT_EQ(m_quad->getProjection(), projection);
    EXPECT_EQ(m_quad->m_updates, 1);
    EXPECT_EQ(child->m_updates, 1);

    m_quad->m_is3D = true; // needs no field of view
    m_quad->update(m_context);
    EXPECT_EQ(m_quad->m_updates, 2);
}

TEST_F(Effect2DTest, TellsTheEditorOfItselfOnlyWhileSelected)
{
    EditorBridge bridge;
    m_context.editorBridge = &bridge;
    m_context.projection = MatrixScaling(2, 2, 2);
    bridge.beginFrame();
    m_quad->update(m_context);
    EXPECT_EQ(bridge.getGizmo2D()->getInfo().id, UniqueId());

    bridge.selectEffect(&m_quad->m_id);
    m_quad->update(m_context);
    const Gizmo2D::GizmoInfo& info = bridge.getGizmo2D()->getInfo();
    EXPECT_EQ(info.id, m_quad->m_id);
    EXPECT_EQ(info.world, m_quad->getWorld());
    EXPECT_EQ(info.projection, m_quad->getProjection());
    EXPECT_EQ(info.corners[2], m_quad->getCorners()[2]);
    EXPECT_FLOAT_EQ(info.depth, 0.9f);
    EXPECT_FALSE(info.is3D);
    EXPECT_FALSE(bridge.isGizmoVisible());

    m_quad->m_is3D = true;
    m_quad->m_size = Vec2(2, 4);
    m_quad->m_position = Vec3(5, 6, 7);
    m_quad->update(m_context);
    EXPECT_TRUE(info.is3D);
    EXPECT_TRUE(bridge.isGizmoVisible());
    EXPECT_EQ(bridge.getGizmoProjection(), m_context.projection);
    EXPECT_EQ(MatrixGetTranslation(bridge.getGizmoWorld()), Vec3(4, 4, 7));
    bridge.beginFrame();
    EXPECT_FALSE(bridge.isGizmoVisible());
}

} // namespace
