// SPDX-License-Identifier: MIT
#include "image/DdsFile.h"

#include <helvantine/renderer/ScreenRenderer.h>
#include <helvantine/renderer/Shader.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/renderer/TextureSampler.h>
#include <helvantine/testsupport/RenderingTest.h>
#include <helvantine/testsupport/TemporaryFolder.h>

#include <cstring>

namespace helvantine::test
{
namespace
{

/// What textures look like to a shader once they have gone from a file to the GPU.
class BlockFormatTest : public RenderingTest
{
protected:
    BlockFormatTest() : RenderingTest(8, 8) {}

    SmartRef<Texture> load(const DdsFile& dds)
    {
        const Bytes file = dds.write();
        const std::string path = m_folder.file("texture.dds");
        EXPECT_TRUE(writeFile(path, std::string(file.begin(), file.end())));
        SmartRef<Texture> texture = loadTextureFromCache(path.c_str());
        EXPECT_TRUE(texture);
        return texture;
    }

    Image::Pixel8 show(Texture* texture, int mip)
    {
        const Image image = draw([&] {
            renderer().getScreenRenderer()->drawTexture(texture, {1, 1, 1, 1}, false, mip);
        });
        return image.at8(3, 3);
    }

    TemporaryFolder m_folder;
};

/// Writes bits from the lowest up, as BC6H and BC7 are described.
Bytes packBits(std::initializer_list<std::pair<unsigned, unsigned>> valuesAndCounts)
{
    Bytes block(16, 0);
    unsigned bit = 0;
    for (const auto& [value, count] : valuesAndCounts) {
        for (unsigned i = 0; i < count; ++i, ++bit)
            block[bit / 8] = static_cast<uint8_t>(block[bit / 8] | ((value >> i & 1) << bit % 8));
    }
    return block;
}

/// Two colours of 5, 6 and 5 bits, and every pixel the first of them.
const Bytes redBlock = {0x00, 0xf8, 0x00, 0x00, 0, 0, 0, 0};

Bytes join(Bytes first, const Bytes& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST_F(BlockFormatTest, EveryFormatShowsTheColoursItStores)
{
    const Bytes alpha8 = {0x88, 0x88, 0x88, 0x88, 0x88, 0x88, 0x88, 0x88}; // 136 in 4 bits
    const Bytes first100 = {100, 0, 0, 0, 0, 0, 0, 0};                     // of two 8-bit ends
    const Bytes first200 = {200, 0, 0, 0, 0, 0, 0, 0};
    const Bytes quarterFloat = packBits({{3, 5}, {495, 10}, {0, 10}, {495, 10}}); // mode 11: 1, 0, 1
    const Bytes sevenBits = packBits({{0x40, 7}, {50, 7}, {0, 7}, {20, 7}, {0, 7}, {90, 7}, {0, 7}, {60, 7}});
    const float half = 0.5f;
    Bytes floats(16, 0);
    std::memcpy(&floats[4], &half, sizeof half);
    const struct
    {
        const char* name;
        uint32_t format;
        Bytes block;
        Image::Pixel8 expected;
        unsigned side = 4;
    } cases[] = {
        {"bc1", 71, redBlock, {255, 0, 0, 255}},
        {"bc2", 74, join(alpha8, redBlock), {255, 0, 0, 136}},
        {"bc3", 77, join(first100, redBlock), {255, 0, 0, 100}},
        {"bc4", 80, first100, {100, 0, 0, 255}},
        {"bc5", 83, join(first100, first200), {100, 200, 0, 255}},
        {"bc6h", 95, quarterFloat, {255, 0, 255, 255}},
        {"bc7", 98, sevenBits, {100, 40, 180, 120}},
        {"rgba", 28, {1, 2, 3, 4}, {1, 2, 3, 4}, 1},
        {"bgra", 87, {1, 2, 3, 4}, {3, 2, 1, 4}, 1},
        {"srgb", 29, {188, 255, 0, 188}, {128, 255, 0, 188}, 1},
        {"four floats", 2, floats, {0, 128, 0, 0}, 1},
        {"three floats", 6, floats, {0, 128, 0, 255}, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        DdsFile dds{.width = c.side, .height = c.side};
        dds.dxgiFormat = c.format;
        dds.pixels = c.block;
        const SmartRef<Texture> texture = load(dds);
        const Image::Pixel8 shown = show(texture.get(), -1);
        for (unsigned channel = 0; channel < 4; ++channel)
            EXPECT_NEAR(shown[channel], c.expected[channel], 1) << "channel " << channel;
    }
}

TEST_F(BlockFormatTest, StoredMipsAreReadAsStored)
{
    DdsFile dds{.width = 2, .height = 2, .mipCount = 2};
    dds.dxgiFormat = 28;
    dds.pixels = Bytes(16, 40);
    dds.pixels.insert(dds.pixels.end(), {90, 91, 92, 93});
    const SmartRef<Texture> texture = load(dds);
    EXPECT_EQ(show(texture.get(), 0), (Image::Pixel8{40, 40, 40, 40}));
    EXPECT_EQ(show(texture.get(), 1), (Image::Pixel8{90, 91, 92, 93}));
}

TEST_F(BlockFormatTest, CubesAreReadByDirection)
{
    DdsFile dds{.width = 1, .height = 1};
    dds.dxgiFormat = 28;
    dds.miscFlags = 4;
    for (uint8_t face = 0; face < 6; ++face)
        dds.pixels.insert(dds.pixels.end(), {static_cast<uint8_t>(face * 40), 0, 0, 255});
    const SmartRef<Texture> cube = load(dds);
    ShaderFromMemoryParams params;
    params.vertexEntry = "vertexMain";
    params.pixelEntry = "pixelMain";
    params.vertexSource = params.pixelSource = R"(
        TextureCube cube : register(t0);
        SamplerState cubeSampler : register(s0);
        float4 vertexMain(uint id : SV_VertexID) : SV_Position
        {
            return float4(float2(id & 2, id << 1 & 2) * 4 - 1, 0, 1);
        }
        float4 pixelMain(float4 position : SV_Position) : SV_Target
        {
            int face = int(position.x);
            float3 direction = float3(face / 2 == 0, face / 2 == 1, face / 2 == 2) * (face % 2 == 0 ? 1 : -1);
            return cube.Sample(cubeSampler, direction);
        })";
    const SmartRef<Shader> shader = createShaderFromMemory(params);
    ASSERT_TRUE(shader) << params.errorText;
    const Image image = draw([&] {
        cube->bind(0);
        shader->bind(nullptr);
        renderer().getContext()->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
        renderer().getContext()->Draw(3, 0);
    });
    for (unsigned face = 0; face < 6; ++face)
        EXPECT_EQ(image.at8(face, 0)[0], face * 40) << "face " << face;
}

} // namespace
} // namespace helvantine::test
