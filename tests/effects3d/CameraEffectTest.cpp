// SPDX-License-Identifier: MIT
#include <helvantine/editor/EditorBridge.h>
#include <helvantine/effects3d/CameraEffect.h>
#include <helvantine/testsupport/RenderingTest.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace helvantine;
using testing::ElementsAre;

namespace
{

void set(Object& object, const char* group, const char* name, const char* text)
{
    PropertyBase* property = object.findGroup(group)->findProperty(name);
    ASSERT_NE(property, nullptr) << name;
    property->fromString(text);
}

std::vector<std::string> propertyNames(const PropertyGroup* group)
{
    std::vector<std::string> names;
    for (const PropertyBase* property : group->m_properties)
        names.push_back(property->m_name);
    return names;
}

Vec3 toView(const CameraEffect& camera, const Vec3& world)
{
    return MatrixTransformCoord(world, camera.getView());
}

void expectNear(const Vec3& actual, const Vec3& expected)
{
    EXPECT_NEAR(actual.x, expected.x, 1e-3f);
    EXPECT_NEAR(actual.y, expected.y, 1e-3f);
    EXPECT_NEAR(actual.z, expected.z, 1e-3f);
}

TEST(Camera, GroupsItsPropertiesInTheOrderOfTheDocument)
{
    const SmartRef<CameraEffect> camera(new CameraEffect());
    EXPECT_THAT(propertyNames(camera->findGroup("Attributes")),
                ElementsAre("Fov", "Grid", "Grid Scale", "Near Clip", "Far Clip"));
    EXPECT_THAT(propertyNames(camera->findGroup("Transformation")), ElementsAre("Position", "Rotation"));
    EXPECT_THAT(propertyNames(camera->m_outputGroups[0].get()), ElementsAre("Camera Position"));
}

TEST(Camera, PublishesItsMatricesInUpdateAndAgainInRender)
{
    const SmartRef<CameraEffect> camera(new CameraEffect());
    FxUpdateContext update;
    camera->update(update);
    expectNear(toView(*camera, Vec3(1, 2, 0)), Vec3(1, 2, 512)); // looks along z from (0, 0, -512)
    EXPECT_EQ(update.projection, MatrixPerspectiveFov(45.0f * 0.017453292f, 1.7777778f, 0.1f, 4096.0f));
    EXPECT_EQ(update.viewProjection, MatrixMultiply(update.view, update.projection));
    EXPECT_EQ(update.fov, 45.0f);
    EXPECT_EQ(update.farPlane, 4096.0f);

    camera->setFov(60.0f);
    set(*camera, "Transformation", "Position", "1, 2, 3");
    FxRenderContext render; // before the next update: the matrices are still those of the last one
    camera->render(render);
    EXPECT_EQ(render.view, update.view);
    EXPECT_EQ(render.projection, update.projection);
    EXPECT_EQ(render.viewProjection, update.viewProjection);
    camera->update(update);
    EXPECT_EQ(update.fov, 60.0f);
    expectNear(toView(*camera, Vec3(1, 2, 4)), Vec3(0, 0, 1));
}

TEST(Camera, XTurnsAboutTheYAxisAndYAboutTheXAxis)
{
    const SmartRef<CameraEffect> camera(new CameraEffect());
    FxUpdateContext context;
    set(*camera, "Transformation", "Position", "0, 0, 0");
    set(*camera, "Transformation", "Rotation", "90, 0, 0");
    camera->update(context);
    EXPECT_EQ(context.view, MatrixMultiply(MatrixTranslation(Vec3()), MatrixRotateY(90 * 0.017453292f)));

    set(*camera, "Transformation", "Rotation", "30, 40, 50");
    camera->update(context);
    const Vec3 point(1, 2, 3);
    Vec3 expected = MatrixTransformCoord(point, MatrixRotateY(30 * 0.017453292f));
    expected = MatrixTransformCoord(expected, MatrixRotateX(40 * 0.017453292f));
    expected = MatrixTransformCoord(expected, MatrixRotateZ(50 * 0.017453292f));
    expectNear(toView(*camera, point), expected);
}

TEST(Camera, TellsItsPositionWhenItHasMoved)
{
    struct Listener final : PropertyListener
    {
        void onPropertyChanged(PropertyBase*) override { ++m_calls; }
        int m_calls = 0;
    } listener;
    const SmartRef<CameraEffect> camera(new CameraEffect());
    auto* position = static_cast<Vec3Property*>(camera->m_outputGroups[0]->m_properties[0]);
    camera->addListener(position->m_id, &listener);
    FxUpdateContext context;
    camera->update(context);
    EXPECT_EQ(position->m_value, Vec3(0, 0, -512));
    EXPECT_EQ(listener.m_calls, 1);
    camera->update(context);
    EXPECT_EQ(listener.m_calls, 1);
    set(*camera, "Transformation", "Position", "0, 0, -2");
    camera->update(context);
    EXPECT_EQ(listener.m_calls, 2);
    camera->removeListener(&listener);
}

class CameraGrid : public test::RenderingTest
{
protected:
    CameraGrid() : RenderingTest(64, 36) {}
};

TEST_F(CameraGrid, IsDrawnForAnEditorOnly)
{
    const SmartRef<CameraEffect> camera(new CameraEffect());
    set(*camera, "Transformation", "Position", "0, 200, -800");
    set(*camera, "Transformation", "Rotation", "0, -15, 0"); // pitch is the y
    FxUpdateContext update;
    camera->update(update);
    EditorBridge bridge;
    const auto countDrawn = [&](EditorBridge* editor) {
        const test::Image image = draw([&] {
            FxRenderContext context;
            context.editorBridge = editor;
            camera->render(context);
        });
        int drawn = 0;
        for (unsigned y = 0; y < image.getHeight(); ++y)
            for (unsigned x = 0; x < image.getWidth(); ++x)
                drawn += image.at(x, y).x > 0.4f;
        return drawn;
    };
    EXPECT_GT(countDrawn(&bridge), 100);
    EXPECT_EQ(countDrawn(nullptr), 0);
    set(*camera, "Attributes", "Grid", "0");
    EXPECT_EQ(countDrawn(&bridge), 0);
}

} // namespace
