// SPDX-License-Identifier: MIT
#include "ShaderFixture.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace helvantine
{

namespace
{

using namespace std::chrono_literals;

/// Compiles in a process that does as it is told.
class ShaderHelperTest : public ::testing::Test
{
protected:
    void SetUp() override { takeProblems(); }

    /// What comes of a job whose pixel stage has this entry point: "" for a program, else the words.
    std::string build(const std::string& entry, const std::string& name = "test.hlsl")
    {
        return build(m_cache, entry, name);
    }
    static std::string build(ShaderProgramCache& cache, const std::string& entry,
                             const std::string& name = "test.hlsl")
    {
        ShaderRequest request = requestOf(plainVertex + plainPixel);
        request.pixelSource = "float4 " + entry + "() : SV_Target { return 1; }\n";
        request.pixelEntry = entry;
        request.name = name;
        std::string errors;
        const ShaderProgramPtr program = cache.get(request, errors);
        EXPECT_EQ(program == nullptr, !errors.empty());
        return errors;
    }

    /// The number with which the helper's description of itself starts.
    pid_t helper() { return static_cast<pid_t>(std::strtol(build("describe").c_str(), nullptr, 10)); }

    ShaderHelperOptions m_options{FAKE_SHADER_HELPER};
    ShaderProgramCache m_cache{"", m_options};
};

TEST_F(ShaderHelperTest, WhateverTheProcessDoesIsToldAndTheNextOneWorks)
{
    const std::pair<const char*, const char*> cases[] = {
        {"crash", "crashed (signal 11)"},
        {"exit", "ended with exit code 3"},
        {"memory", "ran out of its memory of 1 GiB"},
        {"stack", "ran out of its stack of 64 MiB"},
        {"nonsense", "gave an answer without sense"},
        {"nothing", "gave an answer without sense"},
        {"endless", "gave an answer without sense"},
        {"unsound", "gave an answer without sense"},
        {"half", "ended with exit code 0"},
        {"deaf", "crashed (signal 9)"},
    };
    for (const auto& [entry, words] : cases) {
        SCOPED_TRACE(entry);
        EXPECT_EQ(build(entry), std::string("test.hlsl:1: error: the shader compiler ") + words + "\n");
        EXPECT_GT(helper(), 0);
    }
    EXPECT_EQ(build("PS"), "");
    EXPECT_TRUE(takeProblems().empty());
}

TEST_F(ShaderHelperTest, TimeIsThatOfTheProcessWhichIsGivenUpInTheEndWithoutIt)
{
    ShaderHelperOptions hasty = m_options, impatient = m_options;
    hasty.timeLimit = 1000ms;
    impatient.patience = 50ms;
    const std::string words = "test.hlsl:1: error: the shader compiler ran past ";
    ShaderProgramCache busy("", hasty);
    EXPECT_EQ(build(busy, "hang"), words + "1 s\n");
    EXPECT_EQ(build(busy, "nap"), "") << "takes longer, but not of the processor";
    ShaderProgramCache asleep("", impatient);
    EXPECT_EQ(build(asleep, "sleep"), words + "50 ms\n");
}

TEST_F(ShaderHelperTest, ATextThatDefeatedTheProcessIsNotTriedAgain)
{
    const std::string words = ":1: error: the shader compiler ";
    for (const std::string entry : {"crash", "memory", "stack"}) {
        SCOPED_TRACE(entry);
        const std::string told = build(entry);
        const pid_t before = helper();
        EXPECT_EQ(build(entry, "again.hlsl"), "again.hlsl" + told.substr(std::string("test.hlsl").size()));
        EXPECT_EQ(helper(), before);
    }
    for (const char* entry : {"exit", "nonsense", "killed"}) {
        SCOPED_TRACE(entry);
        build(entry);
        const pid_t before = helper();
        build(entry);
        EXPECT_NE(helper(), before) << "what may pass is tried again";
    }

    ShaderHelperOptions hasty = m_options;
    hasty.timeLimit = 1000ms;
    ShaderProgramCache cache("", hasty);
    ShaderRequest request = requestOf(plainVertex + "float4 hang() : SV_Target { return 1; }\n");
    request.pixelEntry = "hang";
    const auto nextHelper = [&] { return build(cache, "describe"); };
    std::string errors;
    EXPECT_FALSE(cache.get(request, errors));
    const std::string before = nextHelper();
    ShaderProgramCache::Pending pending;
    cache.begin(request, pending);
    while (!cache.isFinished(pending))
        std::this_thread::yield();
    EXPECT_EQ(pending.errors, "test.hlsl" + words + "ran past 1 s\n");
    EXPECT_EQ(nextHelper(), before);
}

TEST_F(ShaderHelperTest, OneProcessServesUntilItIsOfNoMoreUse)
{
    const pid_t first = helper();
    EXPECT_EQ(helper(), first);
    build("broken(");
    EXPECT_EQ(helper(), first) << "a text that doesn't compile harms nobody";

    const char* const endings[] = {"last", "chatty", "grown"};
    for (const char* name : endings) {
        SCOPED_TRACE(name);
        const pid_t before = helper();
        EXPECT_EQ(build("PS", name), "");
        EXPECT_NE(helper(), before);
        EXPECT_EQ(kill(before, 0), -1) << "neither running nor a zombie";
    }

    const pid_t last = helper();
    kill(last, SIGKILL);
    siginfo_t ended{};
    EXPECT_EQ(waitid(P_PID, static_cast<id_t>(last), &ended, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(build("PS"), "") << "an end between two jobs goes unnoticed";
}

TEST_F(ShaderHelperTest, AnEndBeforeTheFirstJobGoesUnnoticed)
{
    m_cache.prepare();
    const std::string id = std::to_string(getpid());
    pid_t process = 0;
    std::ifstream("/proc/" + id + "/task/" + id + "/children") >> process;
    if (process <= 0)
        GTEST_SKIP() << "the system doesn't tell a process's children";
    std::this_thread::sleep_for(200ms); // it has greeted
    kill(process, SIGKILL);
    siginfo_t ended{};
    EXPECT_EQ(waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(build("PS"), "");
    EXPECT_TRUE(takeProblems().empty());
}

TEST_F(ShaderHelperTest, TheProcessInheritsNothing)
{
    const int leaked = open("/dev/null", O_RDONLY);
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigprocmask(SIG_BLOCK, &blocked, &before);
    const auto handler = signal(SIGPIPE, SIG_IGN);
    const std::string words = build("describe");
    signal(SIGPIPE, handler);
    sigprocmask(SIG_SETMASK, &before, nullptr);
    close(leaked);

    EXPECT_EQ(words.substr(words.find(':')),
              ": descriptors 0 1 2, no signal blocked, none ignored, own group");
}

TEST_F(ShaderHelperTest, WithoutTheProcessTextsAreRefusedWhichIsReportedOnce)
{
    const std::string fake = FAKE_SHADER_HELPER;
    ShaderHelperOptions absent = m_options, stranger = m_options, mute = m_options, other = m_options;
    absent.program = "/nowhere/compiler";
    stranger.program = "/bin/false";
    mute.program = "/bin/sleep"; // for the time that the memory limit says
    mute.startLimit = 50ms;
    other.memoryLimit = 1;
    const std::pair<ShaderHelperOptions, std::string> cases[] = {
        {absent, "/nowhere/compiler: No such file or directory"},
        {stranger, "/bin/false: it ended with exit code 1"},
        {mute, "/bin/sleep: it ran past 50 ms"},
        {other, fake + ": it is of another version"},
    };
    for (const auto& [options, words] : cases) {
        SCOPED_TRACE(words);
        ShaderProgramCache cache("", options);
        cache.prepare();
        for (const char* entry : {"PS", "other"})
            EXPECT_EQ(build(cache, entry),
                      "test.hlsl:1: error: the shader compiler can't be used: " + words + "\n");
        const std::vector<Problem> problems = takeProblems();
        ASSERT_EQ(problems.size(), 1u);
        EXPECT_EQ(problems[0].module, "shader");
        EXPECT_EQ(problems[0].text,
                  "texts can't be compiled, which takes a program beside Helvantine.Renderer.dll: " + words);
    }
    ShaderProgramCache unwanted("", {});
    EXPECT_EQ(build(unwanted, "PS"), "");
    EXPECT_TRUE(takeProblems().empty()) << "it was asked for";
}

TEST_F(ShaderHelperTest, AMissingProgramIsReportedWhileAllTextsAreCompiled)
{
    const auto folder = std::filesystem::temp_directory_path() / ("helper-test-" + std::to_string(getpid()));
    ShaderProgramCache whole(folder.string(), m_options);
    EXPECT_EQ(build(whole, "PS"), "");
    ShaderHelperOptions absent = m_options;
    absent.program = "/nowhere/compiler";
    ShaderProgramCache bereft(folder.string(), absent);
    bereft.prepare();
    EXPECT_EQ(takeProblems().size(), 1u);
    EXPECT_EQ(build(bereft, "PS"), "");
    std::filesystem::remove_all(folder);
}

TEST_F(ShaderHelperTest, TheProgramIsFoundBesideTheLibraryOrWhereTheEnvironmentSays)
{
    const auto folder = std::filesystem::path(getExecutablePath()).parent_path();
    EXPECT_TRUE(std::filesystem::equivalent(findShaderHelper(), folder / "helvantine-shader-compiler"));
    setenv("HELVANTINE_SHADER_COMPILER", "/elsewhere/compiler", 1);
    EXPECT_EQ(findShaderHelper(), "/elsewhere/compiler");
    setenv("HELVANTINE_SHADER_COMPILER", "", 1);
    EXPECT_EQ(findShaderHelper(), "");
    unsetenv("HELVANTINE_SHADER_COMPILER");
}

TEST_F(ShaderHelperTest, AForkedHostHasAProcessOfItsOwn)
{
    const pid_t ours = helper();
    const pid_t child = fork();
    if (child == 0)
        _exit(helper() != ours && build("PS").empty() ? 0 : 1);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(helper(), ours);
}

TEST_F(ShaderHelperTest, TheThreadThatStartedTheProcessMayEnd)
{
    ShaderProgramCache cache("", {findShaderHelper()});
    std::string errors;
    std::thread([&] { cache.get(requestOf(plainVertex + plainPixel), errors); }).join();
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(cache.get(requestOf(plainVertex + plainPixel), errors)) << errors;
}

/// Processes whose parent ends become this one's, which can wait for them then.
TEST_F(ShaderHelperTest, TheProcessEndsWithItsHostEvenInTheMiddleOfAJob)
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t host = fork();
    if (host == 0) {
        std::string errors;
        ShaderHelperOptions options{findShaderHelper()};
        options.timeLimit = 1min;
        ShaderProgramCache cache("", options);
        cache.get(requestOf(plainVertex + plainPixel), errors);
        const bool told = write(ends[1], "x", 1) == 1;
        cache.get(requestOf(endlessText()), errors);
        _exit(told ? 0 : 1);
    }
    char byte = 0;
    ASSERT_EQ(read(ends[0], &byte, 1), 1);
    std::this_thread::sleep_for(50ms);
    const auto start = std::chrono::steady_clock::now();
    kill(host, SIGKILL);
    EXPECT_EQ(waitpid(host, nullptr, 0), host);
    EXPECT_GT(waitpid(-1, nullptr, 0), 0) << "the helper";
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    prctl(PR_SET_CHILD_SUBREAPER, 0);
    close(ends[0]);
    close(ends[1]);
}

} // namespace

} // namespace helvantine
