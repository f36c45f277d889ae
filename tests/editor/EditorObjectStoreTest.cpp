// SPDX-License-Identifier: MIT
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

} // namespace
