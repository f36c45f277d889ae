// SPDX-License-Identifier: MIT
#include "HlslInputs.h"
#include "HlslProgram.h"

#include <gtest/gtest.h>
#include <helvantine/renderer/BlendState.h>
#include <helvantine/renderer/DepthStencilState.h>
#include <helvantine/renderer/Device.h>
#include <helvantine/renderer/RasterizerState.h>
#include <helvantine/renderer/Shader.h>
#include <helvantine/testsupport/RenderingTest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>

namespace helvantine::test
{

namespace
{

ShaderFromMemoryParams paramsOf(const HlslProgram& program)
{
    ShaderFromMemoryParams params;
    params.vertexSource = params.pixelSource = program.text;
    params.vertexEntry = "VS";
    params.pixelEntry = "PS";
    return params;
}

/// The rows of the table, or of the file or folder that HELVANTINE_HLSL_ROWS names.
const std::vector<HlslRow>& getRows()
{
    static const char* chosen = std::getenv("HELVANTINE_HLSL_ROWS");
    static const std::vector<HlslRow> rows = readHlslRows(chosen ? chosen : HLSL_ROWS);
    return rows;
}

/// Draws rows and holds what comes out against what they expect.
class HlslTable : public RenderingTest, public testing::WithParamInterface<HlslMode>
{
protected:
    /// Rows that share declarations, in programs of some dozens.
    void evaluateAll(const std::vector<HlslRow>& rows)
    {
        constexpr size_t most = 40;
        for (size_t start = 0, end = 0; start < rows.size(); start = end) {
            while (end < rows.size() && end - start < most &&
                   rows[end].declarations == rows[start].declarations)
                ++end;
            evaluate({rows.data() + start, end - start});
        }
    }

private:
    /// Where a program doesn't compile, its halves are tried, until the row is found.
    void evaluate(std::span<const HlslRow> rows)
    {
        const HlslProgram program = makeHlslProgram(rows, GetParam());
        ShaderFromMemoryParams params = paramsOf(program);
        const SmartRef<Shader> shader = createShaderFromMemory(params);
        if (shader) {
            compare(rows, drawProgram(*shader, program));
        } else if (rows.size() == 1) {
            ADD_FAILURE() << rows[0].describe() << " is refused (" << rows[0].source << "):\n"
                          << params.errorText;
        } else {
            evaluate(rows.first(rows.size() / 2));
            evaluate(rows.subspan(rows.size() / 2));
        }
    }

    void SetUp() override
    {
        RenderingTest::SetUp();
        m_inputs = std::make_unique<HlslInputs>(renderer());
    }

    std::vector<uint32_t> drawProgram(Shader& shader, const HlslProgram& program)
    {
        const unsigned height = (program.pixelCount + hlslProgramWidth - 1) / hlslProgramWidth;
        const SmartRef<RenderTarget> target =
            createRenderTarget(hlslProgramWidth, height, DXGI_FORMAT_R32G32B32A32_FLOAT, 1, 0, 0);
        renderer().beginFrame(target.get());
        const float factor[] = {1, 1, 1, 1};
        getBlendState(BlendMode::Solid)->bind(factor, 0xFFFFFF);
        getRasterizerState({.CullMode = D3D11_CULL_NONE})->bind();
        getDepthStencilState({.DepthEnable = 0, .DepthWriteMask = D3D11_DEPTH_WRITE_MASK_ZERO})->bind(0);
        m_inputs->bind(program.constants);
        shader.bind(nullptr);
        const bool points = GetParam().inVertexStage;
        renderer().getContext()->IASetPrimitiveTopology(points ? D3D11_PRIMITIVE_TOPOLOGY_POINTLIST
                                                               : D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
        renderer().getContext()->Draw(points ? program.pixelCount : 3, 0);
        renderer().endFrame();
        std::vector<uint8_t> bytes;
        EXPECT_TRUE(renderer().readBack(target.get(), bytes));
        std::vector<uint32_t> bits(bytes.size() / 4);
        std::memcpy(bits.data(), bytes.data(), bits.size() * 4);
        return bits;
    }

    static void compare(std::span<const HlslRow> rows, const std::vector<uint32_t>& bits)
    {
        size_t pixel = 0;
        for (const HlslRow& row : rows) {
            HlslValue actual = row.results.front();
            for (size_t i = 0; i < actual.bits.size(); ++i)
                actual.bits[i] = bits.at((pixel + i / actual.columns) * 4 + i % actual.columns);
            pixel += countPixels(row);
            const bool matches = std::any_of(row.results.begin(), row.results.end(), [&](const auto& result) {
                return std::equal(
                    actual.bits.begin(), actual.bits.end(), result.bits.begin(),
                    [&](uint32_t a, uint32_t b) { return isNear(result.scalar, a, b, row.tolerance); });
            });
            EXPECT_TRUE(matches) << row.describe() << "\n  gives    " << actual.show() << "\n  expected "
                                 << row.results.front().show() << " (" << row.source << ")";
        }
    }

    std::unique_ptr<HlslInputs> m_inputs;
};

TEST_P(HlslTable, EveryRowGivesItsResult)
{
    std::vector<HlslRow> rows = getRows();
    std::erase_if(rows, [](const HlslRow& row) { return row.results.empty(); });
    evaluateAll(rows);
}

constexpr HlslMode modes[] = {{false, false}, {false, true}, {true, false}, {true, true}};

INSTANTIATE_TEST_SUITE_P(, HlslTable, testing::ValuesIn(modes), [](const auto& mode) {
    return std::string(mode.param.inVertexStage ? "VertexStage" : "PixelStage") +
           (mode.param.asConstants ? "AsConstants" : "AtRunTime");
});

TEST(HlslRefusals, WhatHasNoMeaningIsRefusedWithWordsAndALine)
{
    for (const HlslRow& row : getRows()) {
        if (!row.results.empty())
            continue;
        ShaderFromMemoryParams params = paramsOf(makeHlslProgram({&row, 1}, {}));
        EXPECT_FALSE(checkShader(params)) << row.describe() << " compiles (" << row.source << ")";
        EXPECT_NE(params.errorText.find(": error: "), std::string::npos) << row.describe();
    }
}

TEST(HlslRows, TheTableIsLargeAndEachRowTellsItsSource)
{
    std::set<std::string> sources;
    for (const HlslRow& row : getRows())
        sources.insert(row.source);
    if (!std::getenv("HELVANTINE_HLSL_ROWS")) {
        EXPECT_GE(getRows().size(), 400u);
        EXPECT_GE(sources.size(), 60u);
    }
}

} // namespace

} // namespace helvantine::test
