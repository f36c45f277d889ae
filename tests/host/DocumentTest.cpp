// SPDX-License-Identifier: MIT
#include <helvantine/core/Buffer.h>
#include <helvantine/core/FileSystem.h>
#include <helvantine/core/InStream.h>
#include <helvantine/core/MemoryBuffer.h>
#include <helvantine/core/OutStream.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/ZipVirtualFileSystem.h>
#include <helvantine/core/ZipWrite.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/testsupport/ProjectTest.h>
#include <helvantine/timeline/Composition.h>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

/// An archive with one file.
void writeArchive(const std::string& path, const char* name, const std::string& bytes)
{
    MemoryBuffer buffer(4096, 4096);
    buffer.write(bytes.data(), bytes.size());
    buffer.seek(0);
    void* archive = ZipWrite::open(path.c_str(), true);
    ASSERT_TRUE(ZipWrite::add(archive, name, &buffer));
    ASSERT_TRUE(ZipWrite::close(archive));
}

/// The bytes of a file through the document's stack; empty if it isn't there.
std::string readThroughStack(const std::string& path)
{
    const std::unique_ptr<Buffer> buffer(g_fileSystem->openFile(path.c_str()));
    std::vector<unsigned char> bytes;
    if (buffer)
        readRemaining(*buffer, bytes);
    return std::string(bytes.begin(), bytes.end());
}

/// Reads settings from a record with these fields, at a format version.
ProjectSettings readSettings(int version, int frameRate, const std::vector<uint32_t>& size)
{
    MemoryBuffer buffer(4096, 4096);
    OutStream out;
    out.attach(&buffer);
    out.writeCString("Stored");
    out.writeInt(frameRate);
    for (const uint32_t side : size)
        out.writeUInt(side);
    buffer.seek(0);
    FxSerializer serializer("stored", &buffer, false, nullptr);
    serializer.setVersion(version);
    ProjectSettings settings;
    settings.serialize(serializer);
    EXPECT_FALSE(serializer.failed());
    return settings;
}

/// An application without a device: resources and effects reach the document through it.
class DocumentTest : public ProjectTest
{
};

} // namespace

TEST_F(DocumentTest, StartsWithDefaultsAndOneFolder)
{
    const Document fresh(nullptr, nullptr);
    EXPECT_EQ(fresh.getVersion(), 7u);
    EXPECT_EQ(fresh.getCacheFolder(), "");
    EXPECT_EQ(fresh.getCacheVfs(), nullptr);
    EXPECT_EQ(fresh.getZipVfs(), nullptr);
    EXPECT_EQ(g_fileSystem, fresh.getFileSystem());
    EXPECT_TRUE(fresh.getCompositionManager()->getRoot()->m_isFolder);
    EXPECT_TRUE(fresh.getCompositionManager()->getRoot()->m_compositions.empty());
    const ProjectSettings& settings = *fresh.getProjectSettings();
    EXPECT_EQ(settings.getFrameRate(), 60);
    EXPECT_EQ(settings.getTitle(), "Untitled Project");
    EXPECT_EQ(settings.getWidth(), 1280u);
    EXPECT_EQ(settings.getHeight(), 720u);
}

TEST_F(DocumentTest, ReadsArchiveThenCacheFolderThenPlainPaths)
{
    const TemporaryFolder place;
    const std::string archive = place.file("project.zip");
    writeArchive(archive, "both.txt", "archive");
    const std::string plain = place.file("plain.txt");
    ASSERT_TRUE(writeFile(plain, "plain"));

    Document document(folder().getPath().c_str(), archive.c_str());
    EXPECT_EQ(document.getDocumentPath(), archive);
    EXPECT_EQ(readFile(folder().file("both.txt")), "archive") << "the archive is unpacked";
    ASSERT_TRUE(writeFile(folder().file("both.txt"), "folder"));
    ASSERT_TRUE(writeFile(folder().file("only.txt"), "folder"));

    EXPECT_EQ(readThroughStack("both.txt"), "archive");
    EXPECT_EQ(readThroughStack("only.txt"), "folder");
    EXPECT_EQ(readThroughStack(plain), "plain");

    document.enableVfs(false);
    EXPECT_EQ(readThroughStack("both.txt"), "");
    EXPECT_EQ(readThroughStack("only.txt"), "");
    EXPECT_EQ(readThroughStack(plain), "plain");
    document.enableVfs(true);
    EXPECT_EQ(readThroughStack("both.txt"), "archive");
}

TEST_F(DocumentTest, UnpacksNothingWithoutACacheFolder)
{
    const TemporaryFolder place;
    writeArchive(place.file("project.zip"), "inside.txt", "archive");
    const Document document(nullptr, place.file("project.zip").c_str());
    EXPECT_EQ(document.getCacheVfs(), nullptr);
    EXPECT_EQ(readThroughStack("inside.txt"), "archive");
}

TEST_F(DocumentTest, LeavesOutAnArchiveThatCannotBeRead)
{
    const TemporaryFolder place;
    ASSERT_TRUE(writeFile(place.file("broken.zip"), "no archive at all"));
    for (const char* name : {"broken.zip", "absent.zip"}) {
        const Document document(folder().getPath().c_str(), place.file(name).c_str());
        EXPECT_EQ(document.getZipVfs(), nullptr) << name;
        EXPECT_EQ(document.getDocumentPath(), "") << name;
        EXPECT_NE(document.getCacheVfs(), nullptr) << name;
    }
}

TEST(ProjectSettings, OlderFormatsKeepTheDefaultSize)
{
    const ProjectSettings first = readSettings(1, 25, {});
    EXPECT_EQ(first.getTitle(), "Stored");
    EXPECT_EQ(first.getFrameRate(), 25);
    EXPECT_EQ(first.getWidth(), 1280u);
    EXPECT_EQ(first.getHeight(), 720u);

    const ProjectSettings second = readSettings(2, 25, {640, 360});
    EXPECT_EQ(second.getWidth(), 640u);
    EXPECT_EQ(second.getHeight(), 360u);
}

TEST(ProjectSettings, RefuseAFrameRateOfZero)
{
    takeProblems();
    EXPECT_EQ(readSettings(7, 0, {640, 360}).getFrameRate(), 60);
    const auto problems = takeProblems();
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].module + ": " + problems[0].text, "project: frame rate of 0 refused");
}
