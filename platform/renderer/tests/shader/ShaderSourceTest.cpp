// SPDX-License-Identifier: MIT
#include "ShaderFixture.h"

#include "shader/HlslScanner.h"
#include "shader/ShaderSource.h"

#include <map>

namespace helvantine
{

namespace
{

using ShaderSourceTest = ShaderTest;
using Files = std::map<std::string, std::string>;

ShaderIncluder includerOf(const Files& files)
{
    return [files](const std::string& path, std::string& text) {
        auto found = files.find(path);
        if (found != files.end())
            text = found->second;
        return found != files.end();
    };
}

std::string repeat(const std::string& text, size_t times)
{
    std::string all;
    for (size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

TEST_F(ShaderSourceTest, IncludesResolveAgainstTheIncludingFile)
{
    ShaderRequest request = requestOf("#include \"lib/a.hlsl\"\n#include <lib/deep/b.hlsl>\n" + plainVertex +
                                      "float4 PS() : SV_Target { return a() + b(); }\n");
    request.includer =
        includerOf({{"lib/a.hlsl", "\xef\xbb\xbf#include \"deep/b.hlsl\"\nfloat4 a() { return b(); }\n"},
                    {"lib/deep/b.hlsl", "#ifndef B\n#define B\n#include \"../../top.hlsl\"\n"
                                        "float4 b() { return TOP; }\n#endif\n"},
                    {"top.hlsl", "#define TOP float4(1, 2, 3, 4)\n"}});
    std::string errors;

    EXPECT_TRUE(cache().get(request, errors)) << errors;
}

TEST_F(ShaderSourceTest, PathsStayInsideTheirFolder)
{
    const std::pair<const char*, const char*> cases[] = {
        {"a/./b.hlsl", "fx/a/b.hlsl"},         {"../b.hlsl", "b.hlsl"},
        {"../../../etc/passwd", "etc/passwd"}, {"/etc/passwd", "etc/passwd"},
        {"C:\\x\\y.hlsl", "x/y.hlsl"},         {"..\\b.hlsl", "b.hlsl"},
        {"a//b/../c.hlsl", "fx/a/c.hlsl"},     {"..", ""},
    };
    for (const auto& [requested, expected] : cases)
        EXPECT_EQ(resolveInclude("fx/main.hlsl", requested), expected) << requested;
    EXPECT_EQ(resolveInclude("", "a.hlsl"), "a.hlsl");
}

TEST_F(ShaderSourceTest, IncludesThatFailSaySo)
{
    ShaderRequest request = requestOf("\n#include \"a.hlsl\"\n" + plainVertex + plainPixel);
    EXPECT_EQ(failure(request),
              "test.hlsl:2: error: '#include' : includes aren't possible here for header name: "
              "a.hlsl\n");
    request.includer = includerOf({});
    EXPECT_EQ(failure(request),
              "test.hlsl:2: error: '#include' : the file can't be found for header name: a.hlsl\n");
    request.includer = includerOf({{"a.hlsl", "float4 broken( { }\n"}});
    EXPECT_EQ(failure(request).substr(0, 16), "a.hlsl:1: error:");
    request.includer = includerOf({{"a.hlsl", "#include \"a.hlsl\"\n#include \"a.hlsl\"\n"}});
    EXPECT_NE(failure(request).find("includes nest deeper than 32"), std::string::npos);
    request.includer = [](const std::string& path, std::string& text) {
        text = "#include \"x" + path + "\"\n";
        return true;
    };
    EXPECT_NE(failure(request).find("includes pass 256 files"), std::string::npos);
}

TEST_F(ShaderSourceTest, IncludesBehindAFalseConditionMayBeAbsent)
{
    compile("#if 0\n#include \"a.hlsl\"\n#endif\n" + plainVertex + plainPixel);
}

TEST_F(ShaderSourceTest, TextsBeyondTheLimitsAreRefusedBeforeTheCompilerSeesThem)
{
    struct Case
    {
        const char* what;
        std::string text;
        const char* words;
    };
    auto pixel = [](const std::string& expression) {
        return plainVertex + "float4 PS() : SV_Target { return " + expression + "; }\n";
    };
    const Case cases[] = {
        {"size", std::string((1 << 20) + 1, ' '),
         "test.hlsl:1: error: the text has 1048577 bytes, more than 1048576"},
        {"parentheses", pixel(repeat("(", 50000) + "1" + repeat(")", 50000)),
         "test.hlsl:2: error: brackets nest deeper than 256"},
        {"operators", pixel("1" + repeat(" + 1", 60000)),
         "test.hlsl:2: error: more than 1024 operators in one expression"},
        {"signs", pixel(repeat("-", 60000) + "1"),
         "test.hlsl:2: error: more than 1024 operators in one expression"},
        {"else",
         plainVertex + "float4 PS(float a : A) : SV_Target { " + repeat("if (a) return 1; else ", 5000) +
             "return 0; }\n",
         "test.hlsl:2: error: more than 1024 else branches"},
        {"doubling",
         [] {
             std::string text = "#define M0 1 + 1\n";
             for (int i = 1; i < 60; ++i)
                 text += "#define M" + std::to_string(i) + " M" + std::to_string(i - 1) + " M" +
                         std::to_string(i - 1) + "\n";
             return text + "float x = M59;\n";
         }(),
         "test.hlsl:1: error: macros expand to more than 524288 tokens"},
        {"doubled arguments", "#define D(x) x x\n#define Q(x) D(D(D(D(x))))\nQ(Q(Q(Q(Q(Q(int))))))\n",
         "test.hlsl:1: error: macros expand to more than 524288 tokens"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.what);
        EXPECT_EQ(failure(one.text), std::string(one.words) + "\n");
    }
}

TEST_F(ShaderSourceTest, OrdinaryTextsPassTheLimits)
{
    std::string table = "static const float table[4000] = { 0" + repeat(", -1.5", 3999) + " };\n";
    std::string macros =
        "#define OPEN {\n#define CLOSE }\n#define SELF SELF\n#define MAX3(a, b, c) max(a, max(b, c))\n";
    compile(table + macros + plainVertex +
            "float4 PS() : SV_Target OPEN return MAX3(table[3], MAX3(1, 2, 3), (4, 5)); CLOSE\n");
}

TEST(HlslScannerTest, CommentsStringsAndContinuedLinesAreUnderstood)
{
    HlslTokens tokens = scanHlsl("a /* ( \n */ b // ( \n#define X \\\r\n ( \"( /*\"\n1.5e3f c /* unended");

    std::string seen;
    for (const HlslToken& token : tokens)
        seen += (token.startsLine ? "|" : " ") + std::string(token.text) + "@" + std::to_string(token.line);
    EXPECT_EQ(seen, "|a@1 b@2|#@3 define@3 X@3 (@4 \"( /*\"@4|1.5e3f@5 c@5");
    EXPECT_EQ(endOfDirective(tokens, 2), 7u);
}

} // namespace

} // namespace helvantine
