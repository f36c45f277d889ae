// SPDX-License-Identifier: MIT
#include "TestFolder.h"

#include <helvantine/core/Path.h>
#include <helvantine/core/Random.h>
#include <helvantine/core/Text.h>

#include <bit>
#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

namespace helvantine::test
{

namespace
{

std::string printFloat(double value)
{
    char text[400];
    return std::string(text, static_cast<std::size_t>(std::snprintf(text, sizeof(text), "%f", value)));
}

std::string appended(double value)
{
    std::string text = "x";
    appendFloat(text, value);
    return text.substr(1);
}

} // namespace

TEST(Numbers, FloatTextsAreThoseOfPrintf)
{
    const double special[] = {0.0,     -0.0,    0.5e-6,       1.5e-6,     -4e-7,       0.1,          0.1f,
                              1e12,    -1e12,   999999999.9f, 9.9999995,  0.99999999f, FLT_MAX,      DBL_MAX,
                              DBL_MIN, FLT_MIN, INFINITY,     -INFINITY,  NAN,         -(double)NAN, 1e22,
                              -1e-320, 2.5f,    1.0 / 3,      123456.789f};
    for (const double value : special) {
        EXPECT_EQ(appended(value), printFloat(value));
        EXPECT_EQ(formatString("%f", value), printFloat(value));
    }
    for (std::uint64_t i = 0; i < 200000; ++i) {
        const std::uint64_t bits = i * 0x9E3779B97F4A7C15;
        const float value = std::bit_cast<float>(static_cast<std::uint32_t>(bits >> 32));
        const double wide = std::bit_cast<double>(bits);
        ASSERT_EQ(appended(value), printFloat(value));
        ASSERT_EQ(appended(wide), printFloat(wide));
    }
    // Halves of a millionth, where rounding shows.
    for (int i = 0; i < 4096; ++i) {
        const float tie = std::ldexp(static_cast<float>(i) + 0.5f, -7);
        ASSERT_EQ(appended(tie), printFloat(tie));
    }
}

TEST(Numbers, OtherFormatsAreThoseOfPrintf)
{
    const std::string longText(1000, 'a');
    EXPECT_EQ(formatString("%d", INT_MIN), "-2147483648");
    EXPECT_EQ(formatString("Resource-%d", 3), "Resource-3");
    EXPECT_EQ(formatString("%f,%f %s%c", 1.5, -2.0, longText.c_str(), '!'),
              "1.500000,-2.000000 " + longText + "!");
    EXPECT_EQ(formatString("%5.2f|%g|%08x", 3.14159, 1e20, 0xBEEFu), " 3.14|1e+20|0000beef");
}

TEST(Numbers, TextsAreReadAsAtofDoes)
{
    const char* texts[] = {"1.5",
                           " \t\n-2.25abc",
                           "+3",
                           "--3",
                           "+-3",
                           "-",
                           ".5",
                           "5.",
                           ".",
                           "1e3",
                           "1e",
                           "1e+",
                           "0x1p4",
                           "0x",
                           "0x.8",
                           "-0x10",
                           "inf",
                           "-Infinity",
                           "nanx",
                           "1e400",
                           "-1e400",
                           "1e-400",
                           "0.0000001e310",
                           "100000e-330",
                           "1,5",
                           "1e99999999999999999999",
                           "1e-99999999999999999999",
                           "0e99999999999999999999",
                           "0x1p99999",
                           "0x1p-99999",
                           "4.9e-324",
                           "2.4e-324",
                           "0.1",
                           "abc",
                           "",
                           "-0",
                           "1.7976931348623159e308"};
    for (const char* text : texts) {
        const double expected = std::atof(text), actual = parseDouble(text);
        if (std::isnan(expected))
            EXPECT_TRUE(std::isnan(actual)) << text;
        else
            EXPECT_EQ(actual, expected) << text;
    }
    EXPECT_EQ(parseDouble(nullptr), 0.0);
    for (const char* unreadable : {"-", "-abc", "- 1", "--1", "-.", "-e5"})
        EXPECT_FALSE(std::signbit(parseDouble(unreadable))) << unreadable;
    EXPECT_TRUE(std::signbit(parseDouble("-0")));
    for (const float value : {0.1f, FLT_MAX, 123.456f}) {
        const auto back =
            static_cast<float>(parseDouble(formatString("%f", static_cast<double>(value)).c_str()));
        EXPECT_NEAR(back, value, 1e-6f + value * 1e-7f);
    }
}

TEST(Numbers, IntegersSaturate)
{
    const std::pair<const char*, int> cases[] = {{"12", 12},
                                                 {" \t-7x", -7},
                                                 {"+5", 5},
                                                 {"abc", 0},
                                                 {"", 0},
                                                 {"- 5", 0},
                                                 {"1.9", 1},
                                                 {"2147483648", INT_MAX},
                                                 {"-2147483648", INT_MIN},
                                                 {"-99999999999999999999999", INT_MIN},
                                                 {"--1", 0}};
    for (const auto& [text, value] : cases)
        EXPECT_EQ(parseInt(text), value) << text;
    EXPECT_EQ(parseInt(nullptr), 0);
}

TEST(Numbers, TheLocaleChangesNothing)
{
    const TestFolder folder;
    const std::string make = "localedef -i de_DE -f UTF-8 '" + (folder / "de_DE.UTF-8") + "' 2> /dev/null";
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8") && std::system(make.c_str()) == 0) {
        setenv("LOCPATH", folder.path(), 1);
        std::setlocale(LC_ALL, "de_DE.UTF-8");
        unsetenv("LOCPATH");
    }
    if (std::string(std::localeconv()->decimal_point) != ",")
        GTEST_SKIP() << "no locale with a decimal comma can be had here";
    EXPECT_EQ(formatString("%f", 1.5), "1.500000");
    EXPECT_EQ(formatString("%.2f %f", 0.25, 1e30 / 3), "0.25 333333333333333316505293553664.000000");
    EXPECT_EQ(parseDouble("1.5"), 1.5);
    std::setlocale(LC_ALL, "C");
}

TEST(Tokens, EmptyOnesAndBlanksAreKept)
{
    using Tokens = std::vector<std::string>;
    EXPECT_EQ(tokenize("1, 2,,3,", ","), (Tokens{"1", " 2", "", "3", ""}));
    EXPECT_EQ(tokenize("a;b/c", "/;"), (Tokens{"a", "b", "c"}));
    EXPECT_EQ(tokenize("", ","), Tokens{""});
    EXPECT_EQ(tokenize("abc", ""), Tokens{"abc"});
    EXPECT_EQ(tokenize(nullptr, ","), Tokens{});
}

TEST(Random, SeedsRepeatAndValuesStayInRange)
{
    seedRandom(7);
    const float first = randomFloat(-2, 3), second = randomFloat(-2, 3);
    seedRandom(7);
    EXPECT_EQ(randomFloat(-2, 3), first);
    EXPECT_EQ(randomFloat(-2, 3), second);
    double sum = 0;
    for (int i = 0; i < 10000; ++i) {
        const float value = randomFloat(-2, 3);
        ASSERT_TRUE(value >= -2 && value < 3);
        sum += value;
    }
    EXPECT_NEAR(sum / 10000, 0.5, 0.1);
    EXPECT_EQ(randomFloat(4, 4), 4);
}

TEST(Paths, AreTakenApartAndPutTogether)
{
    struct Case
    {
        const char *path, *folder, *filename, *drive, *directory, *name, *extension;
    };
    const Case cases[] = {
        {"/a/b/c.tar.gz", "/a/b", "c.tar.gz", "", "/a/b/", "c.tar", ".gz"},
        {"c.png", ".", "c.png", "", "", "c", ".png"},
        {"/x", "/", "x", "", "/", "x", ""},
        {"a.b/c", "a.b", "c", "", "a.b/", "c", ""},
        {"C:\\a\\c.dll", "C:\\a", "c.dll", "C:", "\\a\\", "c", ".dll"},
        {"C:c.dll", "C:.", "c.dll", "C:", "", "c", ".dll"},
        {"/a//", "/a", "", "", "/a//", "", ""},
        {"/h/.profile", "/h", ".profile", "", "/h/", ".profile", ""},
        {"..", ".", "..", "", "", "..", ""},
        {"", ".", "", "", "", "", ""},
    };
    for (const Case& c : cases) {
        std::string drive, directory, name, extension;
        splitPath(c.path, drive, directory, name, extension);
        EXPECT_EQ(getPath(c.path), c.folder) << c.path;
        EXPECT_EQ(getFilename(c.path), c.filename) << c.path;
        EXPECT_EQ(drive + "|" + directory + "|" + name + "|" + extension,
                  std::string(c.drive) + "|" + c.directory + "|" + c.name + "|" + c.extension);
        EXPECT_EQ(makePath(drive, directory, name, extension), c.path);
    }
}

TEST(Paths, HaveOneSpellingAndOneNameBelowARoot)
{
    struct Case
    {
        const char *path, *valid, *rooted;
    };
    const Case cases[] = {
        {"a\\b//./c.png", "a/b/c.png", "a/b/c.png"},
        {"/home/a/../t.png", "/home/t.png", "home/t.png"},
        {"../../x/../t.png", "../../t.png", "t.png"},
        {"C:\\a\\..\\..\\b", "C:/b", "b"},
        {"C:..\\b", "C:../b", "b"},
        {"/../b", "/b", "b"},
        {"a/..", ".", ""},
        {"./C:/x", "C:/x", "x"},
        {"a/../C:D:..", "C:D:..", ""},
        {"folder/", "folder", "folder"},
        {"/", "/", ""},
        {"", "", ""},
    };
    for (const Case& c : cases) {
        const std::string valid = makeValidFilename(c.path), rooted = makeRootedName(c.path);
        EXPECT_EQ(valid, c.valid) << c.path;
        EXPECT_EQ(makeValidFilename(valid.c_str()), valid);
        EXPECT_EQ(makeRootedName(rooted.c_str()), rooted);
        EXPECT_EQ(rooted, c.rooted) << c.path;
        EXPECT_EQ(makeRootedName(valid.c_str()), rooted) << c.path;
    }
}

} // namespace helvantine::test
