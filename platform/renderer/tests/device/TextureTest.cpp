// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

#include <helvantine/core/Report.h>

#include <cmath>

namespace helvantine::test
{

namespace
{

constexpr uint32_t red = 0xFF0000FF; // bytes R, G, B, A
constexpr uint32_t green = 0xFF00FF00;
constexpr uint32_t blue = 0xFFFF0000;
constexpr uint32_t white = 0xFFFFFFFF;

const Vec4 redColor(1, 0, 0, 1);
const Vec4 greenColor(0, 1, 0, 1);
const Vec4 blueColor(0, 0, 1, 1);
const Vec4 whiteColor(1, 1, 1, 1);
const Vec4 nothing(0, 0, 0, 0);

constexpr auto point = D3D11_FILTER_MIN_MAG_MIP_POINT;

class TextureTest : public DeviceTest
{
protected:
    static SmartRef<TextureSampler> makeSampler(D3D11_FILTER filter, D3D11_TEXTURE_ADDRESS_MODE mode)
    {
        return createTextureSampler(filter, mode, mode, mode, D3D11_COMPARISON_NEVER);
    }

    /// A quad whose texture coordinates run from first to last in both directions.
    static std::array<Vertex, 4> makeTexturedQuad(float first, float last)
    {
        auto quad = makeQuad(whiteColor);
        for (Vertex& vertex : quad) {
            vertex.u = first + vertex.u * (last - first);
            vertex.v = first + vertex.v * (last - first);
        }
        return quad;
    }

    /// What the texture shows on a 4 by 4 target.
    Image sample(Texture* texture, TextureSampler* sampler, float first = 0.0f, float last = 1.0f,
                 Shader* shader = nullptr)
    {
        const SmartRef<RenderTarget> target = makeTarget(4, 4);
        renderer().beginFrame(target.get());
        bindDefaults();
        if (texture)
            texture->bind(0);
        if (sampler)
            sampler->bind(0);
        drawQuad(shader ? *shader : *m_textureShader, makeTexturedQuad(first, last));
        if (texture)
            texture->unbind(0);
        if (sampler)
            sampler->unbind(0);
        renderer().endFrame();
        return readImage(renderer(), target.get());
    }

    ID3D11Texture2D* create(const D3D11_TEXTURE2D_DESC& desc, const D3D11_SUBRESOURCE_DATA* data)
    {
        ID3D11Texture2D* texture = nullptr;
        const int32_t result = renderer().getDevice()->CreateTexture2D(&desc, data, &texture);
        EXPECT_EQ(result < 0, texture == nullptr);
        return texture;
    }

    static D3D11_TEXTURE2D_DESC describe(unsigned width, unsigned height, DXGI_FORMAT format)
    {
        D3D11_TEXTURE2D_DESC desc;
        desc.Width = width;
        desc.Height = height;
        desc.Format = format;
        desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
        return desc;
    }
};

TEST_F(TextureTest, TexelsArriveByteForByteFromTheTopLeft)
{
    const SmartRef<Texture> texture = makeTexture(2, 2, {red, green, blue, white});
    const Image image = sample(texture.get(), makeSampler(point, D3D11_TEXTURE_ADDRESS_CLAMP).get());
    EXPECT_EQ(image.at(0, 0), redColor);
    EXPECT_EQ(image.at(3, 0), greenColor);
    EXPECT_EQ(image.at(0, 3), blueColor);
    EXPECT_EQ(image.at(3, 3), whiteColor);
    EXPECT_EQ(texture->getWidth(), 2u);
}

TEST_F(TextureTest, EmptySlotsReadZeroAndMissingSamplersAreLinearAndClamped)
{
    EXPECT_EQ(sample(nullptr, nullptr).at(1, 1), nothing);
    const SmartRef<Texture> texture = makeTexture(2, 1, {0xFF000000, white});
    const Image image = sample(texture.get(), nullptr);
    const int expected[] = {0, 64, 191, 255};
    for (unsigned x = 0; x < 4; ++x)
        EXPECT_NEAR(image.at8(x, 2)[0], expected[x], 2);
}

TEST_F(TextureTest, AddressModesDecideWhatLiesBeyondTheEdges)
{
    const SmartRef<Texture> texture = makeTexture(2, 2, {red, green, red, green});
    const struct
    {
        D3D11_TEXTURE_ADDRESS_MODE mode;
        Vec4 before, after; // at u = -0.25 and u = 1.25
    } cases[] = {
        {D3D11_TEXTURE_ADDRESS_WRAP, greenColor, redColor},
        {D3D11_TEXTURE_ADDRESS_MIRROR, redColor, greenColor},
        {D3D11_TEXTURE_ADDRESS_CLAMP, redColor, greenColor},
        {D3D11_TEXTURE_ADDRESS_BORDER, nothing, nothing},
        {D3D11_TEXTURE_ADDRESS_MIRROR_ONCE, redColor, greenColor},
    };
    for (const auto& entry : cases) {
        const Image image = sample(texture.get(), makeSampler(point, entry.mode).get(), -0.5f, 1.5f);
        EXPECT_EQ(image.at(0, 1), entry.before) << entry.mode;
        EXPECT_EQ(image.at(3, 1), entry.after) << entry.mode;
        EXPECT_EQ(image.at(1, 1), redColor) << entry.mode;
    }
    // Two widths away, wrapping, mirroring and mirroring once part.
    EXPECT_EQ(
        sample(texture.get(), makeSampler(point, D3D11_TEXTURE_ADDRESS_MIRROR).get(), 1.5f, 2.5f).at(0, 0),
        redColor);
    EXPECT_EQ(sample(texture.get(), makeSampler(point, D3D11_TEXTURE_ADDRESS_MIRROR_ONCE).get(), 1.5f, 2.5f)
                  .at(0, 0),
              greenColor);
}

TEST_F(TextureTest, UnknownSamplerNumbersGiveNull)
{
    constexpr auto clamp = D3D11_TEXTURE_ADDRESS_CLAMP;
    takeProblems();
    EXPECT_EQ(createTextureSampler(static_cast<D3D11_FILTER>(7), clamp, clamp, clamp, D3D11_COMPARISON_NEVER),
              nullptr);
    EXPECT_EQ(createTextureSampler(point, static_cast<D3D11_TEXTURE_ADDRESS_MODE>(0), clamp, clamp,
                                   D3D11_COMPARISON_NEVER),
              nullptr);
    EXPECT_EQ(createTextureSampler(point, clamp, clamp, clamp, static_cast<D3D11_COMPARISON_FUNC>(9)),
              nullptr);
    const std::vector<Problem> problems = takeProblems();
    ASSERT_EQ(problems.size(), 3u);
    EXPECT_EQ(problems[0].text, "no sampler of filter 7, address modes 3, 3 and 3, comparison 1");
    const SmartRef<TextureSampler> anisotropic = makeSampler(D3D11_FILTER_ANISOTROPIC, clamp);
    EXPECT_TRUE(anisotropic);
}

TEST_F(TextureTest, WhetherTexelsAreComparedIsUpToTheProgram)
{
    constexpr auto clamp = D3D11_TEXTURE_ADDRESS_CLAMP;
    const SmartRef<Shader> compare =
        makeShader("return image.SampleCmpLevelZero(filter, p.uv, 0.5);",
                   "Texture2D<float> image : register(t0); SamplerComparisonState filter : register(s0);");
    const SmartRef<RenderTarget> map = makeTarget(4, 4, 0, DXGI_FORMAT_R32_TYPELESS); // 1 everywhere
    const SmartRef<Texture> color = makeTexture(1, 1, {green});
    for (const auto filter : {point, D3D11_FILTER_COMPARISON_MIN_MAG_LINEAR_MIP_POINT}) {
        const SmartRef<TextureSampler> sampler =
            createTextureSampler(filter, clamp, clamp, clamp, D3D11_COMPARISON_LESS);
        EXPECT_EQ(sample(color.get(), sampler.get()).at(1, 1), greenColor) << filter;
        EXPECT_EQ(sample(map->getDepthTexture(), sampler.get()).at(1, 1), redColor) << filter;
        EXPECT_EQ(sample(map->getDepthTexture(), sampler.get(), 0, 1, compare.get()).at(1, 1), whiteColor)
            << filter;
        EXPECT_EQ(sample(color.get(), sampler.get(), 0, 1, compare.get()).at(1, 1), nothing)
            << "its red is 0";
    }
    EXPECT_EQ(sample(map->getDepthTexture(), nullptr, 0, 1, compare.get()).at(1, 1), nothing);
}

/// The red of a colour target, below and above and at what it is compared with.
TEST_F(TextureTest, AColorTargetsRedIsComparedByEveryFunction)
{
    constexpr auto clamp = D3D11_TEXTURE_ADDRESS_CLAMP;
    const SmartRef<RenderTarget> target = makeTarget(4, 4, DXGI_FORMAT_R32G32B32A32_FLOAT);
    renderer().beginFrame(target.get());
    renderer().clear(1, Vec4(0.5f, 0.75f, 0, 0), 1, 0);
    renderer().endFrame();
    const std::string globals = "Texture2D image : register(t0); SamplerComparisonState filter : "
                                "register(s0); Texture2D other : register(t1);";
    const SmartRef<Shader> single =
        makeShader("return float4(image.SampleCmp(filter, p.uv, 0.25), image.SampleCmp(filter, p.uv, 0.5),"
                   "image.SampleCmpLevelZero(filter, p.uv, 0.75), other.SampleCmp(filter, p.uv, 0.5));",
                   globals);
    const SmartRef<Shader> four = makeShader(
        "return float4(image.GatherCmp(filter, p.uv, 0.25).x, image.GatherCmp(filter, p.uv, 0.5).w,"
        "image.GatherCmpRed(filter, p.uv, 0.75, int2(1, 0)).y, 0);",
        globals);
    const struct
    {
        D3D11_COMPARISON_FUNC function;
        Vec4 expected;
    } cases[] = {
        {D3D11_COMPARISON_NEVER, {0, 0, 0, 0}},         {D3D11_COMPARISON_LESS, {1, 0, 0, 0}},
        {D3D11_COMPARISON_EQUAL, {0, 1, 0, 0}},         {D3D11_COMPARISON_LESS_EQUAL, {1, 1, 0, 0}},
        {D3D11_COMPARISON_GREATER, {0, 0, 1, 0}},       {D3D11_COMPARISON_NOT_EQUAL, {1, 0, 1, 0}},
        {D3D11_COMPARISON_GREATER_EQUAL, {0, 1, 1, 0}}, {D3D11_COMPARISON_ALWAYS, {1, 1, 1, 0}},
    };
    const SmartRef<RenderTarget> map = makeTarget(4, 4, 0, DXGI_FORMAT_R32_TYPELESS); // 1 everywhere
    map->getDepthTexture()->bind(1);
    for (const auto& one : cases) {
        const SmartRef<TextureSampler> sampler =
            createTextureSampler(point, clamp, clamp, clamp, one.function);
        Vec4 expected = one.expected;
        expected.w = one.function == D3D11_COMPARISON_LESS || one.function == D3D11_COMPARISON_LESS_EQUAL ||
                     one.function == D3D11_COMPARISON_NOT_EQUAL || one.function == D3D11_COMPARISON_ALWAYS;
        EXPECT_EQ(sample(target->getTexture(), sampler.get(), 0, 1, single.get()).at(1, 1), expected)
            << one.function;
        expected.w = 0;
        EXPECT_EQ(sample(target->getTexture(), sampler.get(), 0, 1, four.get()).at(1, 1), expected)
            << one.function;
    }
    map->getDepthTexture()->unbind(1);
}

/// Each of the four texels is compared by itself, in the order of a gather.
TEST_F(TextureTest, AGatherOfComparisonsTellsFourTexelsOfADepthMap)
{
    constexpr auto clamp = D3D11_TEXTURE_ADDRESS_CLAMP;
    const SmartRef<RenderTarget> map = makeTarget(2, 2, 0, DXGI_FORMAT_R32_TYPELESS);
    renderer().beginFrame(map.get());
    renderer().clear(2, {}, 1, 0);
    bindDefaults();
    setDepth({});
    drawQuad(*m_colorShader, makeQuad({}, 0.25f, -1, 1, 0, 0));
    renderer().endFrame();
    const SmartRef<Shader> shader =
        makeShader("return map.GatherCmp(filter, p.uv, p.color.r);",
                   "Texture2D<float> map : register(t0); SamplerComparisonState filter : register(s0);");
    const SmartRef<TextureSampler> sampler = createTextureSampler(
        D3D11_FILTER_COMPARISON_MIN_MAG_LINEAR_MIP_POINT, clamp, clamp, clamp, D3D11_COMPARISON_LESS);
    const Image image = draw([&] {
        bindDefaults();
        map->getDepthTexture()->bind(0);
        sampler->bind(0);
        auto quad = makeQuad({0.5f, 0, 0, 0});
        for (Vertex& vertex : quad)
            vertex.u = vertex.v = 0.5f;
        drawQuad(*shader, quad);
        map->getDepthTexture()->unbind(0);
        sampler->unbind(0);
    });
    EXPECT_EQ(image.at(5, 5), Vec4(1, 1, 1, 0)) << "bottom left, bottom right, top right, top left";
}

TEST_F(TextureTest, OneSamplerFiltersAPictureBesideADepthMap)
{
    const SmartRef<Shader> both =
        makeShader("return float4(image.Sample(filter, p.uv).rg, map.Sample(filter, p.uv), 1);",
                   "Texture2D image : register(t0); Texture2D<float> map : register(t1); SamplerState filter "
                   ": register(s0);");
    const SmartRef<RenderTarget> map = makeTarget(4, 4, 0, DXGI_FORMAT_R32_TYPELESS); // 1 everywhere
    const SmartRef<Texture> picture = makeTexture(2, 1, {red, green});
    map->getDepthTexture()->bind(1);
    const Image image = sample(picture.get(), nullptr, 0.5f, 0.5f, both.get());
    map->getDepthTexture()->unbind(1);
    EXPECT_NEAR(image.at8(1, 1)[0], 128, 1);
    EXPECT_NEAR(image.at8(1, 1)[1], 128, 1);
    EXPECT_EQ(image.at8(1, 1)[2], 255);
}

TEST_F(TextureTest, MipsAreChosenByLevelAndBySize)
{
    std::vector<uint32_t> large(16, red);
    std::vector<uint32_t> middle(4, green);
    const D3D11_SUBRESOURCE_DATA data[] = {{large.data(), 16, 0}, {middle.data(), 8, 0}, {&blue, 4, 0}};
    D3D11_TEXTURE2D_DESC desc = describe(4, 4, DXGI_FORMAT_R8G8B8A8_UNORM);
    desc.MipLevels = 0; // the full chain
    ID3D11Texture2D* made = create(desc, data);
    ASSERT_NE(made, nullptr);
    made->GetDesc(&desc);
    EXPECT_EQ(desc.MipLevels, 3u);
    const SmartRef<Texture> texture = createTexture(made);
    EXPECT_EQ(made->Release(), 1u) << "the wrapper has a reference of its own";

    const SmartRef<Shader> byLevel =
        makeShader("return image.SampleLevel(filter, p.uv, p.uv.y * 4 - 0.5);",
                   "Texture2D image : register(t0); SamplerState filter : register(s0);");
    const SmartRef<TextureSampler> sampler = makeSampler(point, D3D11_TEXTURE_ADDRESS_WRAP);
    const Image levels = sample(texture.get(), sampler.get(), 0, 1, byLevel.get());
    EXPECT_EQ(levels.at(1, 0), redColor);
    EXPECT_EQ(levels.at(1, 1), greenColor);
    EXPECT_EQ(levels.at(1, 2), blueColor);
    EXPECT_EQ(sample(texture.get(), sampler.get(), 0, 2).at(1, 1), greenColor) << "two texels a pixel";
}

TEST_F(TextureTest, DynamicTexturesShowWhatWasWrittenLast)
{
    D3D11_TEXTURE2D_DESC desc = describe(3, 2, DXGI_FORMAT_R8G8B8A8_UNORM);
    desc.Usage = D3D11_USAGE_DYNAMIC;
    desc.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;
    ID3D11Texture2D* made = create(desc, nullptr);
    ASSERT_NE(made, nullptr);
    const SmartRef<Texture> texture = createTexture(made);
    const SmartRef<TextureSampler> sampler = makeSampler(point, D3D11_TEXTURE_ADDRESS_CLAMP);
    EXPECT_EQ(sample(texture.get(), sampler.get()).at(0, 0), nothing) << "starts zero";

    ID3D11DeviceContext& context = *renderer().getContext();
    const auto write = [&](uint32_t value) {
        D3D11_MAPPED_SUBRESOURCE mapped;
        ASSERT_EQ(context.Map(made, 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped), 0);
        for (unsigned y = 0; y < 2; ++y)
            reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(mapped.pData) + y * mapped.RowPitch)[0] = value;
        context.Unmap(made, 0);
    };
    write(green);
    const Image image = sample(texture.get(), sampler.get());
    EXPECT_EQ(image.at(0, 3), greenColor);
    EXPECT_EQ(image.at(3, 3), nothing) << "what wasn't written stays";

    // Between two draws of a frame: each sees the texels of its time.
    const SmartRef<RenderTarget> target = makeTarget(4, 4);
    renderer().beginFrame(target.get());
    bindDefaults();
    texture->bind(0);
    sampler->bind(0);
    drawQuad(*m_textureShader, makeQuad(whiteColor, 0.5f, -1, 1, 1, 0));
    write(red);
    drawQuad(*m_textureShader, makeQuad(whiteColor, 0.5f, -1, 0, 1, -1));
    renderer().endFrame();
    EXPECT_EQ(readImage(renderer(), target.get()).at(0, 0), greenColor);
    EXPECT_EQ(readImage(renderer(), target.get()).at(0, 3), redColor);

    D3D11_MAPPED_SUBRESOURCE mapped;
    EXPECT_LT(context.Map(made, 1, D3D11_MAP_WRITE_DISCARD, 0, &mapped), 0) << "no such mip";
    EXPECT_LT(context.Map(made, 0, D3D11_MAP_READ, 0, &mapped), 0);
    EXPECT_LT(context.Map(nullptr, 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped), 0);
    made->Release();
}

TEST_F(TextureTest, BlockFormatsAreReadAsTheyAre)
{
    // Blocks of a single colour: 565 red; green with alpha 0x33; BC4 0x80; BC7 mode 5 is left to the
    // decoder's tests.
    const uint8_t bc1[8] = {0x00, 0xF8, 0x00, 0xF8, 0, 0, 0, 0};
    const uint8_t bc2[16] = {0x33, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33,
                             0xE0, 0x07, 0xE0, 0x07, 0,    0,    0,    0};
    const uint8_t bc3[16] = {0x33, 0x33, 0, 0, 0, 0, 0, 0, 0xE0, 0x07, 0xE0, 0x07, 0, 0, 0, 0};
    const uint8_t bc4[8] = {0x80, 0x80, 0, 0, 0, 0, 0, 0};
    const uint8_t bc5[16] = {0x80, 0x80, 0, 0, 0, 0, 0, 0, 0x40, 0x40, 0, 0, 0, 0, 0, 0};
    const struct
    {
        DXGI_FORMAT format;
        const uint8_t* block;
        std::array<int, 4> expected;
    } cases[] = {
        {DXGI_FORMAT_BC1_UNORM, bc1, {255, 0, 0, 255}},     {DXGI_FORMAT_BC2_UNORM, bc2, {0, 255, 0, 0x33}},
        {DXGI_FORMAT_BC3_UNORM, bc3, {0, 255, 0, 0x33}},    {DXGI_FORMAT_BC4_UNORM, bc4, {0x80, 0, 0, 255}},
        {DXGI_FORMAT_BC5_UNORM, bc5, {0x80, 0x40, 0, 255}},
    };
    for (const auto& entry : cases) {
        const D3D11_SUBRESOURCE_DATA data{entry.block, 16, 0};
        ID3D11Texture2D* made = create(describe(4, 4, entry.format), &data);
        ASSERT_NE(made, nullptr);
        const SmartRef<Texture> texture = createTexture(made);
        made->Release();
        const auto pixel = sample(texture.get(), nullptr).at8(2, 1);
        for (size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(pixel[i], entry.expected[i], 2) << entry.format << " channel " << i;
    }
}

TEST_F(TextureTest, TexelsOutsideTheImageLoadAsZero)
{
    const SmartRef<Texture> texture = makeTexture(2, 2, {white, white, white, white});
    const SmartRef<Shader> shader =
        makeShader("return image.Load(int3(floor(p.uv * 4) - 1, 0)) + image.Load(int3(0, 0, 1 + p.uv.x));",
                   "Texture2D image : register(t0);");
    const Image image = sample(texture.get(), nullptr, 0, 1, shader.get());
    EXPECT_EQ(image.at(0, 1), nothing);
    EXPECT_EQ(image.at(1, 1), whiteColor);
    EXPECT_EQ(image.at(2, 2), whiteColor);
    EXPECT_EQ(image.at(3, 1), nothing);
    EXPECT_EQ(image.at(1, 3), nothing);
}

TEST_F(TextureTest, CubesAreReadAsCubesAndNothingElse)
{
    const uint32_t faces[] = {red, green, blue, white, 0xFF00FFFF, 0xFF888888};
    std::vector<D3D11_SUBRESOURCE_DATA> data;
    for (const uint32_t& face : faces)
        data.push_back({&face, 4, 0});
    D3D11_TEXTURE2D_DESC desc = describe(1, 1, DXGI_FORMAT_R8G8B8A8_UNORM);
    desc.ArraySize = 6;
    desc.MiscFlags = 4; // a cube
    ID3D11Texture2D* made = create(desc, data.data());
    ASSERT_NE(made, nullptr);
    const SmartRef<Texture> cube = createTexture(made);
    made->Release();
    const SmartRef<Shader> shader =
        makeShader("return p.uv.x < 0.5 ? image.Sample(filter, float3(0, -1, 0)) : image.Sample(filter, "
                   "float3(-1, 0, 0));",
                   "TextureCube image : register(t0); SamplerState filter : register(s0);");
    const Image image = sample(cube.get(), nullptr, 0, 1, shader.get());
    EXPECT_EQ(image.at(0, 0), whiteColor);
    EXPECT_EQ(image.at(3, 0), greenColor);
    EXPECT_EQ(sample(cube.get(), nullptr).at(0, 0), nothing) << "a program that expects a flat texture";
    EXPECT_EQ(sample(makeTexture(1, 1, {red}).get(), nullptr, 0, 1, shader.get()).at(0, 0), nothing);
}

TEST_F(TextureTest, DescriptionsThatCantBeMetFail)
{
    const auto refused = [&](auto change) {
        D3D11_TEXTURE2D_DESC desc = describe(4, 4, DXGI_FORMAT_R8G8B8A8_UNORM);
        change(desc);
        return create(desc, nullptr) == nullptr;
    };
    takeProblems();
    EXPECT_TRUE(refused([](auto& desc) { desc.Width = 0; }));
    EXPECT_EQ(takeProblems().front().text,
              "no texture of 0 by 4, 1 mips, 1 layers, format 28, 1 samples, usage 0, "
              "bind flags 8, misc 0");
    EXPECT_TRUE(refused([](auto& desc) { desc.Height = 16385; }));
    EXPECT_TRUE(refused([](auto& desc) { desc.MipLevels = 4; }));
    EXPECT_TRUE(refused([](auto& desc) { desc.ArraySize = 0; }));
    EXPECT_TRUE(refused([](auto& desc) { desc.Format = DXGI_FORMAT_UNKNOWN; }));
    EXPECT_TRUE(refused([](auto& desc) { desc.SampleDesc.Count = 4; }));
    EXPECT_TRUE(refused([](auto& desc) { desc.BindFlags = D3D11_BIND_RENDER_TARGET; }));
    EXPECT_TRUE(refused([](auto& desc) { desc.Usage = D3D11_USAGE_IMMUTABLE; })) << "without data";
    EXPECT_LT(renderer().getDevice()->CreateTexture2D(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(createTexture(nullptr), nullptr);

    takeProblems();
    EXPECT_TRUE(refused([](auto& desc) {
        desc.Width = desc.Height = 16384;
        desc.Format = DXGI_FORMAT_R32G32B32A32_FLOAT;
        desc.Usage = D3D11_USAGE_DYNAMIC;
        desc.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;
    }));
    const std::vector<Problem> problems = takeProblems();
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].text,
              "no texture of 16384 by 16384, 1 layers, format 2: 4294967296 bytes, 2147483648 "
              "are possible");
}

TEST_F(TextureTest, LargeTexturesArriveInOneFrame)
{
    constexpr unsigned side = 4096;
    std::vector<uint32_t> texels(size_t(side) * side, blue);
    texels.front() = red;
    texels.back() = green;
    const SmartRef<Texture> first = makeTexture(side, side, texels);
    texels.front() = white;
    const SmartRef<Texture> second = makeTexture(side, side, texels); // more than one batch may hold
    const SmartRef<TextureSampler> sampler = makeSampler(point, D3D11_TEXTURE_ADDRESS_CLAMP);
    for (const auto& [texture, corner] : {std::pair(first, redColor), std::pair(second, whiteColor)}) {
        const SmartRef<Shader> shader =
            makeShader("return p.uv.x < 0.5 ? image.Load(int3(0, 0, 0)) : image.Load(int3(4095, 4095, 0));",
                       "Texture2D image : register(t0);");
        const Image image = sample(texture.get(), sampler.get(), 0, 1, shader.get());
        EXPECT_EQ(image.at(0, 0), corner);
        EXPECT_EQ(image.at(3, 3), greenColor);
    }
}

} // namespace

} // namespace helvantine::test
