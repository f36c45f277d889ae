// SPDX-License-Identifier: MIT
#include "plugin/TestPlugin.h"

#include <helvantine/effects2d/RayMarchingEffect.h>
#include <helvantine/effects2d/TextureBlurEffect.h>
#include <helvantine/object/CatalogueClasses.h>
#include <helvantine/resource/Resource.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/timeline/Effect2D.h>
#include <helvantine/timeline/Layer.h>

#include <gtest/gtest.h>

#include <limits>

namespace helvantine
{

namespace
{

Layer* addLayer(Object& parent, const char* name, int index = -1)
{
    auto* layer = new Layer;
    layer->setName(name);
    parent.addObject(layer, index);
    return layer;
}

std::string namesOf(const std::vector<SmartRef<Object>>& objects)
{
    std::string names;
    for (const SmartRef<Object>& object : objects)
        names += object->m_name;
    return names;
}

std::string namesAt(const Object& root, int frame, bool recursive = true)
{
    std::vector<SmartRef<Object>> found;
    root.getObjectsOfType(&Layer::m_typeInfo, found, frame, recursive);
    return namesOf(found);
}

} // namespace

TEST(Object, KeepsChildrenWhereTheyWerePut)
{
    const SmartRef<Layer> rootRef(new Layer);
    Layer& root = *rootRef;
    addLayer(root, "a", 0);
    addLayer(root, "b", 0);
    addLayer(root, "c", 5);
    Layer* d = addLayer(root, "d");
    addLayer(root, "e", 1);
    EXPECT_EQ(namesOf(root.m_children), "beacd");
    EXPECT_EQ(d->m_parent, &root);

    const SmartRef<Layer> grandchild(addLayer(*d, "g"));
    root.deleteObject(grandchild->m_id);
    EXPECT_EQ(root.findObject(grandchild->m_id), grandchild.get()) << "only direct children are taken out";
    d->deleteObject(grandchild->m_id);
    EXPECT_EQ(root.findObject(grandchild->m_id), nullptr);
    EXPECT_EQ(grandchild->m_parent, nullptr);
    EXPECT_EQ(root.findObject(root.m_id), &root);
}

TEST(Object, FindsWhatIsLiveAtAFrame)
{
    const SmartRef<Layer> rootRef(new Layer);
    Layer& root = *rootRef;
    Layer* a = addLayer(root, "a");
    a->setStart(10);
    a->setEnd(30);
    Layer* b = addLayer(*a, "b");
    b->setStart(5);
    b->setEnd(10);
    addLayer(root, "c")->setEnabled(false);
    EXPECT_EQ(b->getRelativeStartFrame(), 15);

    const std::pair<int, const char*> cases[] = {{9, ""},    {10, "a"}, {14, "a"}, {15, "ab"},
                                                 {19, "ab"}, {20, "a"}, {29, "a"}, {30, ""}};
    for (const auto& [frame, names] : cases)
        EXPECT_EQ(namesAt(root, frame), names) << "frame " << frame;
    EXPECT_EQ(namesAt(root, 15, false), "a");
    EXPECT_EQ(namesOf(root.getAllObjects()), "abc");

    b->setStart(std::numeric_limits<int>::max());
    b->setEnd(std::numeric_limits<int>::min());
    EXPECT_EQ(namesAt(root, 15), "a") << "frames from a file may be anything";
}

TEST(ClassCatalogue, TypeRecordsFollowTheBases)
{
    EXPECT_TRUE(isTypeDerivedFrom(&TextureBlurEffect::m_typeInfo, &Effect2D::m_typeInfo));
    EXPECT_TRUE(isTypeDerivedFrom(&TextureBlurEffect::m_typeInfo, &TypedObject::m_typeInfo));
    EXPECT_FALSE(isTypeDerivedFrom(&TextureBlurEffect::m_typeInfo, &Effect3D::m_typeInfo));
    EXPECT_FALSE(isTypeDerivedFrom(&RayMarchingEffect::m_typeInfo, &Effect3D::m_typeInfo));

    const testplugin::SumNode node; // its class stands beside the category, its record below it
    EXPECT_TRUE(node.isOfType(&LogicNode::m_typeInfo));
    EXPECT_TRUE(node.isOfType(&Plugin::m_typeInfo));
    EXPECT_FALSE(node.isOfType(&EffectNode::m_typeInfo));
    EXPECT_FALSE(node.isOfType(nullptr));

    // Objects stand in timelines and graphs; they have no record of their own.
    Resource resource;
    Plugin* const layer = new Layer;
    const SmartRef<Plugin> importer(new TextureResourceImporter), owned(layer);
    EXPECT_NE(castTo<Object>(layer), nullptr);
    EXPECT_NE(castTo<const Object>(static_cast<const Plugin*>(&node)), nullptr);
    EXPECT_EQ(castTo<Object>(static_cast<Plugin*>(&resource)), nullptr);
    EXPECT_EQ(castTo<Object>(importer.get()), nullptr);
    EXPECT_NE(castTo<ResourceImporter>(importer.get()), nullptr);
    EXPECT_STREQ(EffectNode::s_plugininfo.menuPath, "Root/EffetNode") << "deliberate";
}

} // namespace helvantine
