// SPDX-License-Identifier: MIT
#include "Runtime.h"

#include <helvantine/core/Report.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/timeline/Layer.h>

#include <gtest/gtest.h>

namespace helvantine
{

using testplugin::getProgramFolder;
using testplugin::RecordingEffect;

TEST(PluginManager, FindsThisLibraryAmongThoseBesideTheProgram)
{
    takeProblems();
    PluginManager manager;
    EXPECT_TRUE(manager.init(getProgramFolder().c_str()));
    ASSERT_EQ(manager.m_factories.size(), 1u) << "the other libraries there are no plugin libraries";
    EXPECT_STREQ(manager.m_factories[0]->m_info->name, "Fx");
    EXPECT_TRUE(takeProblems().empty());

    EXPECT_EQ(manager.getPluginFactoryFromPlugin(Layer::s_plugininfo.id), manager.m_factories[0].get());
    const SmartRef<Plugin> layer(manager.createPlugin(Layer::s_plugininfo.id));
    EXPECT_TRUE(layer->isOfType(&Layer::m_typeInfo));
    EXPECT_EQ(manager.createPlugin(Effect::s_plugininfo.id), nullptr) << "has an identity, can't be created";
    EXPECT_EQ(manager.createPlugin(generateUniqueId()), nullptr);
    EXPECT_TRUE(PluginManager().init("/no/such/folder"));
}

TEST(PluginManager, SaysWhyAPluginLibraryIsRefused)
{
    takeProblems();
    PluginManager manager;
    const std::string folder = getProgramFolder() + "test-plugins/";
    manager.init(folder.c_str());
    ASSERT_EQ(manager.m_factories.size(), 1u);
    EXPECT_STREQ(manager.m_factories[0]->m_info->name, "Test");
    EXPECT_EQ(manager.m_factories[0]->m_plugins.size(), 3u);

    std::string words;
    for (const Problem& problem : takeProblems())
        words += problem.module + ": " + problem.text + '\n';
    EXPECT_EQ(words,
              "plugin: " + folder +
                  "HelvantineHalfPlugin.dll: the library doesn't export helvantinePluginQuery\n" +
                  "plugin: " + folder + "HelvantineNoRecord.dll: the library gives no record of itself\n" +
                  "plugin: " + folder + "HelvantineOtherVersion.dll: interface version 3, expected 0\n");
}

TEST(PluginManager, FirstLibraryWinsAClassThatTwoOffer)
{
    testplugin::Runtime runtime;
    PluginManager& manager = *runtime.application.getPluginManager();
    const std::string path = getProgramFolder() + "test-plugins/HelvantineTestPlugin.dll";
    manager.m_factories.emplace_back(createPluginFactory(path.c_str()));
    ASSERT_EQ(manager.m_factories.size(), 3u);
    EXPECT_EQ(manager.getPluginFactoryFromPlugin(RecordingEffect::s_plugininfo.id),
              manager.m_factories[1].get());

    EXPECT_EQ(createPluginOfType<SchematicsNode>(RecordingEffect::s_plugininfo.id), nullptr)
        << "of another type";
    const SmartRef<Effect> effect(createPluginOfType<Effect>(RecordingEffect::s_plugininfo.id));
    EXPECT_EQ(effect->m_effectNode, nullptr) << "nobody has initialised it";
}

TEST(PluginQuery, BothRequestsMeanTheSameClass)
{
    const std::string path = getProgramFolder() + "Helvantine.Fx.dll";
    const SmartRef<PluginFactory> factory(createPluginFactory(path.c_str()));
    const PluginQuery query = factory->m_pluginQuery;
    const auto count = static_cast<int>(factory->m_plugins.size());
    EXPECT_GT(count, 5);
    for (int index = 0; index < count; ++index) {
        const SmartRef<Plugin> plugin(static_cast<Plugin*>(query(PluginRequestCreate, index)));
        ASSERT_NE(plugin, nullptr) << index;
        EXPECT_EQ(plugin->getRefCount(), 1);
        EXPECT_EQ(plugin->getPluginInfo(), query(PluginRequestInfo, index));
    }
    EXPECT_EQ(query(PluginRequestInfo, 0), &EffectNode::s_plugininfo);
    for (const int index : {-1, count}) {
        EXPECT_EQ(query(PluginRequestInfo, index), nullptr);
        EXPECT_EQ(query(PluginRequestCreate, index), nullptr);
    }
    EXPECT_EQ(query(2, 0), nullptr);
}

} // namespace helvantine
