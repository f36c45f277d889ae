// SPDX-License-Identifier: MIT
#include "LiveFolder.h"
#include "Execute.h"
#include "Rehearsal.h"

#include <helvantine/core/System.h>
#include <helvantine/effects2d/RayMarchingEffect.h>
#include <helvantine/object/PropertyLink.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResource.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/schematics/ShaderNode.h>
#include <helvantine/testsupport/ProjectTest.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <sys/stat.h>

namespace helvantine::test
{
namespace
{

using tool::LiveFolder;
using tool::LiveShaders;
using tool::Say;

/// A text that fills the screen with a colour.
std::string fillWith(const char* color)
{
    return std::string("float4 VS_Main(float2 uv : TEXCOORD0) : SV_Position\n"
                       "{ return float4(uv.x * 2 - 1, 1 - uv.y * 2, 0, 1); }\n"
                       "float4 PS_Main() : SV_Target { return float4(") +
           color + "); }\n";
}

const std::string red = fillWith("1, 0, 0, 1");
const std::string green = fillWith("0, 1, 0, 1");
const std::string blue = fillWith("0, 0, 1, 1");
const std::string broken = "// text\nfloat4 VS_Main() : SV_Position { return nothing; }\n";

/// A document that a shader node "wave" draws, and a folder beside it.
class LiveFolderTest : public DrawingTest
{
protected:
    LiveFolderTest() : DrawingTest(32, 18) {}

    void SetUp() override
    {
        DrawingTest::SetUp();
        m_wave->m_name = "wave";
        m_wave->setText(red.c_str());
        composition().m_schematics->addNode(m_wave.get());
        const SmartRef<RayMarchingEffect> effect(new RayMarchingEffect);
        effect->onInit();
        composition().m_rootEffect->addObject(effect.get(), 0);
        composition().m_schematics->addNode(effect->m_effectNode.get());
        composition().m_schematics->addLink(
            new PropertyLink(m_wave->m_outputGroups.at(0)->m_properties.at(0),
                             effect->findGroup("Raymarching")->findProperty("Shader")));
    }

    /// As an editor does it: the file is whole when it gets its name.
    void save(const std::string& name, const std::string& bytes)
    {
        ASSERT_TRUE(writeFile(m_files.file("unfinished"), bytes));
        ASSERT_EQ(std::rename(m_files.file("unfinished").c_str(), m_files.file(name).c_str()), 0);
    }

    /// What is said until something is; true if the picture may have changed.
    bool update(LiveFolder& live)
    {
        m_said.clear();
        bool changed = false;
        for (const double end = getTime() + 20; m_said.empty() && getTime() < end;)
            changed |= live.update(getTime());
        return changed;
    }
    std::string pathOf(const std::string& name) const { return m_files.file(name); }
    Image::Pixel8 draw() { return render(m_frame++).at8(16, 9); }

    SmartRef<ShaderNode> m_wave{new ShaderNode};
    TemporaryFolder m_files;
    std::string m_said;
    Say m_say = [this](const std::string& line) { m_said += line + "\n"; };
    int m_frame = 0;
};

constexpr Image::Pixel8 redPixel{255, 0, 0, 255};
constexpr Image::Pixel8 greenPixel{0, 255, 0, 255};
constexpr Image::Pixel8 bluePixel{0, 0, 255, 255};

} // namespace

TEST_F(LiveFolderTest, ATextIsTakenOverOnceItCompiles)
{
    EXPECT_NE(LiveFolder(document(), m_say).open(m_files.file("nowhere")), "");
    save("wave.hlsl", green);
    LiveFolder live(document(), m_say);
    ASSERT_EQ(live.open(m_files.getPath()), "");
    EXPECT_EQ(draw(), redPixel);
    EXPECT_TRUE(update(live)) << "what lies there is taken, too";
    EXPECT_EQ(m_wave->getText(), green);
    EXPECT_EQ(draw(), greenPixel);

    save("wave.hlsl", broken);
    EXPECT_FALSE(update(live));
    EXPECT_EQ(m_said.find(pathOf("wave.hlsl") + ":2: error:"), 0u) << m_said;
    EXPECT_EQ(m_wave->getText(), green);
    EXPECT_EQ(draw(), greenPixel);

    ASSERT_TRUE(writeFile(m_files.file("wave.HLSL"), blue)) << "in place";
    EXPECT_TRUE(update(live));
    EXPECT_EQ(m_said, pathOf("wave.HLSL") + ": taken over\n");
    EXPECT_EQ(draw(), bluePixel);

    save("wave.hlsl", "Texture2D far : register(t5);\n" + fillWith("far.Load(int3(0, 0, 0)).rgb, 1"));
    EXPECT_TRUE(update(live));
    EXPECT_EQ(m_said.find(pathOf("wave.hlsl") + ": taken over\n" + pathOf("wave.hlsl") +
                          ":1: warning: \"far\" is read from t5 of the pixel stage, where "),
              0u)
        << m_said;
}

TEST_F(LiveFolderTest, WhatCannotBeATextIsSaid)
{
    LiveFolder live(document(), m_say);
    ASSERT_EQ(live.open(m_files.getPath()), "");
    const std::pair<std::string, std::string> cases[] = {
        {"wave.hlsl", "is empty"},
        {"wave.hlsl", "is no text"},
        {"wave.hlsl", "has 1048577 bytes, more than 1048576"},
        {"other.hlsl", "no shader node has this name, and none includes it"},
        {"other.png", "no texture was loaded from a file of this name"},
    };
    const std::string contents[] = {"", std::string("a\0b", 3), std::string((1 << 20) + 1, ' '), red, ""};
    for (size_t i = 0; i < std::size(cases); ++i) {
        save(cases[i].first, contents[i]);
        EXPECT_FALSE(update(live));
        EXPECT_EQ(m_said, pathOf(cases[i].first) + ": " + cases[i].second + "\n");
    }
    ASSERT_EQ(mkfifo(m_files.file("unfinished").c_str(), 0600), 0);
    ASSERT_EQ(std::rename(m_files.file("unfinished").c_str(), m_files.file("wave.hlsl").c_str()), 0);
    EXPECT_FALSE(update(live)) << "and nobody waits for a pipe's other end";
    EXPECT_EQ(m_said, pathOf("wave.hlsl") + ": can't be read\n");
    EXPECT_EQ(m_wave->getText(), red);
}

TEST_F(LiveFolderTest, TheLatestOfSeveralTextsStays)
{
    const tool::LiveIncludes includes;
    LiveShaders shaders(document(), includes, m_say);
    shaders.offer("wave", "one", fillWith("0, 0, 0, 0.125"));
    shaders.update(); // compiles
    shaders.offer("wave", "two", broken);
    shaders.offer("wave", "three", green);
    for (const double end = getTime() + 20; m_wave->getText() != green && getTime() < end;)
        shaders.update();
    EXPECT_EQ(m_said.find("two"), std::string::npos) << m_said;
    EXPECT_NE(m_said.find("three: taken over"), std::string::npos) << m_said;
    EXPECT_FALSE(shaders.update());
}

TEST_F(LiveFolderTest, ATextIsCompiledAnewWhenWhatItIncludesIsWritten)
{
    const std::string including = "#include \"lib/colors.hlsl\"\n" + fillWith("color()");
    const auto color = [](const char* values) {
        return "float4 color() { return float4(" + std::string(values) + "); }\n";
    };
    save("wave.hlsl", including);
    save("colors.hlsl", "#include \"basic.h\"\n");
    LiveFolder live(document(), m_say);
    ASSERT_EQ(live.open(m_files.getPath()), "");
    EXPECT_FALSE(update(live));
    EXPECT_EQ(m_said.find(pathOf("colors.hlsl") + ":1: error: '#include' : the file can't be found"), 0u)
        << m_said;

    save("basic.h", color("0, 1, 0, 1"));
    EXPECT_TRUE(update(live)) << "the text that couldn't be taken over can now be";
    EXPECT_EQ(m_said, pathOf("wave.hlsl") + ": taken over\n");
    EXPECT_EQ(draw(), greenPixel);

    save("basic.h", "\n" + broken);
    EXPECT_FALSE(update(live));
    EXPECT_EQ(m_said.find(pathOf("basic.h") + ":3: error:"), 0u) << m_said;
    EXPECT_EQ(draw(), greenPixel);

    save("basic.h", color("0, 0, 1, 1"));
    EXPECT_TRUE(update(live));
    EXPECT_EQ(m_wave->getText(), including);
    EXPECT_EQ(draw(), bluePixel);
}

TEST_F(LiveFolderTest, AFileOfTheFolderIsIncludedInPlaceOfTheDocuments)
{
    ASSERT_TRUE(writeFile(folder().file("color.h"), "#define COLOR 1, 0, 0, 1\n"));
    m_wave->setText(("#include \"color.h\"\n" + fillWith("COLOR")).c_str());
    LiveFolder live(document(), m_say);
    ASSERT_EQ(live.open(m_files.getPath()), "");
    EXPECT_EQ(draw(), redPixel);

    save("color.h", "#define COLOR nothing\n");
    EXPECT_FALSE(update(live));
    EXPECT_EQ(m_said.find("shader node \"wave\":4: error:"), 0u) << m_said;
    EXPECT_EQ(draw(), redPixel);

    save("color.h", "#define COLOR 0, 1, 0, 1\n");
    EXPECT_TRUE(update(live));
    EXPECT_EQ(m_said, "shader node \"wave\": taken over\n");
    EXPECT_EQ(draw(), greenPixel);
}

TEST_F(LiveFolderTest, AnImageReplacesTheTexturesOfItsName)
{
    const std::string imported = folder().file("Photo.PNG");
    ASSERT_TRUE(writePng(imported, Image(4, 3)));
    const SmartRef<TextureResourceImporter> importer(new TextureResourceImporter);
    const SmartRef<Resource> resource = importer->import(imported.c_str(), nullptr).resource;
    ASSERT_TRUE(resource);
    document().getResourceManager()->getRoot()->addResource(resource.get());
    const auto& texture = static_cast<const TextureResource&>(*resource);

    LiveFolder live(document(), m_say);
    ASSERT_EQ(live.open(m_files.getPath()), "");
    ASSERT_TRUE(writePng(m_files.file("Photo.PNG"), Image(8, 6)));
    EXPECT_TRUE(update(live));
    EXPECT_EQ(texture.getTexture()->getWidth(), 8u);
    EXPECT_EQ(resource->getFilename(), imported);

    save("Photo.PNG", "no picture");
    EXPECT_FALSE(update(live));
    EXPECT_EQ(m_said, pathOf("Photo.PNG") + ": not a png, bmp, tga, jpg or dds file\n");
    EXPECT_EQ(texture.getTexture()->getWidth(), 8u);
    ASSERT_TRUE(writePng(m_files.file("unfinished"), Image(2000, 1000)));
    save("Photo.PNG", readFile(m_files.file("unfinished")));
    m_said.clear();
    EXPECT_FALSE(live.update(getTime())) << "frames go on while it is decoded";
    EXPECT_EQ(m_said, "");
    EXPECT_TRUE(update(live));
    EXPECT_EQ(texture.getTexture()->getWidth(), 2000u);
}

TEST(FolderWatch, FollowsAnotherFolderThatTakesThePlace)
{
    const TemporaryFolder files;
    const std::string folder = files.file("watched");
    tool::FolderWatch watch;
    double now = 0.0;
    const auto take = [&] {
        std::string name;
        for (int look = 0; look < 3 && name.empty(); ++look)
            watch.take(now += 1.0, name);
        return name;
    };
    std::filesystem::create_directory(folder);
    ASSERT_EQ(watch.open(folder), "");

    std::filesystem::remove(folder);
    std::filesystem::create_directory(folder);
    ASSERT_TRUE(writeFile(folder + "/first", ""));
    EXPECT_EQ(take(), "first");
    ASSERT_TRUE(writeFile(folder + "/second", ""));
    EXPECT_EQ(take(), "second");

    std::filesystem::rename(folder, files.file("aside"));
    EXPECT_EQ(take(), "");
    ASSERT_TRUE(writeFile(files.file("aside/other"), ""));
    EXPECT_EQ(take(), "") << "that is another folder now";
    std::filesystem::create_directory(folder);
    ASSERT_TRUE(writeFile(folder + "/third", ""));
    EXPECT_EQ(take(), "third");
}

/// With a program in place of the tool: a script.
class RehearsalTest : public LiveFolderTest
{
protected:
    tool::Rehearsal::Stage stageWith(const std::string& script)
    {
        const std::string program = m_files.file("program");
        EXPECT_TRUE(writeFile(program, "#!/bin/sh\n" + script + "\n"));
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        return {
            .program = program, .document = "live.hfx", .composition = "", .folder = "", .size = {32, 18}};
    }
    void updateFor(double seconds, LiveShaders& shaders)
    {
        for (const double end = getTime() + seconds; getTime() < end && m_said.empty();)
            shaders.update();
    }

    const tool::LiveIncludes m_includes;
};

TEST_F(RehearsalTest, ATextIsTakenOverOnceItWasDrawnElsewhere)
{
    const std::string path = m_files.file("live.hfx");
    application().saveDocument(path.c_str());
    save("wave.hlsl", green);
    tool::Rehearsal rehearsal({.program = HELVANTINE_COMMAND,
                               .document = path,
                               .composition = "",
                               .folder = m_files.getPath(),
                               .size = {32, 18}});
    LiveFolder live(document(), m_say, &rehearsal);
    ASSERT_EQ(live.open(m_files.getPath()), "");
    EXPECT_TRUE(update(live));
    EXPECT_EQ(m_said, pathOf("wave.hlsl") + ": taken over\n");
    EXPECT_EQ(draw(), greenPixel);
}

TEST_F(RehearsalTest, WhatCannotBeDrawnElsewhereIsNotTakenOver)
{
    using namespace std::chrono_literals;
    const struct
    {
        const char* script;
        const char* words;
    } cases[] = {
        {"exec sleep 600", "took the driver more than 0.5 s"},
        {"kill -SEGV $$", "crashed (signal 11)"},
        {"exit 3", "ended with exit code 3"},
    };
    for (const auto& [script, words] : cases) {
        tool::Rehearsal::Stage stage = stageWith(script);
        stage.patience = 500ms;
        tool::Rehearsal rehearsal(stage);
        LiveShaders shaders(document(), m_includes, m_say, &rehearsal);
        shaders.offer("wave", "one", green);
        updateFor(20, shaders);
        EXPECT_EQ(m_said, std::string("one: not taken over: drawing with it ") + words + "\n");
        EXPECT_EQ(m_wave->getText(), red);
        m_said.clear();
    }
}

TEST_F(RehearsalTest, ANewerTextEndsTheRehearsalOfTheOlder)
{
    tool::Rehearsal rehearsal(stageWith("head -c 10 >/dev/null; [ -e " + m_files.file("second") +
                                        " ] && exit 0; touch " + m_files.file("second") +
                                        "; exec sleep 600"));
    LiveShaders shaders(document(), m_includes, m_say, &rehearsal);
    shaders.offer("wave", "one", green);
    for (const double end = getTime() + 20;
         !std::filesystem::exists(m_files.file("second")) && getTime() < end;)
        shaders.update();
    shaders.offer("wave", "two", blue);
    updateFor(20, shaders);
    EXPECT_EQ(m_said, "two: taken over\n");
    EXPECT_EQ(m_wave->getText(), blue);
}

TEST_F(RehearsalTest, OneThatFailsAmongSeveralIsTheOnlyOneToStay)
{
    const SmartRef<ShaderNode> other(new ShaderNode);
    other->m_name = "other";
    composition().m_schematics->addNode(other.get());
    // Reads the texts, and fails if one of them is blue.
    tool::Rehearsal rehearsal(stageWith("timeout 0.5 cat | grep -q 'float4(0, 0, 1, 1)' && exit 4; exit 0"));
    LiveShaders shaders(document(), m_includes, m_say, &rehearsal);
    shaders.offer("wave", "one", blue);
    shaders.offer("other", "two", green);
    for (const double end = getTime() + 20; other->getText() != green && getTime() < end;)
        shaders.update();
    EXPECT_EQ(m_said, "one: not taken over: drawing with it ended with exit code 4\ntwo: taken over\n");
    EXPECT_EQ(m_wave->getText(), red);
}

TEST_F(RehearsalTest, WithoutAProcessTextsAreTakenOverAtOnce)
{
    tool::Rehearsal rehearsal(
        {.program = m_files.file("nowhere"), .document = "", .composition = "", .folder = ""});
    LiveShaders shaders(document(), m_includes, m_say, &rehearsal);
    shaders.offer("wave", "one", green);
    for (const double end = getTime() + 20; m_wave->getText() != green && getTime() < end;)
        shaders.update();
    EXPECT_EQ(m_said.find("shaders are drawn with at once, as they can't be elsewhere first: "), 0u)
        << m_said;
    EXPECT_NE(m_said.find("one: taken over\n"), std::string::npos) << m_said;
}

/// The command as a user runs it.
TEST_F(LiveFolderTest, PlayFollowsTheFolder)
{
    if (!std::getenv("DISPLAY"))
        GTEST_SKIP() << "no display";
    const SmartRef<ShaderNode> other(new ShaderNode);
    other->m_name = "other";
    composition().m_schematics->addNode(other.get());
    const std::string path = m_files.file("live.hfx");
    application().saveDocument(path.c_str());
    save("wave.hlsl", green);
    save("other.hlsl", broken);
    std::string said;
    EXPECT_EQ(executeForErrors(HELVANTINE_COMMAND " play " + path + " --watch " + m_files.getPath() +
                                   " --frames 300 --loop --size 64x36 --validation",
                               said),
              0);
    EXPECT_NE(said.find(pathOf("wave.hlsl") + ": taken over\n"), std::string::npos) << said;
    EXPECT_NE(said.find(pathOf("other.hlsl") + ":2: error:"), std::string::npos) << said;
}

} // namespace helvantine::test
