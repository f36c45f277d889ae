// SPDX-License-Identifier: MIT
#include "TestFolder.h"

#include <helvantine/core/FileSystem.h>
#include <helvantine/core/WinVirtualFileSystem.h>

#include <gtest/gtest.h>
#include <memory>

namespace helvantine::test
{

TEST(FileStack, TheFirstEnabledSystemThatHasTheFileWins)
{
    const TestFolder folder;
    folder.write("first/a", "first");
    folder.write("second/a", "second");
    folder.write("second/b", "second b");
    const std::unique_ptr<FileSystem> stack(createFileSystem());
    ASSERT_EQ(g_fileSystem, stack.get());
    const SmartRef<VirtualFileSystem> first(new WinVirtualFileSystem((folder / "first").c_str()));
    const SmartRef<VirtualFileSystem> second(new WinVirtualFileSystem((folder / "second/").c_str()));
    stack->addVfs(second.get());
    stack->addVfsAtTop(first.get());

    EXPECT_EQ(readAndDelete(openFile("a")), "first");
    EXPECT_EQ(readAndDelete(openFile("b")), "second b");
    first->setEnabled(false);
    EXPECT_EQ(readAndDelete(openFile("a")), "second");
    first->setEnabled(true);
    stack->removeVfs(second.get());
    stack->removeVfs(second.get());
    EXPECT_EQ(readAndDelete(openFile("b")), "(null)");
}

TEST(FileStack, PlainPathsServeWhenThereIsNoStackAndCreateWhereThePathSays)
{
    const TestFolder folder;
    const std::string path = folder / "plain";
    {
        const std::unique_ptr<FileSystem> stack(createFileSystem());
        stack->addVfs(new WinVirtualFileSystem((folder / "cache").c_str()));
        stack->addVfs(new WinVirtualFileSystem(nullptr));
        const std::unique_ptr<Buffer> file(stack->createFile(path.c_str()));
        ASSERT_NE(file, nullptr);
        file->write("text", 4);

        EXPECT_EQ(stack->createFile((folder / "no/such/folder").c_str()), nullptr);
        EXPECT_FALSE(std::filesystem::exists(folder / "cache")); // it doesn't land elsewhere
        EXPECT_EQ(stack->openFileInside(path.c_str()), nullptr);
    }
    EXPECT_EQ(g_fileSystem, nullptr);
    EXPECT_EQ(readAndDelete(openFile(path.c_str())), "text");
}

TEST(FileStack, ANewStackTakesOverAndAnOldOneGoesQuietly)
{
    std::unique_ptr<FileSystem> old(createFileSystem());
    const std::unique_ptr<FileSystem> current(createFileSystem());
    old.reset();
    EXPECT_EQ(g_fileSystem, current.get());
}

TEST(RootedFolder, NoLookupLeavesItsRoot)
{
    const TestFolder folder;
    folder.write("secret", "secret");
    folder.write("root/secret", "own");
    folder.write("root/sub/t.png", "picture");
    std::filesystem::create_symlink(folder.path(), folder / "root/out");
    std::filesystem::create_symlink(folder / "made", folder / "root/dangling");
    const SmartRef<VirtualFileSystem> root(new WinVirtualFileSystem((folder / "root").c_str()));

    for (const char* path : {"sub/t.png", "/sub/t.png", "sub\\t.png", "C:\\sub\\t.png", "../../sub//./t.png",
                             "x/../sub/t.png", "./D:/sub/t.png"})
        EXPECT_EQ(readAndDelete(root->openFile(path)), "picture") << path;
    for (const char* path : {"../secret", "sub/../../secret", "..\\secret", "C:..\\..\\secret"})
        EXPECT_EQ(readAndDelete(root->openFile(path)), "own") << path;
    for (const char* path : {"out/secret", "SUB/t.png", "", ".", "..", "sub"})
        EXPECT_EQ(root->openFile(path), nullptr) << path;
    for (const char* path : {"out/made", "dangling"})
        EXPECT_EQ(root->createFile(path), nullptr) << path;
    EXPECT_FALSE(std::filesystem::exists(folder / "made"));

    readAndDelete(root->createFile("../new/deep/file"));
    EXPECT_EQ(readFile(folder / "root/new/deep/file"), "");

    for (const char* name : {"absent", "not/there/"}) {
        const SmartRef<VirtualFileSystem> absent(new WinVirtualFileSystem((folder / name).c_str()));
        readAndDelete(absent->createFile("deep/file"));
        EXPECT_EQ(readFile(folder / name + "/deep/file"), "") << "the root is made with it";
    }
}

} // namespace helvantine::test
