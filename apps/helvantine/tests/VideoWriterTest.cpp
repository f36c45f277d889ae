// SPDX-License-Identifier: MIT
#include "Execute.h"
#include "Ffmpeg.h"
#include "FrameWriter.h"

#include <helvantine/testsupport/Image.h>
#include <helvantine/testsupport/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <sys/resource.h>

namespace helvantine::test
{

namespace
{

constexpr int frameRate = 30;

class VideoWriterTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::signal(SIGPIPE, SIG_IGN);
        std::string output;
        if (execute("ffmpeg -version && ffprobe -version", output) != 0)
            GTEST_SKIP() << "ffmpeg isn't installed";
    }

    std::unique_ptr<tool::FrameWriter> create(const std::string& name, tool::FrameSize size, int total)
    {
        std::string error;
        auto writer = tool::createVideoWriter(m_folder.file(name), size, frameRate, total, error);
        EXPECT_EQ(error, "");
        return writer;
    }

    TemporaryFolder m_folder;
};

/// Patches of 32 by 32 pixels: the corners of the colour cube and what lies between.
constexpr unsigned patch = 32;
constexpr unsigned levels = 3;
constexpr tool::FrameSize chartSize{patch * levels * levels, patch* levels};

Image::Pixel8 getPatchColor(unsigned column, unsigned row)
{
    const auto level = [](unsigned step) { return static_cast<uint8_t>(step * 255 / (levels - 1)); };
    return {level(column % levels), level(column / levels), level(row), 255};
}

std::vector<uint8_t> makeChart()
{
    std::vector<uint8_t> pixels;
    for (unsigned y = 0; y < chartSize.height; ++y) {
        for (unsigned x = 0; x < chartSize.width; ++x) {
            const Image::Pixel8 color = getPatchColor(x / patch, y / patch);
            pixels.insert(pixels.end(), {color[2], color[1], color[0], 255});
        }
    }
    return pixels;
}

std::vector<uint8_t> makeNoise(tool::FrameSize size)
{
    static std::mt19937 random(1);
    std::vector<uint8_t> pixels(std::size_t{4} * size.width * size.height);
    for (uint8_t& byte : pixels)
        byte = static_cast<uint8_t>(random());
    return pixels;
}

} // namespace

TEST_F(VideoWriterTest, KeepsColoursAndTellsWhichTheyAre)
{
    for (const std::string name : {"chart.mp4", "chart.mov", "chart.mkv", "chart.webm"}) {
        const auto writer = create(name, chartSize, 10);
        for (int frame = 0; frame < 10; ++frame) {
            std::vector<uint8_t> chart = makeChart();
            ASSERT_EQ(writer->write(frame, chart), "");
        }
        ASSERT_EQ(writer->finish(), "") << name;
        const std::string path = m_folder.file(name);
        std::string output;
        execute("ffprobe -v error -show_entries "
                "stream=color_range,color_space,color_transfer,color_primaries -of "
                "default=nw=1:nk=1 " +
                    path,
                output);
        EXPECT_EQ(output, "tv\nbt709\nbt709\nbt709\n") << name;
        ASSERT_EQ(execute("ffmpeg -v error -y -i " + path + " -frames:v 1 -pix_fmt rgb24 " +
                              m_folder.file("chart.png"),
                          output),
                  0)
            << output;
        const Image decoded = readPng(m_folder.file("chart.png"));
        int most = 0;
        for (unsigned row = 0; row < levels; ++row) {
            for (unsigned column = 0; column < levels * levels; ++column) {
                const Image::Pixel8 found = decoded.at8(column * patch + patch / 2, row * patch + patch / 2);
                for (std::size_t i = 0; i < 3; ++i)
                    most = std::max(most, std::abs(int{found[i]} - int{getPatchColor(column, row)[i]}));
            }
        }
        EXPECT_LE(most, 3) << name;
    }
}

TEST_F(VideoWriterTest, PutsOnlyWholeFilesInPlaceAndKeepsPlayableParts)
{
    constexpr tool::FrameSize size{160, 90};
    constexpr int total = 90;
    std::signal(SIGXFSZ, SIG_IGN); // and so it is for ffmpeg: a full disk, as it sees it
    for (const std::string name : {"full.mp4", "full.mkv"}) {
        rlimit limit = {};
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlim_t before = limit.rlim_cur;
        limit.rlim_cur = 600'000;
        setrlimit(RLIMIT_FSIZE, &limit);
        const auto writer = create(name, size, total);
        limit.rlim_cur = before;
        setrlimit(RLIMIT_FSIZE, &limit);

        std::string error;
        for (int frame = 0; frame < total && error.empty(); ++frame) {
            std::vector<uint8_t> noise = makeNoise(size);
            error = writer->write(frame, noise);
        }
        if (error.empty())
            error = writer->finish();
        EXPECT_NE(error.find(m_folder.file(name) + ": ffmpeg says: "), std::string::npos) << error;
        EXPECT_NE(error.find("File too large"), std::string::npos) << error;
        EXPECT_FALSE(std::filesystem::exists(m_folder.file(name)));

        const std::string part = m_folder.file(std::string("full.part") + name.substr(4));
        const int frames = tool::measureVideo(part).frames;
        EXPECT_GT(frames, 5);
        EXPECT_LT(frames, total);
        EXPECT_EQ(writer->abandon(), std::to_string(frames) + " of 90 frames are in " + part);
    }
    std::signal(SIGXFSZ, SIG_DFL);
}

TEST_F(VideoWriterTest, AnInterruptedRenderLeavesWhatIsDone)
{
    for (const std::string name : {"cut.mp4", "cut.webm", "cut.gif"}) {
        const auto writer = create(name, chartSize, 50);
        for (int frame = 0; frame < 12; ++frame) {
            std::vector<uint8_t> chart = makeChart();
            ASSERT_EQ(writer->write(frame, chart), "");
        }
        const std::string part = m_folder.file("cut.part" + name.substr(3));
        EXPECT_EQ(writer->abandon(), "12 of 50 frames are in " + part);
        EXPECT_EQ(tool::measureVideo(part).words, "");
        EXPECT_FALSE(std::filesystem::exists(m_folder.file(name)));
    }
    create("none.mp4", chartSize, 50).reset();
    EXPECT_FALSE(std::filesystem::exists(m_folder.file("none.part.mp4")));
}

} // namespace helvantine::test
