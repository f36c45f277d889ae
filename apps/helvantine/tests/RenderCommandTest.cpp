// SPDX-License-Identifier: MIT
#include "Execute.h"
#include "OfflineHost.h"

#include <helvantine/core/Text.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/testsupport/ImageComparison.h>
#include <helvantine/testsupport/TemporaryFolder.h>
#include <helvantine/timeline/Composition.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <regex>
#include <set>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

/// The command as a user runs it, on the document that the first example makes.
class RenderCommand : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_folder = new TemporaryFolder;
        s_document = s_folder->file("first-light.hfx");
        ASSERT_EQ(execute(std::string(FIRST_LIGHT) + " " + s_document), 0) << s_errors;
    }
    static void TearDownTestSuite() { delete s_folder; }

    /// Exit code; standard error is in s_errors.
    static int execute(const std::string& command) { return executeForErrors(command, s_errors); }
    static int render(const std::string& arguments)
    {
        return execute(std::string(HELVANTINE_COMMAND) + " render " + arguments);
    }
    static std::string file(const char* name) { return s_folder->file(name); }

    static TemporaryFolder* s_folder;
    static std::string s_document;
    static std::string s_errors;
};

TemporaryFolder* RenderCommand::s_folder = nullptr;
std::string RenderCommand::s_document;
std::string RenderCommand::s_errors;

} // namespace

TEST_F(RenderCommand, DrawsAFrameTheSameAloneAndInARange)
{
    const std::string common = s_document + " --size 160x90 --validation ";
    ASSERT_EQ(render(common + "--frames 100 -o " + file("alone.png")), 0) << s_errors;
    ASSERT_EQ(render(common + "--frames 97-101 -o " + file("made/range-%03d.png")), 0) << s_errors;
    EXPECT_EQ(s_errors, "");
    EXPECT_TRUE(std::filesystem::exists(file("made/range-097.png")));
    EXPECT_TRUE(std::filesystem::exists(file("made/range-101.png")));
    const std::string alone = readFile(file("alone.png"));
    ASSERT_FALSE(alone.empty());
    EXPECT_EQ(alone, readFile(file("made/range-100.png")));
    EXPECT_NE(alone, readFile(file("made/range-101.png")));
}

TEST_F(RenderCommand, LaysFramesOutOnASheet)
{
    const std::string common = s_document + " --size 40x24 ";
    ASSERT_EQ(render(common + "--frames 60-180 --every 40 --sheet 3 -o " + file("sheet.png")), 0) << s_errors;
    ASSERT_EQ(render(common + "--frames 60-180 --every 40 -o " + file("cell-%d.png")), 0) << s_errors;
    Image expected(120, 48, Vec4(0, 0, 0, 1)); // the last row is one frame short of three
    for (unsigned i = 0; i < 4; ++i) {
        const Image cell = readPng(file(formatString("cell-%u.png", 60 + 40 * i).c_str()));
        ASSERT_EQ(cell.getHeight(), 24u);
        for (unsigned y = 0; y < 24; ++y)
            for (unsigned x = 0; x < 40; ++x)
                expected.at(i % 3 * 40 + x, i / 3 * 24 + y) = cell.at(x, y);
    }
    EXPECT_TRUE(matches(readPng(file("sheet.png")), expected, {}));
    EXPECT_EQ(render(common + "--sheet 3 -o " + file("%d.png")), 2);
    EXPECT_EQ(render(common + "--frames 60 --sheet 0 -o " + file("none.png")), 2);
    EXPECT_EQ(render(common + "--sheet 1000 -o " + file("wide.png") + " --every 0"), 2);
    EXPECT_EQ(render(s_document + " --sheet 300 --size 1280x720 -o " + file("wide.png")), 2);
}

TEST_F(RenderCommand, DrawsRandomFramesTheSameAloneAndInARange)
{
    constexpr int frameCount = 300;
    constexpr tool::FrameSize size{64, 36};
    const auto open = [&](tool::OfflineHost& host) {
        std::string errors = host.load(s_document);
        errors += host.choose("");
        return errors + host.setSize(size);
    };
    std::mt19937 random(1);
    std::set<int> chosen;
    while (chosen.size() < 50)
        chosen.insert(static_cast<int>(random() % frameCount));

    std::map<int, std::vector<uint8_t>> range;
    {
        tool::OfflineHost host(false);
        ASSERT_EQ(open(host), "");
        for (int frame = 0; frame <= *chosen.rbegin(); ++frame) {
            std::vector<uint8_t> pixels;
            ASSERT_EQ(host.draw(frame, pixels), "");
            if (chosen.contains(frame))
                range[frame] = std::move(pixels);
        }
    }
    for (const auto& [frame, expected] : range) {
        tool::OfflineHost host(false);
        ASSERT_EQ(open(host), "");
        std::vector<uint8_t> pixels;
        ASSERT_EQ(host.draw(frame, pixels), "");
        EXPECT_TRUE(pixels == expected) << "frame " << frame;
    }
}

TEST_F(RenderCommand, BuildsProgramsAndPipelinesBeforeTheFirstFrame)
{
    ASSERT_EQ(render(s_document + " --size 64x36 --frames 0-59 --stats -o " + file("stats/%d.png")), 0);
    const std::regex built("programs +[1-9][0-9]* before the first frame, 0 after\n"
                           "pipelines +[1-9][0-9]* before the first frame, 0 after\n");
    EXPECT_TRUE(std::regex_search(s_errors, built)) << s_errors;
    for (const char* line : {"device ", "frames     60 written, 60 drawn\n", "times ", "memory "})
        EXPECT_NE(s_errors.find(line), std::string::npos) << line;
}

TEST_F(RenderCommand, DrawsTheExampleAsItShouldLook)
{
    // Drivers round blends and filters differently; a few pixels of thin strokes and stars differ by more.
    constexpr Tolerance tolerance{6.0f, 0.01f};
    for (const int frame : {60, 210}) {
        const std::string name = "first-light-" + std::to_string(frame);
        const std::string path = file((name + ".png").c_str());
        ASSERT_EQ(render(s_document + " --size 320x180 --frames " + std::to_string(frame) + " -o " + path), 0)
            << s_errors;
        EXPECT_TRUE(matchesGolden(readPng(path), name, tolerance));
    }
}

TEST_F(RenderCommand, MakesAVideoWhereFfmpegIs)
{
    const int code = render(s_document + " --size 160x90 --frames 30-35 -o " + file("clip.mp4"));
    if (std::system("ffmpeg -version > /dev/null 2>&1") != 0) {
        EXPECT_EQ(code, 1);
        EXPECT_NE(s_errors.find("needs the ffmpeg program, which isn't installed"), std::string::npos)
            << s_errors;
        return;
    }
    ASSERT_EQ(code, 0) << s_errors;
    ASSERT_EQ(
        execute("ffprobe -v error -count_frames -select_streams v -show_entries stream=width,nb_read_frames "
                "-of csv=p=0 " +
                file("clip.mp4") + " | grep -qx 160,6"),
        0);
}

TEST_F(RenderCommand, WarnsOfAMissingPictureAndDrawsTheRest)
{
    {
        Application application(std::filesystem::path(HELVANTINE_COMMAND).parent_path().c_str(), false);
        application.newDocument(file("").c_str());
        const SmartRef<TextureResourceImporter> importer(new TextureResourceImporter);
        importer->import("gone.png", nullptr);
        const SmartRef<Resource> picture(importer->createResource());
        picture->setImporter(importer.get());
        application.getDocument()->getResourceManager()->getRoot()->addResource(picture.get());
        const SmartRef<Composition> composition(new Composition(true, true));
        application.getDocument()->getCompositionManager()->getRoot()->addComposition(composition.get());
        application.saveDocument(file("missing.hfx").c_str());
    }
    EXPECT_EQ(render(file("missing.hfx") + " --size 16x16 --frames 0 -o " + file("missing.png")), 0);
    EXPECT_EQ(s_errors.rfind("helvantine: warning: " + file("missing.hfx") + ": ", 0), 0u) << s_errors;
    EXPECT_NE(s_errors.find("gone.png"), std::string::npos) << s_errors;
    EXPECT_TRUE(std::filesystem::exists(file("missing.png")));
    EXPECT_EQ(render(file("missing.hfx")), 2);
    EXPECT_NE(s_errors.find(": the timeline is empty; name frames with --frames\n"), std::string::npos)
        << s_errors;
}

TEST_F(RenderCommand, NamesTheFileAndTheReasonOfAFailure)
{
    ASSERT_TRUE(writeFile(file("text.hfx"), "no archive"));
    const struct
    {
        std::string arguments;
        int code;
        std::string words;
    } cases[] = {
        {"/absent/intro.hfx", 1, "helvantine: /absent/intro.hfx: no such file\n"},
        {file("text.hfx"), 1, "helvantine: " + file("text.hfx") + ": no Helvantine document\n"},
        {s_document + " --composition Outro", 1,
         "helvantine: " + s_document + ": holds no composition \"Outro\"; there is: \"First light\"\n"},
        {s_document + " --size 160x90 --frames 0 -o /dev/null/a.png", 1,
         "helvantine: /dev/null/a.png: can't be written: Not a directory\n"},
        {s_document + " --frames 9-3", 2,
         "helvantine: --frames 9-3: expected a range such as 0-59, or one frame such as 120\n"},
        {s_document + " --size 0x90", 2,
         "helvantine: --size 0x90: expected width x height such as 1280x720, each 1 to 16384\n"},
        {s_document + " --frames 0-1 -o still.png", 2,
         "helvantine: -o still.png: names one file for 2 frames; a place for the number is missing, as in "
         "frame-%04d.png\n"},
    };
    for (const auto& [arguments, code, words] : cases) {
        EXPECT_EQ(render(arguments), code) << arguments;
        EXPECT_EQ(s_errors.substr(s_errors.size() - std::min(s_errors.size(), words.size())), words);
    }
    EXPECT_EQ(render(""), 2);
    EXPECT_EQ(render("--help"), 0);
}

TEST_F(RenderCommand, NamesMisspeltWordsAndWhatIsDoneOtherwiseThanAsked)
{
    const std::string tool = HELVANTINE_COMMAND " ";
    const struct
    {
        std::string command;
        int code;
        std::string words;
    } cases[] = {
        {tool + "rendr a.hfx", 2, "helvantine: there is no command \"rendr\"; did you mean \"render\"?\n"},
        {tool + "encode a.hfx", 2,
         "helvantine: there is no command \"encode\"; there are render, play, info, check\n"},
        {tool + "render --framse=3 a.hfx", 2,
         "helvantine: render: there is no option \"--framse\"; did you mean \"--frames\"?\n"},
        {tool + "render " + s_document + " -o still.jpg", 2,
         "helvantine: -o still.jpg: no .jpg files are written; pictures are .png, videos .mp4, .mkv, .mov, "
         ".webm, .avi, "
         ".gif, .m4v\n"},
        {tool + "render " + s_document + " --preroll -1", 2,
         "helvantine: --preroll -1: expected 0 to 9999999\n"},
        {tool + "render " + s_document + " --frames 299-300 --preroll 0 --size 16x9 -o " +
             file("behind-%d.png"),
         0,
         "helvantine: warning: " + s_document +
             ": frames 300 to 300 lie behind the timeline, which has 300\n"},
    };
    for (const auto& [command, code, words] : cases) {
        EXPECT_EQ(execute(command), code) << command;
        EXPECT_EQ(s_errors.substr(0, words.size()), words);
    }
}
