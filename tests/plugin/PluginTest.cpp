// SPDX-License-Identifier: MIT
#include "Runtime.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Report.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TestEffect.h>
#include <helvantine/resource/Resource.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/testsupport/TemporaryFolder.h>
#include <helvantine/timeline/Layer.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace helvantine
{

using testplugin::getProgramFolder;
using testplugin::RecordingEffect;

namespace
{

/// The report since the last call, a line for each problem.
std::string takeWords()
{
    std::string words;
    for (const Problem& problem : takeProblems())
        words += problem.module + ": " + problem.text + '\n';
    return words;
}

} // namespace

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
    EXPECT_EQ(manager.m_factories[0]->m_plugins.size(), 59u);
    for (const PluginInfo* info : {&Effect::s_plugininfo, &CopyBackbufferEffect::s_plugininfo,
                                   &TestEffect::s_plugininfo, &Resource::s_plugininfo})
        EXPECT_EQ(manager.createPlugin(info->id), nullptr)
            << info->name << " has an identity, and that is all";
    EXPECT_EQ(manager.createPlugin(generateUniqueId()), nullptr);
    EXPECT_TRUE(PluginManager().init("/no/such/folder"));
}

TEST(PluginManager, SaysWhyAPluginLibraryIsRefused)
{
    takeProblems();
    PluginManager manager;
    const std::string folder = getProgramFolder() + "test-plugins/";
    manager.init(folder.c_str());
    ASSERT_EQ(manager.m_factories.size(), 2u);
    EXPECT_STREQ(manager.m_factories[0]->m_info->name, "Test");
    EXPECT_EQ(manager.m_factories[0]->m_plugins.size(), 3u);
    EXPECT_STREQ(manager.m_factories[1]->m_info->name, "Twin");
    EXPECT_EQ(manager.getPluginFactoryFromPlugin(RecordingEffect::s_plugininfo.id),
              manager.m_factories[0].get());

    EXPECT_EQ(takeWords(),
              "plugin: " + folder +
                  "HelvantineEndless.dll: class 'Endless' has the id of one before it\n" +         //
                  "plugin: " + folder + "HelvantineEndless.dll: offers more than 4096 classes\n" + //
                  "plugin: " + folder +
                  "HelvantineHalfPlugin.dll: the library doesn't export helvantinePluginQuery\n" +
                  "plugin: " + folder + "HelvantineNoRecord.dll: the library gives no record of itself\n" +
                  "plugin: " + folder + "HelvantineOtherVersion.dll: interface version 3, expected 0\n" +   //
                  "plugin: " + folder + "HelvantineTwin.dll: class 'Taken' makes no object\n" +             //
                  "plugin: " + folder + "HelvantineTwin.dll: class 'Own' makes no object\n" +               //
                  "plugin: " + folder + "HelvantineTwin.dll: class 'Again' has the id of one before it\n" + //
                  "plugin: " + folder + "HelvantineTwin.dll: class 'Taken' is taken from " + folder +
                  "HelvantineTestPlugin.dll, which offers its id as well\n");
}

TEST(PluginManager, SaysWhichFilesAreNoLibraries)
{
    takeProblems();
    const test::TemporaryFolder folder;
    test::writeFile(
        folder.file("Cut.dll"),
        test::readFile(getProgramFolder() + "test-plugins/HelvantineTestPlugin.dll").substr(0, 4000));
    test::writeFile(folder.file("Empty.dll"), "");
    test::writeFile(folder.file("Notes.dll"), "to do: plugin");
    makeFolders(folder.file("Folder.dll").c_str());
    PluginManager manager;
    manager.init(folder.getPath().c_str());
    EXPECT_TRUE(manager.m_factories.empty());

    EXPECT_EQ(
        takeWords(),
        "library: '" + folder.file("Cut.dll") + "' is absent or no whole library of this system\n" +       //
            "library: '" + folder.file("Empty.dll") + "' is absent or no whole library of this system\n" + //
            "library: '" + folder.file("Notes.dll") + "' is absent or no whole library of this system\n");
}

TEST(PluginManager, RefusesASecondCopyOfTheRuntime)
{
    takeProblems();
    const test::TemporaryFolder folder;
    const std::string own = getProgramFolder() + "Helvantine.Fx.dll";
    std::vector<std::string> names = {"Helvantine.Fx.dll"};
#if !defined(__SANITIZE_ADDRESS__)
    // This one is loaded before it is known for what it is, which the sanitizer takes for an error of ours.
    names.emplace_back("Helvantine.Fx.old.dll");
#endif
    std::string expected;
    for (const std::string& name : names) {
        ASSERT_TRUE(copyFile(own.c_str(), folder.file(name).c_str(), true));
        expected +=
            "plugin: " + folder.file(name) + ": a second copy of the runtime, which runs from " + own + '\n';
    }
    PluginManager manager;
    manager.init(folder.getPath().c_str());
    EXPECT_TRUE(manager.m_factories.empty());
    EXPECT_EQ(takeWords(), expected);
}

TEST(PluginManager, TakesTheRuntimeThroughALink)
{
    takeProblems();
    const test::TemporaryFolder folder;
    const std::string own = getProgramFolder() + "Helvantine.Fx.dll";
    std::filesystem::create_symlink(own, folder.file("Helvantine.Fx.dll"));
    PluginManager manager;
    manager.init(folder.getPath().c_str());
    EXPECT_EQ(takeWords(), "");
    const SmartRef<Plugin> layer(manager.createPlugin(Layer::s_plugininfo.id));
    ASSERT_TRUE(layer);
    EXPECT_EQ(layer->getTypeInfo(), &Layer::m_typeInfo);
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
