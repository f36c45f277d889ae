// SPDX-License-Identifier: MIT
#include <helvantine/editor/EditorBridge.h>
#include <helvantine/editor/EditorObjectStore.h>

#include <gtest/gtest.h>

using namespace helvantine;

namespace
{

TEST(EditorObjectStoreTest, CountsWhatItKeeps)
{
    struct Counted : IRefCount
    {
        explicit Counted(int& living) : m_living(living) { ++m_living; }
        ~Counted() override { --m_living; }
        int& m_living;
    };
    int living = 0;
    {
        EditorObjectStore store;
        const UniqueId first = generateUniqueId();
        const UniqueId second = generateUniqueId();
        EXPECT_EQ(store.getObject(first), nullptr);
        auto* object = new Counted(living);
        store.addObject(first, object);
        EXPECT_EQ(store.getObject(first), object);
        store.addObject(first, object); // the same again is safe
        store.addObject(first, new Counted(living));
        store.addObject(second, new Counted(living));
        EXPECT_EQ(living, 2);
        store.addObject(second, nullptr);
        EXPECT_EQ(store.getObject(second), nullptr);
        EXPECT_EQ(living, 1);
    }
    EXPECT_EQ(living, 0);
}

TEST(EditorBridgeTest, SelectionOutlivesTheFrameAndATransformDoesNot)
{
    EditorBridge bridge;
    const UniqueId id = generateUniqueId();
    EXPECT_TRUE(bridge.isEffectSelected(UniqueId()));
    bridge.selectEffect(&id);
    EXPECT_TRUE(bridge.isEffectSelected(id));

    const SmartRef<Viewport> viewport(new Viewport(1, 2, 3, 4));
    bridge.setGizmoTransform(MatrixScaling(1, 1, 1), MatrixScaling(2, 2, 2), MatrixScaling(3, 3, 3),
                             viewport.get());
    EXPECT_TRUE(bridge.isGizmoVisible());
    EXPECT_EQ(bridge.getGizmoProjection(), MatrixScaling(2, 2, 2));
    EXPECT_EQ(bridge.getGizmoWorld(), MatrixScaling(3, 3, 3));
    EXPECT_EQ(bridge.getGizmoViewport(), viewport.get());
    bridge.beginFrame();
    EXPECT_FALSE(bridge.isGizmoVisible());
    EXPECT_TRUE(bridge.isEffectSelected(id));
    bridge.selectEffect(nullptr);
    EXPECT_TRUE(bridge.isEffectSelected(UniqueId()));
}

} // namespace
