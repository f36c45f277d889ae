// SPDX-License-Identifier: MIT
#include "Execute.h"

#include <helvantine/testsupport/ImageComparison.h>
#include <helvantine/testsupport/TemporaryFolder.h>

#include <nlohmann/json.hpp>

#include <regex>
#include <string>

using namespace helvantine::test;

namespace
{

/// The command on the document that the gallery's example makes. The caches of shaders and pipelines start empty.
class Gallery : public testing::Test
{
protected:
    Gallery() { EXPECT_EQ(execute(std::string(POST_GALLERY) + " " + document), 0) << output; }

    int execute(const std::string& command)
    {
        return helvantine::test::execute("XDG_CACHE_HOME=" + folder.file("cache") + " " + command, output);
    }
    int run(const std::string& arguments)
    {
        return execute(std::string(HELVANTINE_COMMAND) + " " + arguments);
    }

    TemporaryFolder folder;
    std::string document = folder.file("gallery.hfx");
    std::string output;
};

} // namespace

TEST_F(Gallery, PlaysWithoutBuildingProgramsOrPipelines)
{
    ASSERT_EQ(run("render " + document + " --every 10 --size 64x36 --stats --validation -o " +
                  folder.file("%d.png")),
              0)
        << output;
    const std::regex built("programs +[1-9][0-9]* before the first frame, 0 after\n"
                           "pipelines +[1-9][0-9]* before the first frame, 0 after\n");
    EXPECT_TRUE(std::regex_search(output, built)) << output;
    EXPECT_EQ(run("check " + document), 0) << output;
}

TEST_F(Gallery, LooksAndReadsAsItsPageShows)
{
    ASSERT_EQ(run("info --json " + document), 0) << output;
    const auto rooms = nlohmann::json::parse(output)["root"]["compositions"][0]["effects"];
    std::string list;
    int number = 0;
    for (const auto& room : rooms)
        list += std::to_string(++number) + ". " + room["name"].get<std::string>() + "\n";
    EXPECT_NE(readFile(DOCS_FOLDER "/gallery.md").find("<!-- rooms -->\n" + list + "<!-- end -->"),
              std::string::npos)
        << "scripts/gallery.sh makes the page anew; the list is now\n"
        << list;

    // Drivers round blends and filters differently; dithering and thin strokes show it.
    constexpr Tolerance tolerance{8.0f, 0.02f};
    const std::string sheet = folder.file("sheet.png");
    ASSERT_EQ(run("render " + document + " --frames 35-875 --every 60 --sheet 3 --size 320x180 -o " + sheet),
              0)
        << output;
    EXPECT_TRUE(matches(readPng(sheet), readPng(DOCS_FOLDER "/images/gallery.png"), tolerance))
        << "scripts/gallery.sh makes the page anew";
}
