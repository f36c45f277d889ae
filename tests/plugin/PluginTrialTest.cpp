// SPDX-License-Identifier: MIT
#include "Runtime.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/testsupport/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace helvantine
{

using testplugin::getProgramFolder;

namespace
{

/// A folder with the runtime and copies of a faulty library, and caches that begin empty.
class PluginTrialTest : public testing::Test
{
protected:
    void SetUp() override
    {
        setenv("XDG_CACHE_HOME", m_caches.getPath().c_str(), 1);
        unsetenv("HELVANTINE_PLUGIN_TRIAL");
        std::filesystem::create_directories(m_plugins);
        takeProblems();
    }
    void TearDown() override { setenv("XDG_CACHE_HOME", m_before.c_str(), 1); }

    void add(const std::string& fault, const char* library = "FaultyPlugin.so")
    {
        const std::string source = getProgramFolder() + "test-plugins/" + library;
        ASSERT_TRUE(copyFile(source.c_str(), path(fault).c_str(), true));
    }
    std::string path(const std::string& fault) const { return m_plugins + "/" + fault + ".dll"; }

    /// What a start of a host says of its libraries, without the module; true if the last one is loaded.
    bool scan()
    {
        PluginManager manager;
        manager.init(m_plugins.c_str());
        m_words.clear();
        for (const Problem& problem : takeProblems())
            m_words += problem.text + '\n';
        return !manager.m_factories.empty();
    }

    std::string m_before = getenv("XDG_CACHE_HOME") ? getenv("XDG_CACHE_HOME") : "";
    test::TemporaryFolder m_caches;
    test::TemporaryFolder m_folder;
    std::string m_plugins = m_folder.file("plugins");
    std::string m_words;
};

struct Fault
{
    const char* name;
    bool isLoaded;
    const char* words; ///< behind the path of the library; empty for none
};

const Fault s_faults[] = {
    {"none-in-none", true, ""},
    {"print-in-constructor", true, ""},
    {"nest-in-constructor", true, ""}, // makes an object of the runtime's
    {"throw-in-constructor", true, "threw 'a plain fault' while an object of class 'Faulty' was made"},
    {"null-in-query", true, "class 'Faulty' makes no object"},
    {"other-in-query", true, "class 'Faulty' makes an object of another class"},

    {"throw-in-loading", false, "isn't loaded, since in a trial it crashed (signal 6) while it was loaded"},
    {"throw-in-record", false, "threw 'a plain fault' while it was asked for its record"},
    {"throw-number-in-classes", false,
     "threw 'something that is no std::exception' while it was asked for its classes"},
    {"abort-in-loading", false, "isn't loaded, since in a trial it crashed (signal 6) while it was loaded"},
    {"throw-in-destructor", false,
     "isn't loaded, since in a trial it crashed (signal 6) while an object of class 'Faulty' was dropped"},
    {"terminate-in-constructor", false,
     "isn't loaded, since in a trial it crashed (signal 6) while an object of class 'Faulty' was made"},
    {"kill-in-constructor", false,
     "isn't loaded, since in a trial it crashed (signal 9) while an object of class 'Faulty' was made"},
    {"abort-in-unloading", false,
     "isn't loaded, since in a trial it crashed (signal 6) while it was unloaded"},
    {"exit-in-record", false,
     "isn't loaded, since in a trial it ended the program with exit code 0 while it was asked for its "
     "record"},
    {"loop-in-classes", false,
     "isn't loaded, since in a trial it took more than 2 s of a processor while it was asked for its "
     "classes"},
#if !defined(__SANITIZE_ADDRESS__) // which has no limit on memory, and ends programs in its own way
    {"allocate-in-constructor", true, "threw 'std::bad_alloc' while an object of class 'Faulty' was made"},
    {"segfault-in-classes", false,
     "isn't loaded, since in a trial it crashed (signal 11) while it was asked for its classes"},
    {"overflow-in-constructor", false,
     "isn't loaded, since in a trial it crashed (signal 11) while an object of class 'Faulty' was made"},
#endif
};

} // namespace

TEST_F(PluginTrialTest, WhatALibraryDoesInItsTrialItDoesNotDoToTheHost)
{
    for (const Fault& fault : s_faults) {
        SCOPED_TRACE(fault.name);
        add(fault.name);
        EXPECT_EQ(scan(), fault.isLoaded);
        EXPECT_EQ(m_words, *fault.words ? path(fault.name) + ": " + fault.words + '\n' : "");
        std::filesystem::remove(path(fault.name));
    }
}

TEST_F(PluginTrialTest, AVerdictHoldsUntilTheLibraryChanges)
{
    add("a", "HelvantineTwin.dll");
    add("abort-in-record");
    scan();
    const std::string words = m_words;
    EXPECT_NE(words.find("in a trial it crashed"), std::string::npos);
    setenv("HELVANTINE_PLUGIN_TRIAL", "/no/such/program", 1);
    EXPECT_TRUE(scan());
    EXPECT_EQ(m_words, words) << "nothing is tried again";

    // A damaged memory is none.
    unsetenv("HELVANTINE_PLUGIN_TRIAL");
    const std::string memory = m_caches.file("helvantine/plugin-verdicts");
    const std::string bytes = test::readFile(memory);
    for (const std::string& damaged :
         {bytes.substr(0, bytes.size() / 2), std::string("no verdicts"), std::string()})
    {
        test::writeFile(memory, damaged);
        scan();
        EXPECT_EQ(m_words, words);
        EXPECT_EQ(test::readFile(memory), bytes);
    }
    add("abort-in-record", "HelvantineNoRecord.dll");
    scan();
    EXPECT_NE(m_words.find("abort-in-record.dll: the library gives no record of itself\n"),
              std::string::npos);
}

TEST_F(PluginTrialTest, WhatTheLoaderRefusesIsTriedAgain)
{
    add("Incomplete", "IncompletePlugin.so");
    for (int start = 0; start < 2; ++start) {
        EXPECT_FALSE(scan());
        EXPECT_NE(m_words.find("can't load '" + path("Incomplete") + "'"), std::string::npos) << m_words;
        EXPECT_NE(m_words.find("functionOfAnotherVersion"), std::string::npos) << m_words;
    }
}

TEST_F(PluginTrialTest, WithoutItsProgramLibrariesAreLoadedUntriedWhichIsSaidOnce)
{
    setenv("HELVANTINE_PLUGIN_TRIAL", "/no/such/program", 1);
    add("throw-in-constructor");
    const std::string untried = "libraries are loaded untried, so one that crashes ends this program: ";
    EXPECT_TRUE(scan());
    EXPECT_EQ(m_words, untried + "/no/such/program: No such file or directory\n");
    EXPECT_TRUE(scan());
    EXPECT_EQ(m_words, "");
}

TEST_F(PluginTrialTest, WhatALibraryDoesUntriedIsCaughtOrNamed)
{
    setenv("HELVANTINE_PLUGIN_TRIAL", "", 1);
    const auto make = [&](const char* fault) {
        add(fault);
        const SmartRef<PluginFactory> factory(createPluginFactory(path(fault).c_str()));
        return factory ? factory->createPlugin(factory->m_plugins[0]->id) : nullptr;
    };
    EXPECT_EQ(make("throw-in-constructor"), nullptr);
    EXPECT_EQ(takeProblems()[0].text,
              path("throw-in-constructor") +
                  ": threw 'a plain fault' while an object of class 'Faulty' was made");
    const char* const words = "ended the program while an object of class 'Faulty' was made \\(signal ";
    EXPECT_DEATH(make("abort-in-constructor"),
                 std::string("plugin: .*/abort-in-constructor.dll: ") + words + "6\\)");
    EXPECT_DEATH(make("terminate-in-constructor"),
                 std::string("terminate-in-constructor.dll: ") + words + "6\\)");
    EXPECT_DEATH(make("segfault-in-constructor"),
                 std::string("segfault-in-constructor.dll: ") + words + "11\\)");
    EXPECT_DEATH(make("abort-in-loading"), "ended the program while it was loaded \\(signal 6\\)");
}

} // namespace helvantine
