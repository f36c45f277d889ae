// SPDX-License-Identifier: MIT
#include "FramePattern.h"
#include "FrameRange.h"
#include "FrameWriter.h"
#include "Suggestion.h"

#include <gtest/gtest.h>

using namespace helvantine::tool;

TEST(FrameRange, ReadsOneFrameOrARange)
{
    const auto one = parseFrameRange("120");
    ASSERT_TRUE(one);
    EXPECT_EQ(one->first, 120);
    EXPECT_EQ(one->getCount(), 1);
    const auto range = parseFrameRange("0-59");
    ASSERT_TRUE(range);
    EXPECT_EQ(range->first, 0);
    EXPECT_EQ(range->getCount(), 60);
    for (const char* text :
         {"", "-", "5-", "-5", "5-4", "a", "1-b", "1-2-3", "1 -2", "10000000", "4294967296", "0x10", "+1"})
        EXPECT_FALSE(parseFrameRange(text)) << text;
}

TEST(FrameSize, ReadsWidthAndHeight)
{
    const auto size = parseFrameSize("1280x720");
    ASSERT_TRUE(size);
    EXPECT_EQ(size->width, 1280u);
    EXPECT_EQ(size->height, 720u);
    for (const char* text : {"", "x", "1280", "0x720", "1280x0", "16385x1", "-1x1", "1x1x1", "1280 x 720"})
        EXPECT_FALSE(parseFrameSize(text)) << text;
}

TEST(FramePattern, PutsTheNumberInItsPlace)
{
    const struct
    {
        const char* pattern;
        const char* path;
    } cases[] = {
        {"out/frame-%04d.png", "out/frame-0042.png"},
        {"%d.png", "42.png"},
        {"%01d.png", "42.png"},
        {"100%%/%03d", "100%/042"},
        {"still.png", "still.png"},
    };
    for (const auto& [text, path] : cases) {
        const auto pattern = FramePattern::parse(text);
        ASSERT_TRUE(pattern) << text;
        EXPECT_EQ(pattern->getPath(42), path);
    }
    EXPECT_FALSE(FramePattern::parse("still.png")->hasPlace());
    for (const char* text : {"%", "%s.png", "%04d-%04d", "%4d", "%0999d", "%n", "%04", "%-4d", "%04x"})
        EXPECT_FALSE(FramePattern::parse(text)) << text;
}

TEST(Suggestion, FindsTheWordThatWasMeant)
{
    const std::vector<std::string> options = {"--frames", "--every", "--size", "--stats", "--help"};
    for (const auto& [word, meant] : {std::pair{"--frame", "--frames"},
                                      {"--fraems", "--frames"},
                                      {"--siez", "--size"},
                                      {"--stat", "--stats"},
                                      {"--ever", "--every"},
                                      {"--output", ""},
                                      {"-x", ""},
                                      {"", ""}})
        EXPECT_EQ(findNearest(word, options), meant) << word;
    EXPECT_EQ(findNearest(std::string(100000, '-'), options), "");
}

TEST(FrameWriter, TellsVideosByTheirType)
{
    EXPECT_TRUE(isVideo("out/a.mp4"));
    EXPECT_TRUE(isVideo("A.WebM"));
    EXPECT_FALSE(isVideo("mp4"));
    EXPECT_FALSE(isVideo("a.mp4.png"));
}
