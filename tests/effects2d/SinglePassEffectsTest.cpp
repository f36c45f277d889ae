// SPDX-License-Identifier: MIT
#include "EffectFormulas.h"
#include "EffectTest.h"

#include <helvantine/core/Matrix.h>
#include <helvantine/core/Text.h>
#include <helvantine/effects2d/RayMarchingEffect.h>
#include <helvantine/effects2d/TextureBlendEffect.h>
#include <helvantine/effects2d/TextureColorCorrectionEffect.h>
#include <helvantine/effects2d/TextureDisplacementEffect.h>
#include <helvantine/effects2d/TextureDitherEffect.h>
#include <helvantine/effects2d/TextureLensflareEffect.h>
#include <helvantine/effects2d/TextureRgbDisplacementEffect.h>
#include <helvantine/resource/ResourceManager.h>

#include <algorithm>
#include <cmath>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

constexpr unsigned width = 37, height = 23;

/// A quad's coordinates come through its matrices and miss the middle of a texel by a hair, which filtering shows.
constexpr Tolerance quadTolerance{0.5f, 0.0f};

/// Noise without exact zeros and ones, at which some formulas jump.
Image makeSoftNoise(unsigned seed, float brightest = 0.95f)
{
    const Image noise = makeNoise(width, height, seed);
    const float range = brightest - 0.05f;
    return makeImage(width, height, [&](Vec2 uv) {
        return readNearest(noise, uv) * range + Vec4(0.05f, 0.05f, 0.05f, 0.05f);
    });
}

/// The picture three by three times: what a repeating sampler reads at uv is in it at (uv + 1) / 3.
Image repeat(const Image& image)
{
    Image tiles(3 * image.getWidth(), 3 * image.getHeight());
    for (unsigned y = 0; y < tiles.getHeight(); ++y)
        for (unsigned x = 0; x < tiles.getWidth(); ++x)
            tiles.at(x, y) = image.at(x % image.getWidth(), y % image.getHeight());
    return tiles;
}

/// Effects that draw one quad with one program, each drawn as a document would have it.
class SinglePassEffects : public EffectTest
{
protected:
    template <class T>
    static SmartRef<T> make(const Resource* source, const Vec4& color = Vec4(1, 1, 1, 1))
    {
        SmartRef<T> effect(new T());
        if (source)
            set(*effect, "Attributes", "Texture", *source);
        set(*effect, "Attributes", "Color",
            formatString("%f, %f, %f, %f", color.x, color.y, color.z, color.w));
        return effect;
    }

    static SmartRef<ShaderResource> addShader(const std::string& text)
    {
        SmartRef<ShaderResource> shader(new ShaderResource());
        EXPECT_EQ(shader->create(text.c_str(), "VS", "PS"), "");
        getResourceManager()->addTemporaryResource(shader->getId(), shader.get());
        return shader;
    }
};

/// "Blend Type" and the program that it stands for.
struct BlendCase
{
    int value;
    TextureEffectType program;
};
constexpr BlendCase blendCases[] = {
    {0, TextureEffectType::BlendLinear},    {1, TextureEffectType::BlendDarken},
    {2, TextureEffectType::BlendLighten},   {3, TextureEffectType::BlendAdd},
    {4, TextureEffectType::BlendSubtract},  {5, TextureEffectType::BlendScreen},
    {6, TextureEffectType::BlendOverlay},   {7, TextureEffectType::BlendColorDodge},
    {8, TextureEffectType::BlendColorBurn}, {9, TextureEffectType::BlendMultiply},
    {10, TextureEffectType::BlendLinear},   {-1, TextureEffectType::BlendLinear},
};

TEST_F(SinglePassEffects, BlendShowsTheSecondTextureThroughItsOwnRectangle)
{
    const Image base = makeSoftNoise(31), blend = makeSoftNoise(32);
    const SmartRef<RenderTargetResource> first = addTarget(base);
    const SmartRef<TextureResource> second = addTexture(blend);
    const Vec4 color(0.5f, 0.25f, 2, 0.75f);
    const SmartRef<TextureBlendEffect> effect = make<TextureBlendEffect>(first.get(), color);
    set(*effect, "Attributes", "Texture-2", *second);
    set(*effect, "UV", "UV-Rect-2", "1, 0, 0, 1");
    for (const BlendCase& c : blendCases) {
        SCOPED_TRACE(c.value);
        set(*effect, "Blend", "Blend Type", std::to_string(c.value));
        for (const float threshold : {0.0f, 0.3f, 1.0f}) {
            set(*effect, "Blend", "Threshold", std::to_string(threshold));
            const Image expected = makeImage(width, height, [&](Vec2 uv) {
                const Vec4 c1 = readNearest(blend, Vec2(1 - uv.x, uv.y));
                return blendColors(c.program, readNearest(base, uv), c1, threshold) * color;
            });
            EXPECT_TRUE(matches(drawOverScreen(*effect, width, height), expected, quadTolerance));
        }
    }
}

TEST_F(SinglePassEffects, BlendTakesZeroOneAndMoreInEitherTexture)
{
    // Each value takes three texels, so that the middle one is read as it is. One texture goes across, one down.
    const float values[] = {0, 0.5f, 1, 2.5f};
    const auto at = [&](float coordinate) {
        const float value = values[static_cast<int>(coordinate * 4)];
        return Vec4(value, value, value, value);
    };
    const SmartRef<RenderTargetResource> first =
        addTarget(makeImage(12, 1, [&](Vec2 uv) { return at(uv.x); }));
    const SmartRef<TextureResource> second = addTexture(makeImage(1, 12, [&](Vec2 uv) { return at(uv.y); }));
    const Vec4 color(1, 2, 0.5f, 0); // nothing divides by alpha
    const SmartRef<TextureBlendEffect> effect = make<TextureBlendEffect>(first.get(), color);
    set(*effect, "Attributes", "Texture-2", *second);
    for (const BlendCase& c : blendCases) {
        SCOPED_TRACE(c.value);
        set(*effect, "Blend", "Blend Type", std::to_string(c.value));
        const Image expected = makeImage(
            4, 4, [&](Vec2 uv) { return blendColors(c.program, at(uv.x), at(uv.y), 0.5f) * color; });
        EXPECT_TRUE(matches(drawOverScreen(*effect, 4, 4), expected, quadTolerance));
    }
}

TEST_F(SinglePassEffects, ASecondTextureOfAnotherKindLeavesTheSlotAsItWas)
{
    const Vec4 left(0.25f, 0.5f, 0.75f, 1);
    const SmartRef<RenderTargetResource> target = addTarget(Image(2, 2, Vec4(1, 1, 1, 1)));
    const SmartRef<TextureResource> texture = addTexture(Image(2, 2, left));
    const auto makeBlend = [&](const std::string& second) {
        const SmartRef<TextureBlendEffect> effect = make<TextureBlendEffect>(target.get());
        set(*effect, "Transformation", "Size", "960, 540");
        set(*effect, "Attributes", "Texture-2", second);
        set(*effect, "Blend", "Threshold", "0"); // shows the second one alone
        update(*effect);
        return effect;
    };
    const std::string targetId = uniqueIdToString(target->getId());
    const SmartRef<TextureBlendEffect> before = makeBlend(uniqueIdToString(texture->getId()));
    const SmartRef<RenderTarget> screen = makeTarget(5, 3);
    for (const std::string& second : {targetId, std::string(), std::string("no id at all")}) {
        SCOPED_TRACE(second);
        const SmartRef<TextureBlendEffect> effect = makeBlend(second);
        drawFrame(screen.get(), Vec4(), [&] {
            render(*before);
            g_renderer->clear(Renderer::ClearColor, Vec4(), 1, 0);
            render(*effect);
        });
        EXPECT_TRUE(matches(read(screen.get()), Image(5, 3, left), quadTolerance));
    }

    // A texture that is named and then another kind: the texture is given up.
    set(*before, "Attributes", "Texture-2", targetId);
    const long references = texture->getRefCount();
    set(*before, "Attributes", "Texture-2", *texture);
    EXPECT_EQ(texture->getRefCount(), references + 1);
}

TEST_F(SinglePassEffects, ColorCorrectionAppliesItsFourSteps)
{
    const Image source = makeSoftNoise(33, 3.0f);
    const SmartRef<RenderTargetResource> target = addTarget(source);
    const Vec4 color(1, 0.5f, 0.25f, 0.5f);
    const SmartRef<TextureColorCorrectionEffect> effect =
        make<TextureColorCorrectionEffect>(target.get(), color);
    const ColorCorrection cases[] = {{},           {.brightness = 0}, {.contrast = -1},     {.saturation = 0},
                                     {.hue = 120}, {.hue = 360},      {1.5f, 0.75f, 2, -75}};
    for (const ColorCorrection& c : cases) {
        SCOPED_TRACE(testing::Message()
                     << c.brightness << " " << c.contrast << " " << c.saturation << " " << c.hue);
        set(*effect, "Color Correction", "Brightness", std::to_string(c.brightness));
        set(*effect, "Color Correction", "Contrast", std::to_string(c.contrast));
        set(*effect, "Color Correction", "Saturation", std::to_string(c.saturation));
        set(*effect, "Color Correction", "Hue", std::to_string(c.hue));
        const Image expected = makeImage(
            width, height, [&](Vec2 uv) { return correctColor(readNearest(source, uv), c) * color; });
        EXPECT_TRUE(matches(drawOverScreen(*effect, width, height), expected, quadTolerance));
    }
}

TEST_F(SinglePassEffects, DitherFollowsTheTextureAndNotThePixels)
{
    const Image source = makeSoftNoise(34, 1.5f);
    const SmartRef<RenderTargetResource> target = addTarget(source);
    const Vec4 color(1, 0.5f, 0.25f, 0.5f);
    const SmartRef<TextureDitherEffect> effect = make<TextureDitherEffect>(target.get(), color);
    // Two cells a texel across, one for three texels down; what is read are the cells' and the texels' middles.
    const Vec2 scale(2 * width, height / 3.0f);
    set(*effect, "Dither", "Dither Scale", formatString("%.9f, %.9f", scale.x, scale.y));
    for (const bool grayscale : {false, true, false}) {
        SCOPED_TRACE(grayscale);
        set(*effect, "Dither", "Grayscale", grayscale ? "1" : "0");
        set(*effect, "UV", "UV-Rect", formatString("%.9f, 0, %.9f, 1", 0.25f / width, 1 + 0.25f / width));
        const Image expected = makeImage(width, height, [&](Vec2 uv) {
            const Vec2 at(uv.x + 0.25f / width, uv.y);
            return ditherColor(readLinear(source, at), at * scale, grayscale) * color;
        });
        EXPECT_TRUE(matches(drawOverScreen(*effect, width, height), expected, quadTolerance));
    }

    set(*effect, "UV", "UV-Rect", "0, 0, 1, 1");
    set(*effect, "Dither", "Dither Scale", "37, 23");
    for (const float level : {0.0f, 1.0f}) { // black and white have no pattern
        const SmartRef<RenderTargetResource> flat = addTarget(Image(2, 2, Vec4(level, level, level, 1)));
        set(*effect, "Attributes", "Texture", *flat);
        const Vec4 expected = Vec4(level, level, level, 1) * color;
        EXPECT_TRUE(
            matches(drawOverScreen(*effect, width, height), Image(width, height, expected), quadTolerance));
    }
}

TEST_F(SinglePassEffects, DisplacementReadsBothTexturesAsWrapSays)
{
    const Image source = makeSoftNoise(35), map = makeSoftNoise(36);
    const SmartRef<RenderTargetResource> first = addTarget(source);
    const SmartRef<TextureResource> second = addTexture(map);
    const SmartRef<TextureDisplacementEffect> effect = make<TextureDisplacementEffect>(first.get());
    set(*effect, "Attributes", "Displacement Texture", *second);
    set(*effect, "UV", "Displacement UV-Rect", "-1, -1, 2, 2");
    set(*effect, "UV", "U Power", "0.2");
    set(*effect, "UV", "V Power", "-0.3");
    const auto expect = [&](auto wrap, const char* value) {
        set(*effect, "UV", "Wrap", value);
        const Image wrappedSource = wrap(source), wrappedMap = wrap(map);
        const Image expected = makeImage(width, height, [&](Vec2 uv) {
            const Vec2 at((uv.x + 1) / 3, (uv.y + 1) / 3);
            return readDisplaced(wrappedSource, at, readNearest(wrappedMap, uv), Vec2(0.2f / 3, -0.3f / 3));
        });
        // A hair of the map's coordinate moves what the source shows.
        EXPECT_TRUE(matches(drawOverScreen(*effect, width, height), expected, Tolerance{1.0f}));
    };
    expect(repeat, "1");
    expect(
        [](const Image& image) {
            return makeImage(3 * width, 3 * height,
                             [&](Vec2 uv) { return readNearest(image, Vec2(uv.x * 3 - 1, uv.y * 3 - 1)); });
        },
        "0");
}

TEST_F(SinglePassEffects, RgbDisplacementMovesEachChannelByItsOwnPowers)
{
    const Image source = makeSoftNoise(37, 2.0f), map = makeSoftNoise(38);
    const SmartRef<RenderTargetResource> first = addTarget(source);
    const SmartRef<TextureResource> second = addTexture(map);
    const Vec4 color(1, 0.5f, 0.25f, 0.5f);
    const SmartRef<TextureRgbDisplacementEffect> effect =
        make<TextureRgbDisplacementEffect>(first.get(), color);
    set(*effect, "Attributes", "RgbDisplacement Texture", *second);
    set(*effect, "UV", "RgbDisplacement UV-Rect", "0, 1, 1, 0");
    const Vec2 powers[] = {{0.1f, 0.2f}, {-0.3f, 0.4f}, {0.5f, -0.6f}};
    for (int i = 0; i < 3; ++i) {
        set(*effect, "UV", formatString("U Power %c", "RGB"[i]).c_str(), std::to_string(powers[i].x));
        set(*effect, "UV", formatString("V Power %c", "RGB"[i]).c_str(), std::to_string(powers[i].y));
    }
    const Image expected = makeImage(width, height, [&](Vec2 uv) {
        return readRgbDisplaced(source, uv, readNearest(map, Vec2(uv.x, 1 - uv.y)), powers) * color;
    });
    EXPECT_TRUE(matches(drawOverScreen(*effect, width, height), expected, quadTolerance));
}

TEST_F(SinglePassEffects, LensflareNeedsASourceAndIgnoresColorAndWrap)
{
    const SmartRef<TextureLensflareEffect> effect =
        make<TextureLensflareEffect>(nullptr, Vec4(0.5f, 0.25f, 1, 0));
    set(*effect, "UV", "Wrap", "1");
    const SmartRef<RenderTarget> screen = makeTarget(38, 22); // even: the centre has no direction
    const Vec4 background(0.1f, 0.2f, 0.3f, 0.4f);
    EXPECT_TRUE(
        matches(drawOverScreen(*effect, screen.get(), background), Image(38, 22, background), quadTolerance));

    const Image source = makeSoftNoise(39, 2.0f);
    const SmartRef<TextureResource> texture = addTexture(source);
    const SmartRef<RenderTargetResource> target = addTarget(source);
    const Image expected = makeImage(38, 22, [&](Vec2 uv) { return readGhost(source, uv); });
    for (const Resource* resource :
         {static_cast<Resource*>(texture.get()), static_cast<Resource*>(target.get())}) {
        set(*effect, "Attributes", "Texture", *resource);
        EXPECT_TRUE(matches(drawOverScreen(*effect, screen.get(), background), expected, quadTolerance));
    }
}

TEST_F(SinglePassEffects, RayMarchingDrawsWithTheProjectsShader)
{
    const SmartRef<ShaderResource> shader = addShader(R"(
        cbuffer Common : register(b0) { float4x4 worldViewProjection; float2 invScreenSize; float time; };
        Texture2D map : register(t0);
        SamplerState mapSampler : register(s0);
        struct Output { float4 position : SV_Position; float4 color : COLOR0; float2 uv : TEXCOORD0; float t : TEXCOORD1; };
        Output VS(float4 position : POSITION, float4 color : COLOR0, float2 uv : TEXCOORD0)
        {
            Output output;
            output.position = mul(float4(position.xyz, 1), worldViewProjection);
            output.color = color;
            output.uv = uv;
            output.t = time;
            return output;
        }
        float4 PS(Output input) : SV_Target
        {
            return float4(map.Sample(mapSampler, input.uv).rgb * input.color.rgb, 0) + float4(0, 0, input.t, time);
        })");
    const Image source = makeSoftNoise(40, 2.0f);
    const SmartRef<RenderTargetResource> target = addTarget(source);
    const Vec4 color(0.5f, 0.25f, 1, 0.75f), background(0.1f, 0.2f, 0.3f, 0.4f);
    const SmartRef<RayMarchingEffect> effect = make<RayMarchingEffect>(target.get(), color);
    const SmartRef<RenderTarget> screen = makeTarget(width, height);
    const Image untouched(width, height, background);
    FxContext context;
    context.relativeTime = 1.5f;
    EXPECT_TRUE(
        matches(drawOverScreen(*effect, screen.get(), background, context), untouched, quadTolerance));

    set(*effect, "Raymarching", "Shader", *shader);
    const Image expected = makeImage(width, height, [&](Vec2 uv) {
        const Vec4 c = readNearest(source, uv) * color;
        return Vec4(c.x, c.y, c.z + 1.5f, 1.5f);
    });
    EXPECT_TRUE(matches(drawOverScreen(*effect, screen.get(), background, context), expected, quadTolerance));

    EXPECT_NE(shader->create("no shader", "VS", "PS"), "");
    EXPECT_TRUE(
        matches(drawOverScreen(*effect, screen.get(), background, context), untouched, quadTolerance));
}

/// One pixel for each register and input; what holds nothing is black.
TEST_F(SinglePassEffects, RayMarchingBindsWhatItSaysAndNothingElse)
{
    struct Place
    {
        std::string name; ///< as in "b3 of the pixel stage"
        std::string declaration;
        std::string value; ///< expression of the stage
        bool inVertices;
        bool isBound;
    };
    const ProgramBindings& said = RayMarchingEffect::s_programBindings;
    const auto isSaid = [&](char letter, int number, int stage) {
        return std::ranges::any_of(said.registers, [&](const ProgramBindings::Register& bound) {
            return bound.letter == letter && bound.number == number && (bound.stages & stage) == stage;
        });
    };
    std::vector<Place> constants, others;
    for (int i = 0; i < 14; ++i) {
        const std::string n = std::to_string(i);
        const std::string sum = "dot(abs(v" + n + "[0]) + abs(v" + n + "[4]), 1)";
        const std::string buffer = "cbuffer B" + n + " : register(b" + n + ") { float4 v" + n + "[5]; };\n";
        constants.push_back(
            {"b" + n + " of the vertex stage", buffer, sum, true, isSaid('b', i, ProgramBindings::Vertex)});
        constants.push_back(
            {"b" + n + " of the pixel stage", "", sum, false, isSaid('b', i, ProgramBindings::Pixel)});
    }
    for (int i = 0; i < 16; ++i) {
        const std::string n = std::to_string(i);
        others.push_back({"t" + n, "Texture2D t" + n + " : register(t" + n + ");\n",
                          "t" + n + ".Load(int3(0, 0, 0)).r", false, isSaid('t', i, ProgramBindings::Both)});
    }
    for (const auto& [semantic, index] : std::initializer_list<std::pair<std::string, unsigned>>{
             {"POSITION", 0}, {"COLOR", 0}, {"TEXCOORD", 0}, {"TEXCOORD", 1}, {"NORMAL", 0}})
    {
        const std::string name = semantic + std::to_string(index);
        const bool isListed = std::ranges::any_of(said.inputs, [&](const ProgramBindings::Input& input) {
            return input.semantic == semantic && input.index == index;
        });
        others.push_back({name, "", "dot(abs(" + name + "), 1)", true, isListed});
    }

    const SmartRef<RenderTargetResource> white = addTarget(Image(1, 1, Vec4(1, 1, 1, 1)));
    const SmartRef<RayMarchingEffect> effect = make<RayMarchingEffect>(white.get());
    for (const std::vector<Place>& places : {constants, others}) {
        std::string declarations, fill, read;
        for (std::size_t i = 0; i < places.size(); ++i) {
            const std::string n = std::to_string(i);
            declarations += places[i].declaration;
            if (places[i].inVertices)
                fill += "output.held[" + n + "] = " + places[i].value + ";\n";
            read += "if (x == " + n +
                    ") sum = " + (places[i].inVertices ? "input.held[" + n + "]" : places[i].value) + ";\n";
        }
        const SmartRef<ShaderResource> shader = addShader(
            declarations +
            "struct Output { float4 position : SV_Position; nointerpolation float held[28] : HELD; };\n"
            "Output VS(uint id : SV_VertexID, float4 POSITION0 : POSITION, float4 COLOR0 : COLOR, "
            "float2 TEXCOORD0 : TEXCOORD0, float2 TEXCOORD1 : TEXCOORD1, float3 NORMAL0 : NORMAL) {\n"
            "Output output; output.position = float4(id % 2 * 2.0 - 1, 1 - id / 2 * 2.0, 0, 1);\n"
            "for (int i = 0; i < 28; ++i) output.held[i] = 0;\n" +
            fill +
            "return output; }\n"
            "float4 PS(Output input) : SV_Target { int x = input.position.x; float sum = 0;\n" +
            read + "return float4(sum, 0, 0, 1); }\n");
        set(*effect, "Raymarching", "Shader", *shader);
        const SmartRef<RenderTarget> screen = makeTarget(static_cast<unsigned>(places.size()), 1);
        const Image image = drawOverScreen(*effect, screen.get());
        for (unsigned i = 0; i < places.size(); ++i)
            EXPECT_EQ(image.at(i, 0).x != 0, places[i].isBound) << places[i].name;
    }
}

TEST_F(SinglePassEffects, TestDepthInTheWorldUnlessTheyAreFlares)
{
    const SmartRef<RenderTargetResource> white = addTarget(Image(2, 2, Vec4(1, 1, 1, 1)));
    const SmartRef<ShaderResource> shader =
        addShader("cbuffer Common : register(b0) { float4x4 m; };"
                  "float4 VS(float4 p : POSITION) : SV_Position { return mul(float4(p.xyz, 1), m); }"
                  "float4 PS() : SV_Target { return 1; }");
    FxContext camera;
    camera.projection = MatrixOrthographic(-4, 4, -3, 3, 0, 10);
    const SmartRef<RenderTarget> screen = makeTarget(8, 6, DXGI_FORMAT_R32G32B32A32_FLOAT, true);
    const auto place = [&](Effect2D& effect, const char* position) {
        set(effect, "Transformation", "3D", "1");
        set(effect, "Transformation", "Position", position);
        set(effect, "Transformation", "Size", "8, 6");
        update(effect, camera);
    };
    const Vec4 green(0, 1, 0, 1);
    const SmartRef<ProbeEffect> near = make<ProbeEffect>(white.get(), green);
    place(*near, "0, 0, 2");

    const SmartRef<RayMarchingEffect> marching = make<RayMarchingEffect>(white.get());
    set(*marching, "Raymarching", "Shader", *shader);
    const struct
    {
        SmartRef<TextureEffect> effect;
        bool testsDepth;
    } cases[] = {{make<TextureBlendEffect>(white.get()).get(), true},
                 {make<TextureColorCorrectionEffect>(white.get()).get(), true},
                 {make<TextureDitherEffect>(white.get()).get(), true},
                 {make<TextureDisplacementEffect>(white.get()).get(), true},
                 {make<TextureRgbDisplacementEffect>(white.get()).get(), true},
                 {marching.get(), true},
                 {make<TextureLensflareEffect>(white.get()).get(), false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.effect->getPluginInfo()->name);
        const auto hides = [&](const char* position) {
            place(*c.effect, position);
            drawFrame(screen.get(), Vec4(), [&] {
                render(*near);
                render(*c.effect);
            });
            return !(read(screen.get()).at(5, 4) == green);
        };
        EXPECT_EQ(hides("0, 0, 5"), !c.testsDepth);
        EXPECT_TRUE(hides("0, 0, 1"));
    }
}

} // namespace
