// SPDX-License-Identifier: MIT
#include "image/PictureFile.h"

#include <helvantine/core/FileSystem.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/WinVirtualFileSystem.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/testsupport/RenderingTest.h>
#include <helvantine/testsupport/TemporaryFolder.h>

namespace helvantine::test
{
namespace
{

class TextureCacheTest : public RenderingTest
{
protected:
    std::string write(const std::string& name, unsigned width, unsigned height)
    {
        const Bytes file = encodePng(width, height, makePattern(width, height));
        const std::string path = m_folder.file(name);
        EXPECT_TRUE(writeFile(path, std::string(file.begin(), file.end())));
        return path;
    }

    TemporaryFolder m_folder;
};

TEST_F(TextureCacheTest, UsersOfOnePathShareATextureWhileItLives)
{
    const std::string path = write("a.png", 7, 5);

    SmartRef<Texture> first = loadTextureFromCache(path.c_str());
    ASSERT_TRUE(first);
    EXPECT_EQ(first->getWidth(), 7u);
    EXPECT_EQ(first->getHeight(), 5u);
    const std::string otherSpelling = m_folder.getPath() + ".//a.png";
    EXPECT_EQ(loadTextureFromCache(otherSpelling.c_str()), first.get());
    EXPECT_EQ(first->getRefCount(), 1) << "the cache counts no reference";

    const SmartRef<Texture> other = loadTextureFromCache(write("b.png", 7, 5).c_str());
    EXPECT_NE(other.get(), first.get());
}

TEST_F(TextureCacheTest, AChangedFileIsReadAnewAndUsersOfTheOldKeepIt)
{
    const std::string path = write("a.png", 7, 5);
    SmartRef<Texture> old = loadTextureFromCache(path.c_str());
    write("a.png", 9, 3);
    SmartRef<Texture> fresh = loadTextureFromCache(path.c_str());
    ASSERT_TRUE(old && fresh);
    EXPECT_EQ(old->getWidth(), 7u);
    EXPECT_EQ(fresh->getWidth(), 9u);
    old = nullptr;
    EXPECT_EQ(loadTextureFromCache(path.c_str()), fresh.get()) << "the old one leaves the new one in place";
}

TEST_F(TextureCacheTest, ReadsThroughTheFileSystem)
{
    write("a.png", 7, 5);
    const std::unique_ptr<FileSystem> files(createFileSystem());
    files->addVfs(new WinVirtualFileSystem(m_folder.getPath().c_str()));
    const SmartRef<Texture> texture = loadTextureFromCache("a.png");
    ASSERT_TRUE(texture);
    EXPECT_EQ(texture->getWidth(), 7u);
}

TEST_F(TextureCacheTest, SaysWhyAFileIsRefused)
{
    const std::string missing = m_folder.file("missing.png");
    const std::string broken = m_folder.file("broken.png");
    writeFile(broken, "no picture at all");
    EXPECT_EQ(loadTextureFromCache(missing.c_str()), nullptr);
    EXPECT_EQ(loadTextureFromCache(broken.c_str()), nullptr);
    EXPECT_EQ(loadTextureFromCache(nullptr), nullptr);
    std::vector<std::string> texts;
    for (const Problem& problem : takeProblems()) {
        if (problem.module == "texture")
            texts.push_back(problem.text);
    }
    EXPECT_EQ(texts, (std::vector<std::string>{missing + ": no such file",
                                               broken + ": not a png, bmp, tga, jpg or dds file"}));
}

TEST_F(TextureCacheTest, WhatIsDecodedBesideTheFramesIsReadyWhenItIsDone)
{
    const auto load = [](const std::string& path) {
        auto loading = beginTextureLoading(path.c_str());
        while (!loading->isDone())
            ;
        return loading;
    };
    const std::string path = write("a.png", 7, 5);
    const std::string broken = m_folder.file("broken.png");
    writeFile(broken, "no picture at all");

    const auto loading = load(path);
    EXPECT_EQ(loading->getErrorText(), "");
    const SmartRef<Texture> texture = loadTextureFromCache(path.c_str());
    ASSERT_TRUE(texture);
    EXPECT_EQ(texture->getWidth(), 7u);
    EXPECT_EQ(texture->getRefCount(), 2) << "it is the one that was decoded";
    const auto again = load(path);
    EXPECT_EQ(texture->getRefCount(), 3) << "and isn't decoded again";
    EXPECT_EQ(load(broken)->getErrorText(), broken + ": not a png, bmp, tga, jpg or dds file");
    EXPECT_EQ(load("nowhere.png")->getErrorText(), "nowhere.png: no such file");
}

TEST_F(TextureCacheTest, TexturesOfARendererThatIsGoneAreNotHandedOut)
{
    const std::string path = write("a.png", 7, 5);
    const SmartRef<Texture> old = loadTextureFromCache(path.c_str());
    TearDown();
    EXPECT_EQ(loadTextureFromCache(path.c_str()), nullptr);
    SetUp();
    const SmartRef<Texture> fresh = loadTextureFromCache(path.c_str());
    ASSERT_TRUE(fresh);
    EXPECT_NE(fresh.get(), old.get());
    EXPECT_EQ(old->getWidth(), 7u);
}

} // namespace
} // namespace helvantine::test
