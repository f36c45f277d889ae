// SPDX-License-Identifier: MIT
#include "ScratchFolder.h"

#include "Interruption.h"

#include <helvantine/core/System.h>
#include <helvantine/testsupport/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <unistd.h>

namespace helvantine::test
{

namespace
{

/// Temporary folders go below one that is the test's own.
class ScratchFolderTest : public testing::Test
{
protected:
    ScratchFolderTest() { setenv("TMPDIR", m_folder.file("").c_str(), 1); }
    ~ScratchFolderTest() override { unsetenv("TMPDIR"); }

    std::string make(const char* name)
    {
        const std::string path = m_folder.file(name);
        std::filesystem::create_directory(path);
        EXPECT_TRUE(writeFile(path + "/texture.png", "something"));
        std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() -
                                                   std::chrono::hours(1));
        return path;
    }

    TemporaryFolder m_folder;
};

} // namespace

TEST_F(ScratchFolderTest, SweepsWhatAKilledProgramLeftAndNothingElse)
{
    const std::string left = make("helvantine-scratch-left");
    const std::string used = make("helvantine-scratch-used");
    const std::string other = make("helvantine-test-other");
    const int lock = open(used.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    {
        const tool::ScratchFolder folder;
        EXPECT_TRUE(std::filesystem::exists(folder.getPath()));
        EXPECT_FALSE(std::filesystem::exists(left));
        EXPECT_TRUE(std::filesystem::exists(used));
        EXPECT_TRUE(std::filesystem::exists(other));
        const tool::ScratchFolder another;
        EXPECT_TRUE(std::filesystem::exists(folder.getPath()));
    }
    close(lock);
}

TEST_F(ScratchFolderTest, GoesWithAProgramThatASignalEnds)
{
    for (const int number : {SIGHUP, SIGTERM, SIGINT}) {
        EXPECT_EXIT(
            {
                std::signal(number, SIG_DFL);
                tool::prepareSignals();
                const tool::ScratchFolder folder;
                writeFile(folder.getPath() + "texture.png", "something");
                std::raise(number);
            },
            testing::KilledBySignal(number), "");
        EXPECT_TRUE(std::filesystem::is_empty(m_folder.getPath())) << number;
    }
}

} // namespace helvantine::test
