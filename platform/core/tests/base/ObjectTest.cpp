// SPDX-License-Identifier: MIT
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/TypedObject.h>
#include <helvantine/core/UniqueId.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <unordered_map>

using namespace helvantine;

namespace
{

class Counted : public IRefCount
{
public:
    explicit Counted(int& deaths) : m_deaths(&deaths) {}
    ~Counted() override
    {
        SmartRef<Counted> whileDying(m_refersToItself ? this : nullptr);
        ++*m_deaths;
    }

    int* m_deaths;
    bool m_refersToItself = false;
    SmartRef<Counted> m_next;
};

class Shape : public TypedObject, public IRefCount
{
public:
    const TypeInfo* getTypeInfo() const override { return &m_typeInfo; }
    static const TypeInfo m_typeInfo;
};
const TypeInfo Shape::m_typeInfo{"Shape", &TypedObject::m_typeInfo};

class Circle : public Shape
{
public:
    const TypeInfo* getTypeInfo() const override { return &m_typeInfo; }
    static const TypeInfo m_typeInfo;
};
const TypeInfo Circle::m_typeInfo{"Circle", &Shape::m_typeInfo};

/// An id that is made before main, as the catalogue's are.
const UniqueId s_early = stringToUniqueId("00112233-4455-6677-8899-AABBCCDDEEFF");

} // namespace

TEST(CountedObject, DiesWithItsLastReference)
{
    int deaths = 0;
    SmartRef<Counted> first(new Counted(deaths));
    SmartRef<IRefCount> second = first;
    EXPECT_EQ(first->getRefCount(), 2);
    EXPECT_TRUE(first == second);

    first = first.get();
    EXPECT_EQ(first->getRefCount(), 2);

    SmartRef<Counted> moved = std::move(first);
    EXPECT_TRUE(first == nullptr);
    EXPECT_EQ(moved->getRefCount(), 2);
    moved = nullptr;
    EXPECT_EQ(deaths, 0);
    second = nullptr;
    EXPECT_EQ(deaths, 1);
}

TEST(CountedObject, SurvivesTheOddWaysToLoseAndKeepIt)
{
    int deaths = 0;
    { // deleted directly, while it belongs to nobody
        delete new Counted(deaths);
        EXPECT_EQ(deaths, 1);
    }
    { // replaced by what only it holds
        SmartRef<Counted> head(new Counted(deaths));
        head->m_next = new Counted(deaths);
        head = head->m_next;
        EXPECT_EQ(deaths, 2);
        EXPECT_EQ(head->getRefCount(), 1);
    }
    { // a copy has a count of its own
        SmartRef<Counted> original(new Counted(deaths));
        EXPECT_EQ(Counted(*original).getRefCount(), 0);
    }
    deaths = 0;
    { // its destructor takes and drops a reference to it
        SmartRef<Counted> own(new Counted(deaths));
        own->m_refersToItself = true;
    }
    EXPECT_EQ(deaths, 1);
}

TEST(CountedObject, ReferenceBecomesOneToABaseByItselfAndToNothingElse)
{
    static_assert(std::is_convertible_v<SmartRef<Circle>, SmartRef<Shape>>);
    static_assert(!std::is_convertible_v<SmartRef<Shape>, SmartRef<Circle>>);
    static_assert(!std::is_constructible_v<SmartRef<Circle>, SmartRef<Shape>>);
    static_assert(!std::is_convertible_v<SmartRef<Counted>, SmartRef<Shape>>);
    static_assert(!std::is_convertible_v<SmartRef<const Shape>, SmartRef<Shape>>);
}

TEST(CountedObject, ReferencesAreKeysOfMapsByTheirObjects)
{
    const SmartRef<Shape> first(new Shape);
    const SmartRef<Shape> second(new Circle);
    std::map<SmartRef<Shape>, int> ordered;
    std::unordered_map<SmartRef<Shape>, int> hashed;
    for (const SmartRef<Shape>& key : {first, second, first, SmartRef<Shape>()}) {
        ++ordered[key];
        ++hashed[key];
    }
    EXPECT_EQ(ordered.size(), 3u);
    EXPECT_EQ(hashed.size(), 3u);
    EXPECT_EQ(ordered[first], 2);
    EXPECT_EQ(hashed[first.get()], 2);
    EXPECT_EQ(first->getRefCount(), 3) << "each map holds its key";
    EXPECT_LT(SmartRef<Shape>(), first);
}

TEST(TypedObject, IsOfItsOwnTypeAndOfThoseAbove)
{
    SmartRef<Shape> circle(new Circle);
    SmartRef<Shape> shape(new Shape);
    EXPECT_TRUE(circle->isOfType(&Circle::m_typeInfo));
    EXPECT_TRUE(circle->isOfType(&Shape::m_typeInfo));
    EXPECT_TRUE(circle->isOfType(&TypedObject::m_typeInfo));
    EXPECT_FALSE(shape->isOfType(&Circle::m_typeInfo));
    EXPECT_FALSE(shape->isOfType(nullptr));
    const TypeInfo sameName{"Shape", nullptr};
    EXPECT_FALSE(shape->isOfType(&sameName));
}

TEST(UniqueId, KeepsItsTextAndItsLayout)
{
    EXPECT_EQ(s_early.data1, 0x00112233u);
    EXPECT_EQ(s_early.data2, 0x4455u);
    EXPECT_EQ(s_early.data3, 0x6677u);
    EXPECT_EQ(s_early.data4[0], 0x88u);
    EXPECT_EQ(s_early.data4[7], 0xFFu);
    EXPECT_EQ(uniqueIdToString(s_early), "00112233-4455-6677-8899-AABBCCDDEEFF");
    EXPECT_EQ(stringToUniqueId("00112233-4455-6677-8899-aabbccddeeff"), s_early);
}

TEST(UniqueId, ReadsNothingFromOtherTexts)
{
    EXPECT_TRUE(stringToUniqueId(nullptr).isZero());
    for (const char* text :
         {"", "0", "00112233-4455-6677-8899-AABBCCDDEEF", "00112233-4455-6677-8899-AABBCCDDEEFF0",
          "00112233-4455-6677-8899-AABBCCDDEEFG", "{0112233-4455-6677-8899-AABBCCDDEEFF",
          "00112233 4455-6677-8899-AABBCCDDEEFF", "001122334455-6677-8899-AABBCCDDEEFF-"})
        EXPECT_TRUE(stringToUniqueId(text).isZero()) << text;
}

TEST(UniqueId, OrdersByItsBytesUnsigned)
{
    UniqueId low;
    UniqueId high;
    low.data1 = 0x01000000; // its first byte in memory is 0
    high.data1 = 0x00000080;
    EXPECT_TRUE(low < high);
    EXPECT_FALSE(high < low);
    EXPECT_TRUE(UniqueId() < low);
}

TEST(UniqueId, IsFreshEachTime)
{
    std::set<UniqueId> ids;
    for (int i = 0; i < 1000; ++i)
        ids.insert(generateUniqueId());
    EXPECT_EQ(ids.size(), 1000u);
    EXPECT_FALSE(ids.begin()->isZero());
}
