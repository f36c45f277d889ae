// SPDX-License-Identifier: MIT
#include "TestFolder.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Library.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>

#include <gtest/gtest.h>

namespace helvantine::test
{

TEST(CopyFile, CopiesIntoNewFoldersAndReplacesOnlyWhenAsked)
{
    const TestFolder folder;
    const std::string source = folder.write("a", std::string(200000, 'a'));
    const std::string target = folder / "new/deep/b";
    std::filesystem::permissions(source, std::filesystem::perms::owner_all);

    EXPECT_TRUE(copyFile(source.c_str(), target.c_str(), true));
    EXPECT_EQ(readFile(target), readFile(source));
    EXPECT_EQ(std::filesystem::status(target).permissions(), std::filesystem::perms::owner_all);
    folder.write("a", "changed");
    EXPECT_FALSE(copyFile(source.c_str(), target.c_str(), false));
    EXPECT_EQ(readFile(target).size(), 200000u);
    EXPECT_TRUE(copyFile(source.c_str(), target.c_str(), true));
    EXPECT_EQ(readFile(target), "changed");
    EXPECT_FALSE(copyFile((folder / "absent").c_str(), target.c_str(), true));
    EXPECT_FALSE(copyFile(folder.path(), target.c_str(), true));
    EXPECT_EQ(readFile(target), "changed");
    EXPECT_EQ(folder.countFiles(), 4u); // a, new, deep, b
}

TEST(CopyFile, OntoItselfChangesNothing)
{
    const TestFolder folder;
    const std::string source = folder.write("sub/a", "bytes");
    std::filesystem::create_symlink("a", folder / "sub/link");
    std::filesystem::create_hard_link(source, folder / "sub/hard");
    for (const char* name : {"sub/a", "sub/../sub//a", "sub/link", "sub/hard"}) {
        EXPECT_TRUE(copyFile(source.c_str(), (folder / name).c_str(), true)) << name;
        EXPECT_EQ(readFile(source), "bytes");
    }
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "sub/link"));
}

TEST(FindFiles, MatchesEitherCaseInOrderAndTellsWholePaths)
{
    const TestFolder folder;
    for (const char* name : {"b.DLL", "a.dll", "ä.dll", "a.dll.txt", "sub/c.dll", "x.d"})
        folder.write(name, "12");
    std::filesystem::create_directories(folder / "folder.dll");
    const auto names = [&](const char* pattern, bool subfolders) {
        std::string list;
        for (const FileInfo& info : findFiles(folder.path(), pattern, subfolders))
            list += info.path.substr(std::string(folder.path()).size()) + " ";
        return list;
    };

    EXPECT_EQ(names("*.dll", false), "/a.dll /b.DLL /ä.dll ");
    EXPECT_EQ(names("*.Dll", true), "/a.dll /b.DLL /sub/c.dll /ä.dll ");
    EXPECT_EQ(names("?.d*l", false), "/a.dll /b.DLL ");
    EXPECT_EQ(names("*a*d*", false), "/a.dll /a.dll.txt ");
    EXPECT_EQ(names("", false), "");
    EXPECT_TRUE(findFiles((folder / "absent").c_str(), "*", true).empty());
    EXPECT_EQ(findFiles(folder.path(), "x.d", false).at(0).size, 2u);
}

TEST(FileUtil, TemporaryReplacedDeletedAndStamped)
{
    const TestFolder folder;
    const std::string first = createTemporaryFile(folder.path(), "Helvantine");
    const std::string second = createTemporaryFile(folder.path(), "Helvantine");
    ASSERT_FALSE(first.empty());
    EXPECT_NE(first, second);
    EXPECT_EQ(getFilename(first.c_str()).substr(0, 10), "Helvantine");
    EXPECT_EQ(createTemporaryFile((folder / "absent").c_str(), "x"), "");

    const std::string target = folder.write("target", "old");
    const FileStamp before = getFileStamp(target.c_str());
    folder.write(getFilename(first.c_str()), "new one");
    EXPECT_TRUE(flushFile(first.c_str()));
    EXPECT_TRUE(replaceFile(first.c_str(), target.c_str()));
    EXPECT_EQ(readFile(target), "new one");
    EXPECT_FALSE(replaceFile(first.c_str(), target.c_str()));
    EXPECT_FALSE(before == getFileStamp(target.c_str()));
    EXPECT_EQ(getFileStamp(target.c_str()).size, 7u);
    EXPECT_FALSE(getFileStamp(folder.path()).exists);

    EXPECT_TRUE(deleteFile(second.c_str()));
    EXPECT_FALSE(deleteFile(second.c_str()));
    EXPECT_FALSE(deleteFile(folder.path()));
    EXPECT_TRUE(makeFolders((folder / "x/y").c_str()));
    EXPECT_FALSE(makeFolders((target + "/z").c_str()));
}

TEST(FileUtil, AProgramIsRunByWhoeverMayReadIt)
{
    const TestFolder folder;
    const std::string path = folder.write("program", "#!/bin/sh\nexit 3\n");
    std::filesystem::permissions(path, std::filesystem::perms(0640));
    EXPECT_TRUE(makeExecutable(path.c_str()));
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0750));
    takeProblems();
    EXPECT_FALSE(makeExecutable((folder / "absent").c_str()));
    EXPECT_FALSE(makeExecutable(folder.path()));
    EXPECT_EQ(takeProblems().size(), 2u);
}

TEST(Report, ACaptureHasWhatItsThreadReports)
{
    takeProblems();
    {
        ProblemCapture outer;
        reportProblem("test", "first");
        {
            ProblemCapture inner;
            reportProblem("test", "second");
            EXPECT_EQ(inner.take().at(0).text, "second");
            reportProblem("test", "third");
            std::thread([] { reportProblem("test", "of another thread"); }).join();
        }
        EXPECT_EQ(takeProblems().at(0).text, "of another thread");
        EXPECT_TRUE(takeProblems().empty());
    }
    const std::vector<Problem> left = takeProblems();
    ASSERT_EQ(left.size(), 2u);
    EXPECT_EQ(left[0].text + ' ' + left[1].text, "first third");
}

TEST(Library, OpensExactlyTheFileNamed)
{
    const TestFolder folder;
    takeProblems();
    const std::string text = folder.write("text.dll", "not a library");
    const std::string broken = folder.write("broken.dll", "\177ELF and no more");
    EXPECT_EQ(loadLibrary(text.c_str()), nullptr);
    EXPECT_EQ(loadLibrary(broken.c_str()), nullptr);
    EXPECT_EQ(loadLibrary("libc.so.6"), nullptr); // no search
    EXPECT_EQ(loadLibrary(nullptr), nullptr);
    EXPECT_EQ(takeProblems().at(0).text, "'" + text + "' is absent or no whole library of this system");

    const std::string core = getPath(getExecutablePath().c_str()) + "/Helvantine.Core.dll";
    void* library = loadLibrary(core.c_str());
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(loadLibrary((getPath(core.c_str()) + "/../bin/Helvantine.Core.dll").c_str()), library);
    EXPECT_EQ(getLibrarySymbol(library, "no such symbol"), nullptr);
    EXPECT_NE(getLibrarySymbol(library, "_ZN10helvantine12g_fileSystemE"), nullptr);
    freeLibrary(library);
    freeLibrary(library);
}

TEST(System, PlacesAreAbsoluteAndTimeGoesForward)
{
    const std::string executable = getExecutablePath();
    EXPECT_EQ(getFilename(executable.c_str()), "helvantine_core_io_tests");
    EXPECT_TRUE(std::filesystem::is_directory(getTemporaryFolder()));
    EXPECT_EQ(findApplicationIcon(), "");
    {
        const std::string icon = executable + ".png";
        std::ofstream(icon) << "picture";
        EXPECT_EQ(findApplicationIcon(), icon);
        std::filesystem::remove(icon);
    }
    setenv("XDG_CACHE_HOME", "/somewhere/", 1);
    EXPECT_EQ(getCacheFolder(), "/somewhere/helvantine");
    setenv("XDG_CACHE_HOME", "relative", 1);
    setenv("HOME", "/home/a", 1);
    EXPECT_EQ(getCacheFolder(), "/home/a/.cache/helvantine");
    unsetenv("HOME");
    EXPECT_EQ(getCacheFolder(), "");
    const double start = getTime();
    EXPECT_GE(getTime(), start);
}

} // namespace helvantine::test
