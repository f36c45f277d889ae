// SPDX-License-Identifier: MIT
#include "RawZip.h"
#include "TestFolder.h"

#include <helvantine/core/FileSystem.h>
#include <helvantine/core/MemoryBuffer.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/ZipRead.h>
#include <helvantine/core/ZipVirtualFileSystem.h>
#include <helvantine/core/ZipWrite.h>

#include <gtest/gtest.h>
#include <memory>
#include <sys/stat.h>

namespace helvantine::test
{

namespace
{

using Contents = std::vector<std::pair<std::string, std::string>>;

bool writeZip(const std::string& path, const Contents& contents, bool createNew = true)
{
    void* zip = ZipWrite::open(path.c_str(), createNew);
    for (const auto& [name, bytes] : contents) {
        MemoryBuffer buffer({bytes.begin(), bytes.end()});
        EXPECT_TRUE(ZipWrite::add(zip, name.c_str(), &buffer)) << name;
    }
    return ZipWrite::close(zip);
}

bool extract(const std::string& path, const std::string& folder)
{
    void* zip = ZipRead::open(path.c_str());
    const bool extracted = ZipRead::extractFiles(zip, folder.c_str());
    ZipRead::close(zip);
    return extracted;
}

std::string readEntry(const std::string& path, const char* name)
{
    const SmartRef<ZipVirtualFileSystem> zip(new ZipVirtualFileSystem);
    return zip->open(path.c_str()) ? readAndDelete(zip->openFile(name)) : "(no archive)";
}

const Contents someContents{{"Helvantine.Script", "script"},
                            {"/home/a/t.png", std::string(100000, 'p')},
                            {"C:\\textures\\..\\ü.dds", "umlaut"},
                            {"empty", ""}};

} // namespace

TEST(Zip, WhatIsPackedComesOutUnderTheRuleOfNames)
{
    const TestFolder folder;
    const std::string zip = folder / "document";
    const mode_t mask = umask(027);
    ASSERT_TRUE(writeZip(zip, someContents));
    umask(mask);
    EXPECT_EQ(std::filesystem::status(zip).permissions(), std::filesystem::perms(0640));

    ASSERT_TRUE(extract(zip, folder / "out/deep"));
    EXPECT_EQ(readFile(folder / "out/deep/Helvantine.Script"), "script");
    EXPECT_EQ(readFile(folder / "out/deep/home/a/t.png"), someContents[1].second);
    EXPECT_EQ(readFile(folder / "out/deep/ü.dds"), "umlaut");
    EXPECT_EQ(readFile(folder / "out/deep/empty"), "");

    EXPECT_EQ(readEntry(zip, "\\home\\a\\t.png"), someContents[1].second);
    EXPECT_EQ(readEntry(zip, "../ü.dds"), "umlaut");
    EXPECT_EQ(readEntry(zip, "helvantine.script"), "(null)");
    EXPECT_EQ(readEntry(zip, "home"), "(null)");
}

TEST(Zip, ArchivesBehindOtherBytesReadLikeAnyOther)
{
    const TestFolder folder;
    ASSERT_TRUE(writeZip(folder / "plain", someContents));
    ASSERT_TRUE(writeZip(folder / "none", {}));
    const std::string player = "\177ELF" + std::string(70000, 'x') + "PK\5\6 not yet";
    const std::string release = folder.write("release", player + readFile(folder / "plain"));
    const std::string emptyRelease = folder.write("empty", player + readFile(folder / "none"));

    EXPECT_EQ(readEntry(release, "Helvantine.Script"), "script");
    EXPECT_EQ(readEntry(release, "home/a/t.png"), someContents[1].second);
    EXPECT_TRUE(extract(release, folder / "out"));
    EXPECT_EQ(readFile(folder / "out/ü.dds"), "umlaut");
    EXPECT_EQ(readEntry(emptyRelease, "Helvantine.Script"), "(null)");
}

TEST(Zip, EndRecordsOfLargeArchivesAreRead)
{
    // A small archive with the end that archives beyond 32 bits have.
    std::string zip = makeRawZip({{"a", "alpha"}, {"b", "beta"}});
    const std::string end = zip.substr(zip.size() - 22);
    zip.resize(zip.size() - end.size());
    const auto number = [&](std::size_t at, int size) {
        std::uint64_t value = 0;
        for (int i = size; i-- > 0;)
            value = value << 8 | static_cast<unsigned char>(end[at + static_cast<std::size_t>(i)]);
        return value;
    };
    const std::size_t largeEnd = zip.size();
    appendNumber(zip, 0x06064b50, 4);
    appendNumber(zip, 44, 8);                           // of what follows
    appendNumber(zip, std::uint64_t{45} << 16 | 45, 4); // versions
    appendNumber(zip, 0, 8);                            // disks
    appendNumber(zip, 2, 8);
    appendNumber(zip, 2, 8);
    appendNumber(zip, number(12, 4), 8);
    appendNumber(zip, number(16, 4), 8);
    appendNumber(zip, 0x07064b50, 4);
    appendNumber(zip, 0, 4);
    appendNumber(zip, largeEnd, 8);
    appendNumber(zip, 1, 4);
    zip += end.substr(0, 8) + std::string(12, '\xFF') + std::string(2, '\0');

    const TestFolder folder;
    const std::string large = folder.write("large", zip);
    EXPECT_EQ(readEntry(large, "a"), "alpha");
    EXPECT_EQ(readEntry(large, "b"), "beta");
    zip[largeEnd] ^= 1;
    EXPECT_EQ(readEntry(folder.write("damaged", zip), "a"), "(no archive)");
}

TEST(Zip, WhatIsNoArchiveIsRefusedWithWords)
{
    const TestFolder folder;
    const std::string good = makeRawZip({{"a", "bytes"}});
    takeProblems();
    const std::string text = folder.write("text", "no archive");
    EXPECT_EQ(ZipRead::open(text.c_str()), nullptr);
    EXPECT_EQ(takeProblems().at(0).text, "'" + text + "' with 10 bytes is no archive: no end record");

    for (std::size_t size = 0; size < good.size(); ++size) {
        void* zip = ZipRead::open(folder.write("cut", good.substr(0, size)).c_str());
        EXPECT_EQ(zip, nullptr) << size;
        ZipRead::close(zip);
    }
    EXPECT_EQ(ZipRead::open((folder / "absent").c_str()), nullptr);
    EXPECT_EQ(ZipRead::open(nullptr), nullptr);
    EXPECT_FALSE(ZipRead::extractFiles(nullptr, folder.path()));
    EXPECT_FALSE(ZipWrite::close(nullptr));
}

TEST(Zip, HostileEntriesAreRefusedBeforeTheyAreWritten)
{
    const std::vector<std::pair<RawEntry, std::string>> cases{
        {{"../evil", "x"}, "would leave its folder"},
        {{"a/../../evil", "x"}, "would leave its folder"},
        {{"..\\evil", "x"}, "would leave its folder"},
        {{"/tmp/evil", "x"}, "would leave its folder"},
        {{"C:evil", "x"}, "would leave its folder"},
        {{"evil", "/etc/passwd", 0120777}, "is a link or special file"},
        {{"evil", "", 0010644}, "is a link or special file"},
        {{"evil", "x", 0, 0x7FFFFFFF}, "unpacks 1 bytes to 2147483647, more than 1000 to 1"},
    };
    for (const auto& [entry, words] : cases) {
        const TestFolder folder;
        const std::string zip =
            folder.write("zip", makeRawZip({{"good", "good"}, entry, {"later", "later"}}));
        takeProblems();
        EXPECT_FALSE(extract(zip, folder / "in/out")) << entry.name;

        ASSERT_FALSE(takeProblems().empty());
        EXPECT_EQ(folder.countFiles(), 4u) << entry.name; // zip, in, out, good
        EXPECT_EQ(readEntry(zip, entry.name.c_str()), "(null)");
        EXPECT_EQ(readEntry(zip, "later"), "later");
        extract(zip, folder / "in/out");
        EXPECT_EQ(takeProblems().back().text, "'" + entry.name + "' in '" + zip + "' " + words);
    }
}

TEST(Zip, DamagedBytesLeaveNoHalfFileAndLinksInTheTargetAreNotFollowedOut)
{
    const TestFolder folder;
    std::string bytes = makeRawZip({{"./", ""}, {"sub/", ""}, {"sub/a", "contents"}});
    const std::string good = folder.write("good", bytes);
    bytes[bytes.find("contents")] ^= 1;
    const std::string bad = folder.write("bad", bytes);

    EXPECT_FALSE(extract(bad, folder / "out"));
    EXPECT_FALSE(std::filesystem::exists(folder / "out/sub/a"));
    EXPECT_EQ(readEntry(bad, "sub/a"), "(null)");

    std::filesystem::create_directories(folder / "elsewhere");
    std::filesystem::create_directories(folder / "linked");
    std::filesystem::create_symlink(folder / "elsewhere", folder / "linked/sub");
    EXPECT_FALSE(extract(good, folder / "linked"));
    EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere/a"));
}

TEST(Zip, EqualContentsGiveEqualBytes)
{
    const TestFolder folder;
    ASSERT_TRUE(writeZip(folder / "a", someContents));
    setenv("TZ", "Pacific/Auckland", 1);
    tzset();
    sleep(1);
    ASSERT_TRUE(writeZip(folder / "b", someContents));
    unsetenv("TZ");
    tzset();
    EXPECT_EQ(readFile(folder / "a"), readFile(folder / "b"));
}

TEST(Zip, UniformContentsStayReadable)
{
    const TestFolder folder;
    const std::string black(8 << 20, '\0'); // packs to less than a thousandth
    ASSERT_TRUE(writeZip(folder / "zip", {{"black", black}, {"b", "text"}}));
    EXPECT_EQ(readEntry(folder / "zip", "black"), black);
    EXPECT_TRUE(extract(folder / "zip", folder / "out"));
}

TEST(Zip, BytesAreTakenAtOnceAndNamesOnlyOnce)
{
    const TestFolder folder;
    const std::string path = folder.write("a", "head and tail");
    void* zip = ZipWrite::open((folder / "zip").c_str(), true);
    MemoryBuffer buffer;
    buffer.write("head and tail", 13);
    buffer.seek(9);
    EXPECT_TRUE(ZipWrite::add(zip, "part", &buffer));
    buffer.seek(0);
    buffer.write("XXXXXXXXXXXXX", 13);
    EXPECT_TRUE(ZipWrite::add(zip, path.c_str()));
    EXPECT_FALSE(ZipWrite::add(zip, "x/../part", &buffer));
    EXPECT_FALSE(ZipWrite::add(zip, "..", &buffer));
    EXPECT_FALSE(ZipWrite::add(zip, (folder / "absent").c_str()));
    std::filesystem::remove(path);
    EXPECT_TRUE(ZipWrite::close(zip));

    EXPECT_EQ(readEntry(folder / "zip", "part"), "tail");
    EXPECT_EQ(readEntry(folder / "zip", path.c_str()), "head and tail");
    ASSERT_TRUE(writeZip(folder / "zip", {{"more", "m"}}, false));
    EXPECT_EQ(readEntry(folder / "zip", "part"), "tail");
    EXPECT_EQ(readEntry(folder / "zip", "more"), "m");
}

TEST(Zip, ASaveThatFailsOrIsAbandonedKeepsTheOldFile)
{
    const TestFolder folder;
    const std::string path = folder.write("document", "old");
    void* zip = ZipWrite::open(path.c_str(), true);
    MemoryBuffer buffer;
    EXPECT_TRUE(ZipWrite::add(zip, "a", &buffer));
    EXPECT_EQ(readFile(path), "old"); // what stays when the process is killed here
    void* abandoned = ZipWrite::open(path.c_str(), true);
    EXPECT_TRUE(ZipWrite::add(abandoned, "a", &buffer));
    ZipWrite::discard(abandoned);

    std::filesystem::remove(path);
    folder.write("document/in the way", "x"); // a folder can't be replaced
    takeProblems();
    EXPECT_FALSE(ZipWrite::close(zip));
    EXPECT_EQ(takeProblems().back().text, "can't put a new file in place of '" + path + "': Is a directory");
    EXPECT_EQ(folder.countFiles(), 2u); // nothing is left beside it
    EXPECT_EQ(ZipWrite::open((folder / "no/folder").c_str(), true), nullptr);
}

TEST(Zip, AFileThatIsThereButCantBeReadKeepsTheOldFile)
{
    const TestFolder folder;
    std::string bytes = makeRawZip({{"a", "contents"}});
    bytes[bytes.find("contents")] ^= 1;
    const std::unique_ptr<FileSystem> stack(createFileSystem());
    const SmartRef<ZipVirtualFileSystem> damaged(new ZipVirtualFileSystem);
    ASSERT_TRUE(damaged->open(folder.write("damaged", bytes).c_str()));
    stack->addVfs(damaged.get());

    const std::string path = folder.write("document", "old");
    for (const auto& [name, written] : {std::pair("absent", true), std::pair("a", false)}) {
        void* zip = ZipWrite::open(path.c_str(), true);
        EXPECT_FALSE(ZipWrite::add(zip, name));
        EXPECT_EQ(ZipWrite::close(zip), written) << name;
        EXPECT_EQ(readFile(path) == "old", !written) << name;
        folder.write("document", "old");
    }
}

TEST(Zip, AShortSourceKeepsTheOldFile)
{
    struct ShortBuffer : MemoryBuffer
    {
        std::uint64_t getSize() const override { return 100; }
    };
    const TestFolder folder;
    const std::string path = folder.write("document", "old");
    void* zip = ZipWrite::open(path.c_str(), true);
    ShortBuffer buffer;
    EXPECT_FALSE(ZipWrite::add(zip, "a", &buffer));
    EXPECT_FALSE(ZipWrite::close(zip));
    EXPECT_EQ(readFile(path), "old");
    EXPECT_EQ(folder.countFiles(), 1u);
}

TEST(ZipFiles, ClosedTheyHoldNothingAndOpenAgainOnTheNewFile)
{
    const TestFolder folder;
    const std::string path = folder / "zip";
    ASSERT_TRUE(writeZip(path, {{"a", "old"}}));
    const SmartRef<ZipVirtualFileSystem> zip(new ZipVirtualFileSystem);
    ASSERT_TRUE(zip->open(path.c_str()));
    const std::unique_ptr<Buffer> kept(zip->openFile("a"));
    zip->close();

    for (const auto& handle : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        EXPECT_NE(std::filesystem::read_symlink(handle.path(), gone), path);
    }
    EXPECT_EQ(zip->openFile("a"), nullptr);
    EXPECT_EQ(zip->createFile("a"), nullptr);
    ASSERT_TRUE(writeZip(path, {{"a", "new"}}));
    ASSERT_TRUE(zip->open(path.c_str()));
    EXPECT_EQ(readAndDelete(zip->openFile("a")), "new");
    EXPECT_STREQ(kept->getName(), "a");
    EXPECT_TRUE(kept->seek(1));
    char rest[2] = {};
    EXPECT_EQ(kept->read(rest, 2), 2u);
    EXPECT_EQ(std::string(rest, 2), "ld");
}

} // namespace helvantine::test
