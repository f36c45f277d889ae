// SPDX-License-Identifier: MIT
// "info" and "check", as a user runs them, on a document that has one of each defect.
#include "DocumentCheck.h"
#include "Execute.h"
#include "Json.h"

#include <gtest/gtest.h>

#include <helvantine/core/Keyframe.h>
#include <helvantine/effects2d/ClearScreenEffect.h>
#include <helvantine/effects2d/RayMarchingEffect.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TextureBlurEffect.h>
#include <helvantine/effects2d/TextureDOFEffect.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/schematics/AnimatedResourceNode.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/schematics/ShaderNode.h>
#include <helvantine/testsupport/TemporaryFolder.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <filesystem>

namespace helvantine::test
{

/// Of a library that the tool doesn't load.
class StrangeEffect : public TextureEffect
{
    HELVANTINE_PLUGIN_CLASS(StrangeEffect)
};
HELVANTINE_PLUGIN_RECORDS(StrangeEffect, TextureEffect, PluginEffect, "5A1E77E0-0000-4000-8000-000000000001",
                          "Test/Strange", "Strange", true)

namespace
{

using tool::Json;

class Inspection : public testing::Test
{
protected:
    Inspection()
        : m_application(std::filesystem::path(HELVANTINE_COMMAND).parent_path().c_str(), false),
          m_composition(new Composition(true, true))
    {
        m_application.newDocument(m_folder.file("").c_str());
        m_composition->setName("Main");
        m_application.getDocument()->getCompositionManager()->getRoot()->addComposition(m_composition.get());
    }

    template <class T>
    T& add(const char* name, int start = 0, int end = 100, Object* parent = nullptr)
    {
        const SmartRef<T> effect(new T);
        effect->onInit();
        effect->setName(name);
        effect->setStart(start);
        effect->setEnd(end);
        (parent ? parent : m_composition->m_rootEffect.get())->addObject(effect.get(), -1);
        return *effect;
    }

    Resource& addPicture(const char* name, const char* file)
    {
        const SmartRef<TextureResourceImporter> importer(new TextureResourceImporter);
        importer->import(file, nullptr);
        const SmartRef<Resource> picture(importer->createResource());
        picture->setName(name);
        picture->setImporter(importer.get());
        m_application.getDocument()->getResourceManager()->getRoot()->addResource(picture.get());
        return *picture;
    }

    Resource& addTarget(const char* name)
    {
        const SmartRef<RenderTargetResourceImporter> importer(new RenderTargetResourceImporter);
        const SmartRef<Resource> target(importer->createResource());
        target->setName(name);
        target->setImporter(importer.get());
        m_application.getDocument()->getResourceManager()->getRoot()->addResource(target.get());
        return *target;
    }

    static void name(Object& object, const char* propertyName, const Resource& resource)
    {
        property(object, propertyName).fromString(uniqueIdToString(resource.getId()).c_str());
    }

    static PropertyBase& property(Object& object, const char* name)
    {
        if (PropertyBase* found = tool::findInput(object, name))
            return *found;
        ADD_FAILURE() << name;
        std::abort();
    }

    void link(Object& source, Object& target, const char* name)
    {
        m_composition->m_schematics->addLink(
            new PropertyLink(&property(source, name), &property(target, name)));
    }

    std::string save()
    {
        const std::string path = m_folder.file("made.hfx");
        m_application.saveDocument(path.c_str());
        return path;
    }

    /// Exit code; what it printed is in m_output.
    int run(const std::string& arguments) { return execute(HELVANTINE_COMMAND " " + arguments, m_output); }

    /// A line for each finding: code, path.
    std::string findings() const
    {
        std::string lines;
        const Json report = Json::parse(m_output);
        for (const Json& finding : report.at("findings"))
            lines +=
                finding.at("code").get<std::string>() + " " + finding.at("path").get<std::string>() + "\n";
        return lines;
    }

    std::string found(std::size_t index) const
    {
        return Json::parse(m_output).at("findings").at(index).at("found").get<std::string>();
    }

    TemporaryFolder m_folder;
    Application m_application;
    SmartRef<Composition> m_composition;
    std::string m_output;
};

TEST_F(Inspection, CheckFindsEachDefectAndNamesItsPlace)
{
    Resource& gone = addPicture("Gone", "gone.png");
    auto& a = add<TextureEffect>("A");
    auto& b = add<TextureEffect>("B");
    auto& c = add<TextureEffect>("C");
    property(c, "Texture").fromString("12345678-0000-4000-8000-000000000000");
    property(a, "Texture").fromString(uniqueIdToString(gone.getId()).c_str());
    property(add<RenderTargetEffect>("Into"), "Render Target")
        .fromString(uniqueIdToString(gone.getId()).c_str());
    link(a, b, "Position");
    link(b, a, "Size");
    link(c, b, "Position");
    link(c, add<StrangeEffect>("Strange"), "Position");
    property(a, "Color").enableKeyframe(true);
    for (const float time : {2.0f, 1.0f}) {
        Key* key = property(a, "Color").m_keyframe->createKey();
        key->time = time;
        property(a, "Color").m_keyframe->addKey(key, false);
    }
    add<Layer>("Empty", 5, 5);
    add<Layer>("Late", 20, 30, &add<Layer>("Short", 50, 60));
    Layer& off = add<Layer>("Off");
    off.setEnabled(false);
    add<Layer>("Below", 0, 10, &add<Layer>("Under", 0, 10, &off));

    const std::string document = save();
    EXPECT_EQ(run("check --json " + document), 1);
    EXPECT_EQ(findings(), "keys-unordered Main/A\n"
                          "class-unknown Main\n"
                          "link-refused Main\n"
                          "file-missing Gone\n"
                          "reference-dangling Main/C/Texture\n"
                          "reference-mistyped Main/Into/Render Target\n"
                          "effect-never-runs Main/Empty\n"
                          "effect-never-runs Main/Short/Late\n"
                          "effect-never-runs Main/Off/Under\n"
                          "link-refused Main/B/Position\n"
                          "graph-cycle Main/A\n")
        << m_output;
    EXPECT_NE(m_output.find("5A1E77E0-0000-4000-8000-000000000001"), std::string::npos);
    EXPECT_EQ(run("check " + document), 1);
    EXPECT_NE(m_output.find("effect-never-runs: Main/Short/Late: frames 70 to 79 are outside of those of "
                            "\"Main/Short\"\n    move it into the frames of what it stands in\n"),
              std::string::npos)
        << m_output;
}

TEST_F(Inspection, CheckJudgesWhatPropertiesName)
{
    Resource& picture = addPicture("Picture", (m_folder.file("broken.png")).c_str());
    ASSERT_TRUE(writeFile(m_folder.file("broken.png"), "no picture"));
    Resource& target = addTarget("Target");
    property(*addTarget("Odd").getImporter(), "Width").fromString("-5");
    auto& into = add<RenderTargetEffect>("Into");
    name(into, "Render Target", target);
    auto& inner = add<RenderTargetEffect>("Inner", 0, 100, &into); // names nothing: changes nothing
    name(add<TextureEffect>("Mirror", 0, 100, &inner), "Texture", target);
    name(add<TextureEffect>("Beside"), "Texture", target);
    property(add<TextureEffect>("Words"), "Texture").fromString("a picture");
    name(add<RenderTargetEffect>("Wrong"), "Render Target", picture);
    auto& blur = add<TextureBlurEffect>("Blur");
    for (const char* input : {"Texture", "Vertical Blur Target"})
        name(blur, input, target);
    name(add<TextureDOFEffect>("Focus"), "Depth Source", target);

    EXPECT_EQ(run("check --json " + save()), 1);
    EXPECT_EQ(findings(), "file-undecodable Picture\n"
                          "target-impossible Odd/Width\n"
                          "reference-unreadable Main/Words/Texture\n"
                          "reference-mistyped Main/Wrong/Render Target\n"
                          "depth-missing Main/Focus/Depth Source\n"
                          "target-reads-itself Main/Into/Inner/Mirror/Texture\n"
                          "target-reads-itself Main/Blur/Texture\n"
                          "target-carried Target\n")
        << m_output;
    EXPECT_EQ(found(0), "TextureResourceImporter can't read the file: " + m_folder.file("broken.png") +
                            ": not a png, bmp, tga, jpg or dds file");
    EXPECT_EQ(found(1), "is -5");
    EXPECT_EQ(found(2), "names \"a picture\", which is no id");
    EXPECT_EQ(found(3), "names the resource \"Picture\" of class TextureResource");
    EXPECT_EQ(found(4), "reads distances from the alpha of \"Target\", whose format holds none above 1");
    EXPECT_EQ(found(5), "reads \"Target\" while it draws into that, as what it stands in");
    EXPECT_EQ(found(6), "reads \"Target\" while it draws into that, as its \"Vertical Blur Target\"");
}

TEST_F(Inspection, CheckNamesTargetsThatCarryTheirPictures)
{
    const auto show = [&](const char* effect, const Resource& target, int start = 0, int end = 100,
                          Object* parent = nullptr) {
        auto& quad = add<TextureEffect>(effect, start, end, parent);
        name(quad, "Texture", target);
        return &quad;
    };
    const auto into = [&](const Resource& target, int start = 0, int end = 100) {
        auto& effect = add<RenderTargetEffect>("Into", start, end);
        name(effect, "Render Target", target);
        return &effect;
    };
    const Resource& picture = addPicture("Picture", "");
    const Resource& trail = addTarget("Trail");
    show("Dot", picture, 0, 100, into(trail));
    show("Shown", trail);

    const Resource& late = addTarget("Late"); // cleared in the second half of what reads it
    add<ClearScreenEffect>("Clear", 0, 50, into(late, 50, 100));
    show("Too early", late);

    const Resource& clean = addTarget("Clean"); // cleared in two halves, or covered
    add<ClearScreenEffect>("Clear", 0, 50, into(clean, 0, 50));
    property(*show("Cover", picture, 0, 50, into(clean, 50, 100)), "Size").fromString("960, 540");
    show("Shown", clean);

    const Resource& deep = addTarget("Deep");
    Object& inner = *into(deep);
    property(add<ClearScreenEffect>("Clear", 0, 100, &inner), "Clear Depth Target").fromString("0");
    property(*show("Dot", picture, 0, 100, &inner), "3D").fromString("1");
    show("Shown", deep);

    EXPECT_EQ(run("check --json " + save()), 1);
    EXPECT_EQ(findings(), "target-carried Trail\ntarget-carried Late\ntarget-carried Deep\n") << m_output;
    EXPECT_EQ(found(0), "\"Main/Into/Dot\" draws onto what the frame before has left");
    EXPECT_EQ(found(1), "\"Main/Too early\" reads it before all of it was drawn in that frame");
    EXPECT_EQ(found(2), "\"Main/Into/Dot\" tests the depth that the frame before has left");
}

TEST_F(Inspection, ShaderTextsThatDoNotCompileAreFoundAndWarnedOf)
{
    const std::string vertices = "float4 VS_Main(float4 p : POSITION) : SV_Position { return p; }\n";
    const auto addShader = [&](const char* name, const std::string& text) {
        const SmartRef<ShaderNode> node(new ShaderNode);
        node->setName(name);
        node->setText(text.c_str());
        m_composition->m_schematics->addNode(node.get());
    };
    addShader("Good", vertices + "float4 PS_Main() : SV_Target { return POINTLIGHT_COUNT_MAX; }\n");
    addShader("Bad", vertices + "float4 PS_Main() : SV_Target\n{ return glow; }\n");
    addShader("Empty", "");
    addShader("Cut", vertices + "float4 PS_Main(float4 p : SV_Position) : SV_Target\n"
                                "{ float2 a = p; float2 b = p; return (a + b).xyxy; }\n");

    const std::string document = save();
    EXPECT_EQ(run("check --json " + document), 1);
    EXPECT_EQ(findings(), "shader-broken Main/Bad/Shader Code\n"
                          "shader-broken Main/Empty/Shader Code\n"
                          "shader-warning Main/Cut/Shader Code\n")
        << m_output;
    EXPECT_NE(found(0).find("shader:3: error: 'glow'"), std::string::npos) << m_output;
    EXPECT_EQ(found(1), "Invalid shader code");
    EXPECT_EQ(found(2), "shader:3: warning: 'float4' is cut to 'float2'");

    EXPECT_EQ(run("render --size 16x9 --frames 0-1 -o " + m_folder.file("%d.png") + " " + document), 0);
    const std::string warning =
        "helvantine: warning: " + document + ": Main/Bad/Shader Code:3: error: 'glow'";
    EXPECT_EQ(m_output.find(warning), 0u) << m_output;
    EXPECT_EQ(m_output.rfind(warning), 0u) << "told once";
    EXPECT_NE(m_output.find("Main/Cut/Shader Code:3: warning: 'float4' is cut to 'float2'\n"),
              std::string::npos);
}

TEST_F(Inspection, ReadsOfWhatNothingBindsAreFoundAndWarnedOf)
{
    const auto addShader = [&](const char* name, const char* text) {
        const SmartRef<ShaderNode> node(new ShaderNode);
        node->setName(name);
        node->setText(text);
        m_composition->m_schematics->addNode(node.get());
        return node;
    };
    const char* const greedy = R"(cbuffer Common : register(b0) { float4x4 matrix0; };
cbuffer Lights : register(b3) { float4 color; };
Texture2D near : register(t0);
Texture2D far : register ( t5 );
SamplerState smooth : register(s0);
Texture2D unused : register(t7), also : register(t0);
struct Pixel { float4 position : SV_Position; float2 uv : TEXCOORD; };
Pixel VS_Main(float4 position : POSITION, float2 uv : TEXCOORD0, float3 normal : NORMAL)
{
    Pixel pixel;
    pixel.position = mul(position, matrix0);
    pixel.uv = uv + normal.xy;
    return pixel;
}
float4 PS_Main(Pixel pixel) : SV_Target
{
    return (near.Sample(smooth, pixel.uv) + far.Sample(smooth, pixel.uv)) * color;
}
)";
    const SmartRef<ShaderNode> linked = addShader("Linked", greedy);
    const SmartRef<ShaderNode> named = addShader("Named", greedy);
    addShader("Idle", "Texture2D one : register(t1);\nTexture2D two : register(t1);\n"
                      "float4 VS_Main() : SV_Position { return 0; }\n"
                      "float4 PS_Main() : SV_Target { return one.Load(0) + two.Load(0); }\n");
    auto& first = add<RayMarchingEffect>("First");
    auto& second = add<RayMarchingEffect>("Second");
    name(second, "Shader", *named->getResource());
    const SmartRef<AnimatedResourceNode> choice(new AnimatedResourceNode);
    choice->setName("Choice");
    property(*choice, "Resource Count").fromString("2");
    for (Object* object :
         {static_cast<Object*>(choice.get()), static_cast<Object*>(first.m_effectNode.get())})
        m_composition->m_schematics->addNode(static_cast<SchematicsNode*>(object));
    const auto link = [&](PropertyBase& source, PropertyBase& target) {
        m_composition->m_schematics->addLink(new PropertyLink(&source, &target));
    };
    link(*linked->m_outputGroups[0]->findProperty("Shader"), property(*choice, "Resource-2"));
    link(*choice->m_outputGroups[0]->findProperty("Output"), property(first, "Shader"));

    const std::string document = save();
    EXPECT_EQ(run("check --json " + document), 1);
    EXPECT_EQ(findings(), "shader-unbound Main/Linked/Shader Code\n"
                          "shader-unbound Main/Linked/Shader Code\n"
                          "shader-unbound Main/Linked/Shader Code\n"
                          "shader-unbound Main/Named/Shader Code\n"
                          "shader-unbound Main/Named/Shader Code\n"
                          "shader-unbound Main/Named/Shader Code\n"
                          "shader-ambiguous Main/Idle/Shader Code\n")
        << m_output;
    EXPECT_EQ(found(0),
              "shader:2: \"Lights\" is read from b3 of the pixel stage, where Main/First binds nothing");
    EXPECT_EQ(found(1),
              "shader:4: \"far\" is read from t5 of the pixel stage, where Main/First binds nothing");
    EXPECT_EQ(found(6), "shader:2: \"two\" lies on t1, as \"one\" does: both read what is bound there");
    EXPECT_EQ(found(5), "shader:8: input NORMAL0 is read, where Main/Second binds nothing");

    EXPECT_EQ(run("render --size 16x9 --frames 0 -o " + m_folder.file("0.png") + " " + document), 0);
    EXPECT_NE(
        m_output.find("helvantine: warning: " + document +
                      ": Main/Linked/Shader Code:2: warning: \"Lights\" is read from b3 of the pixel "
                      "stage, where Main/First binds nothing; RayMarchingEffect binds b0, t0, s0, POSITION0, "
                      "COLOR0, TEXCOORD0\n"),
        std::string::npos)
        << m_output;
}

TEST_F(Inspection, CheckTellsACleanDocumentFromADamagedFileAndFromNone)
{
    add<TextureEffect>("A");
    EXPECT_EQ(run("check " + save()), 0);
    EXPECT_EQ(m_output, "nothing found\n");

    ASSERT_TRUE(writeFile(m_folder.file("text.hfx"), "no archive"));
    EXPECT_EQ(run("check --json " + m_folder.file("text.hfx")), 1);
    EXPECT_EQ(findings().substr(0, 19), "script-unreadable \n");
    EXPECT_EQ(run("check /absent.hfx"), 2);
    EXPECT_EQ(m_output, "helvantine: /absent.hfx: no such file\n");
}

TEST_F(Inspection, InfoTellsWhatADocumentHolds)
{
    m_application.getDocument()->getProjectSettings()->setTitle("Bad \xff name");
    Resource& picture = addPicture("Picture", "gone.png");
    Layer& layer = add<Layer>("Layer", 10, 50);
    auto& a = add<TextureEffect>("A", 1, 2, &layer);
    a.setEnabled(false);
    auto& b = add<TextureEffect>("B");
    property(a, "Color").enableKeyframe(true);
    for (const float time : {1.0f, 2.5f}) {
        Key* key = property(a, "Color").m_keyframe->createKey();
        key->time = time;
        property(a, "Color").m_keyframe->addKey(key, true);
    }
    link(a, b, "Position");
    const SmartRef<ShaderNode> shader(new ShaderNode);
    shader->setText("// a text\nof two lines\n");
    m_composition->m_schematics->addNode(shader.get());

    const std::string document = save();
    ASSERT_EQ(run("info --json " + document), 0) << m_output;
    const Json info = Json::parse(m_output);
    EXPECT_EQ(info.at("settings").at("title"), "Bad \xef\xbf\xbd name");
    const Json& resource = info.at("resources").at(0);
    EXPECT_EQ(resource.at("name"), "Picture");
    EXPECT_EQ(resource.at("id"), uniqueIdToString(picture.getId()));
    EXPECT_EQ(resource.at("files"), Json::array({"gone.png"}));
    const Json& composition = info.at("root").at("compositions").at(0);
    EXPECT_EQ(composition.at("links"),
              Json::array({{{"from", "Main/Layer/A/Position"}, {"to", "Main/B/Position"}}}));
    const Json& effect = composition.at("effects").at(0).at("effects").at(0);
    EXPECT_EQ(effect.at("class"), "TextureEffect");
    EXPECT_EQ(effect.at("enabled"), false);
    EXPECT_EQ(effect.at("depth"), 1);
    EXPECT_EQ(effect.at("end"), 2);
    const Json& color = effect.at("properties").at(0);
    EXPECT_EQ(color.at("name"), "Color");
    EXPECT_EQ(color.at("keys"), Json({{"count", 2}, {"first", 1.0}, {"last", 2.5}}));

    EXPECT_EQ(executeForErrors(HELVANTINE_COMMAND " info " + document, m_output), 0);
    EXPECT_EQ(m_output, "");
    ASSERT_EQ(run("info " + document), 0);
    EXPECT_NE(m_output.find("  2 keys, 1.0 s to 2.5 s\n"), std::string::npos) << m_output;
    EXPECT_NE(m_output.find("Attributes.Shader Code = // a text … (2 lines)  (string)\n"), std::string::npos);
    EXPECT_NE(m_output.find("link Main/Layer/A/Position  ->  Main/B/Position\n"), std::string::npos);
}

TEST_F(Inspection, OutputThatDoesNotArriveFails)
{
    const std::string path = save();
    for (const std::string& command : {"info " + path, "info --json " + path, "check " + path,
                                       "check --json " + path, std::string("--help")})
    {
        EXPECT_EQ(run(command + " 2>&1 > /dev/full"), 1) << command;
        EXPECT_EQ(m_output, "helvantine: standard output: can't be written: No space left on device\n")
            << command;
        EXPECT_EQ(run(command + " >&-"), 1) << command;
        EXPECT_EQ(m_output, "helvantine: standard output: can't be written: Bad file descriptor\n")
            << command;
    }
}

TEST_F(Inspection, InfoNamesWhatItCouldNotRead)
{
    add<StrangeEffect>("Strange");
    const std::string document = save();
    EXPECT_EQ(executeForErrors(HELVANTINE_COMMAND " info " + document, m_output), 0);
    EXPECT_EQ(m_output.find("helvantine: warning: " + document + ": Main: effect of unknown class "), 0u)
        << m_output;
}

} // namespace

} // namespace helvantine::test
