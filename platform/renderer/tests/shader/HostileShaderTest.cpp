// SPDX-License-Identifier: MIT
// Texts that are known to crash, stall or swell the compiler, given to the process that is there for them.
#include "ShaderFixture.h"

#include <random>

namespace helvantine
{

namespace
{

using namespace std::chrono_literals;

#ifdef HELVANTINE_INSTRUMENTED
// Sanitizers need the memory, catch the faults themselves, and take their time.
constexpr bool isLimited = false;
constexpr auto shortTime = 5000ms;
#else
constexpr bool isLimited = true;
constexpr auto shortTime = 1000ms;
#endif

std::string repeat(const std::string& text, size_t times)
{
    std::string all;
    for (size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

std::string pixel(const std::string& body)
{
    return plainVertex + "float4 PS(float4 p : SV_Position) : SV_Target { " + body + " }\n";
}

class HostileShaderTest : public ::testing::Test
{
protected:
    static std::string errorsOf(const std::string& text, ShaderProgramCache& cache)
    {
        std::string errors;
        const ShaderProgramPtr program = cache.get(requestOf(text), errors);
        EXPECT_EQ(program == nullptr, !errors.empty());
        return errors;
    }
    std::string errorsOf(const std::string& text) { return errorsOf(text, m_cache); }

    ShaderProgramCache m_cache{"", {findShaderHelper()}};
    ShaderProgramCache m_hasty{"", {findShaderHelper(), shortTime}};
    ShaderProgramCache m_frugal{"", {findShaderHelper(), 5000ms, 10000ms, uint64_t(256) << 20}};
    ShaderProgramCache m_shallow{"",
                                 {findShaderHelper(), 5000ms, 10000ms, uint64_t(1) << 30, uint64_t(1) << 20}};
};

TEST_F(HostileShaderTest, TextsThatCostTooMuchFailAndTheNextOneCompiles)
{
    struct Case
    {
        std::string what;
        std::string text;
        ShaderProgramCache& cache;
        std::string words;
    };
    const Case cases[] = {
        {"doubling calls", endlessText(), m_hasty, "ran past 1 s"},
        {"many long loops",
         pixel("float s = 0; [unroll] for (int i = 0; i < 150000; ++i) s += sin(p.x * i); return s;"),
         m_frugal, "ran out of its memory of 256 MiB"},
        {"deep expression",
         "#define SUM " + repeat("p + ", 400) + "p\n" + pixel("return SUM + SUM + SUM + SUM;"), m_shallow,
         "ran out of its stack of 1 MiB"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.what);
        const std::string errors = errorsOf(one.text, one.cache);
        EXPECT_NE(errors, "");
        if (isLimited) {
            EXPECT_EQ(errors, "test.hlsl:1: error: the shader compiler " + one.words + "\n");
        }
        EXPECT_EQ(errorsOf(plainVertex + plainPixel, one.cache), "");
    }
    const std::string unroll = "[unroll] for (int i = 0; i < 10000000; ++i) s += sin(p.x * i);";
    EXPECT_NE(errorsOf(pixel("float s = 0; " + unroll + " return s;"), m_hasty), "");
}

TEST_F(HostileShaderTest, TextsBeyondMeasureFailOrCompile)
{
    EXPECT_EQ(errorsOf(pixel(repeat("(", 50000) + "1" + repeat(")", 50000))),
              "test.hlsl:2: error: brackets nest deeper than 256\n");
    EXPECT_NE(errorsOf(pixel(repeat("(", 200) + "1" + repeat(")", 100))), "");
    const std::string bomb =
        "#define A ((((((((((\n#define B A A A A A A A A A A\n#define C B B B B B B B B B B\n"
        "#define D C C C C C C C C C C\n";
    EXPECT_EQ(errorsOf(bomb + pixel("return D D D D D 1")),
              "test.hlsl:6: error: expressions nest deeper than 512\n");
    EXPECT_EQ(errorsOf(repeat("\n", 1000000) + plainVertex + plainPixel), "");
    EXPECT_EQ(errorsOf(repeat("\n", 1000000) + pixel("return absent;")).substr(0, 34),
              "test.hlsl:1000002: error: 'absent'");
    EXPECT_EQ(errorsOf(repeat("// x\n", 1000000)),
              "test.hlsl:1: error: the text has 5000000 bytes, more than 1048576\n");
    EXPECT_EQ(errorsOf("\xef\xbb\xbf"), "test.hlsl:1: error: no vertex source\n");

    ShaderRequest request = requestOf("#include \"self.hlsl\"\n" + pixel("return 1;"));
    request.includer = [](const std::string&, std::string& text) {
        return text = "#include \"self.hlsl\"\n", true;
    };
    std::string errors;
    EXPECT_FALSE(m_cache.get(request, errors));
    EXPECT_NE(errors.find("includes nest deeper than 32"), std::string::npos) << errors;

    request = requestOf(plainVertex + plainPixel);
    request.pixelEntry = std::string(size_t(65) << 20, 'x');
    EXPECT_FALSE(m_cache.get(request, errors));
    EXPECT_NE(errors.find("bytes, more than 67108864"), std::string::npos);
}

/// Changes a few places of a text in ways that keep much of it understandable.
std::string damage(std::string text, std::mt19937& random)
{
    constexpr std::string_view symbols = "(){}[];,.<>#:=+-*/\"\\";
    for (unsigned left = 1 + random() % 8; left > 0; --left) {
        const size_t at = random() % text.size();
        const size_t other = random() % text.size();
        switch (random() % 5) {
        case 0:
            text[at] = char(random());
            break;
        case 1:
            text.erase(at, random() % std::min<size_t>(40, text.size() / 2));
            break;
        case 2:
            text.insert(at, text.substr(other, random() % 60));
            break;
        case 3:
            text.insert(at, 1, symbols[random() % symbols.size()]);
            break;
        default:
            std::swap(text[at], text[other]);
        }
    }
    return text;
}

TEST_F(HostileShaderTest, DamagedTextsCompileOrFailWithWords)
{
    const std::string good = R"(#define SCALE(x) ((x) * 2.0)
cbuffer Frame : register(b0) { float4x4 view : packoffset(c0); float2 size : packoffset(c4.x); };
Texture2D picture : register(t0);
SamplerState smooth : register(s0);
struct Vertex { float4 position : SV_Position; float4 color : COLOR0; float2 uv : TEXCOORD0; };
static const float weights[4] = { 0.1, 0.2, 0.3, 0.4 };
Vertex VS(float4 position : POSITION, float4 color : COLOR0, float2 uv : TEXCOORD0)
{
    Vertex output;
    output.position = mul(position, view);
    output.color = color;
    output.uv = uv;
    return output;
}
float4 PS(Vertex input) : SV_Target
{
    float4 sum = 0;
    [unroll] for (int i = 0; i < 4; ++i)
        sum += weights[i] * picture.Sample(smooth, input.uv + SCALE(i) / size);
    if (sum.a < 0.5 && size.x > 1)
        discard;
    return sum * input.color;
}
)";
    std::mt19937 random(3);
    unsigned crashes = 0;
    ASSERT_EQ(errorsOf(good), "");
    for (int i = 0; i < 600; ++i) {
        const std::string errors = errorsOf(damage(good, random));
        crashes += errors.find("the shader compiler crashed") != std::string::npos;
    }
    RecordProperty("crashes", static_cast<int>(crashes));
    EXPECT_EQ(errorsOf(good + "\n"), "");
}

} // namespace

} // namespace helvantine
