// SPDX-License-Identifier: MIT
// The examples that make a document, as a user runs them.
#include "Execute.h"

#include <helvantine/core/Text.h>
#include <helvantine/testsupport/ImageComparison.h>
#include <helvantine/testsupport/TemporaryFolder.h>

#include <filesystem>
#include <regex>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

struct Example
{
    const char* program;
    const char* name; ///< of its goldens, in front of the frame
    int frames[2];    ///< that are compared with goldens
};

class ExampleTest : public testing::TestWithParam<Example>
{
protected:
    /// With caches that begin empty. Exit code; what was printed is in m_output.
    int execute(const std::string& command)
    {
        return test::execute("XDG_CACHE_HOME=" + m_folder.file("caches") + " " + command, m_output);
    }
    int render(const std::string& arguments)
    {
        return execute(HELVANTINE_COMMAND " render " + m_document + " " + arguments);
    }

    TemporaryFolder m_folder;
    std::string m_document = m_folder.file("example.hfx");
    std::string m_output;
};

} // namespace

TEST_P(ExampleTest, MakesADocumentThatPlaysWithoutSurprise)
{
    const Example& example = GetParam();
    ASSERT_EQ(execute(example.program + (" " + m_document)), 0) << m_output;
    EXPECT_EQ(m_output, "");
    EXPECT_EQ(execute(HELVANTINE_COMMAND " check " + m_document), 0) << m_output;

    std::filesystem::remove_all(m_folder.file("caches"));
    ASSERT_EQ(render("--validation --size 64x36 --frames 0-29 --stats -o " + m_folder.file("%d.png")), 0)
        << m_output;
    const std::regex built("programs +[1-9][0-9]* before the first frame, 0 after\n"
                           "pipelines +[1-9][0-9]* before the first frame, 0 after\n");
    EXPECT_TRUE(std::regex_search(m_output, built)) << m_output;

    // Drivers round blends and filters differently; a few pixels of thin lines and stars differ by more.
    constexpr Tolerance tolerance{6.0f, 0.01f};
    for (const int frame : example.frames) {
        const std::string name = formatString("%s-%d", example.name, frame);
        const std::string path = m_folder.file(name + ".png");
        ASSERT_EQ(render(formatString("--size 320x180 --frames %d -o ", frame) + path), 0) << m_output;
        EXPECT_TRUE(matchesGolden(readPng(path), name, tolerance));
    }
}

TEST_P(ExampleTest, SaysHowItIsCalledAndWhatItCantWrite)
{
    const std::string program = GetParam().program;
    EXPECT_EQ(execute(program), 2);
    EXPECT_EQ(m_output, "usage: " + program + " DOCUMENT\n");
    EXPECT_EQ(execute(program + " --help"), 0);
    EXPECT_EQ(m_output, "usage: " + program + " DOCUMENT\n");
    EXPECT_EQ(execute(program + " /proc/no-such-folder/example.hfx"), 1);
    EXPECT_NE(m_output.find("can't make folder '/proc/no-such-folder'"), std::string::npos) << m_output;
}

INSTANTIATE_TEST_SUITE_P(, ExampleTest, testing::Values(Example{GRAPH, "orrery", {100, 475}}),
                         [](const auto& example) { return std::string(example.param.name); });
