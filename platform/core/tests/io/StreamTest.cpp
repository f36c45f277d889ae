// SPDX-License-Identifier: MIT
#include "TestFolder.h"

#include <helvantine/core/InStream.h>
#include <helvantine/core/MemoryBuffer.h>
#include <helvantine/core/OutAsciiStream.h>
#include <helvantine/core/OutStream.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/UniqueId.h>
#include <helvantine/core/Vec4.h>

#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace helvantine::test
{

namespace
{

/// One value of each kind, and what a reader made of them.
struct Record
{
    bool flag = false;
    std::int32_t number = 0;
    std::uint32_t count = 0;
    float value = 0;
    std::string text, cText;
    unsigned char id[16] = {};
    float vector[4] = {};

    bool operator==(const Record&) const = default;
};

Record makeRecord()
{
    return {true,
            -2,
            0xFEDCBA98,
            -0.5f,
            std::string("a\0b", 3),
            "Grün",
            {1, 2, 3, 4, 5, 6, 7, 8, 9},
            {1, -2, 3, 4e20f}};
}

void writeRecord(Buffer& buffer, const Record& record)
{
    OutStream out;
    out.attach(&buffer);
    out.writeBool(record.flag);
    out.writeInt(record.number);
    out.writeUInt(record.count);
    out.writeFloat(record.value);
    out.writeString(record.text);
    out.writeCString(record.cText.c_str());
    UniqueId id;
    std::memcpy(static_cast<void*>(&id), record.id, sizeof(id));
    out.writeUniqueId(id);
    Vec4 vector;
    std::memcpy(static_cast<void*>(&vector), record.vector, sizeof(vector));
    out.writeVec4(vector);
    EXPECT_FALSE(out.failed());
}

Record readRecord(InStream& in)
{
    Record record;
    UniqueId id;
    Vec4 vector;
    in.readBool(record.flag);
    in.readInt(record.number);
    in.readUInt(record.count);
    in.readFloat(record.value);
    in.readString(record.text);
    in.readString(record.cText);
    in.readUniqueId(id);
    in.readVec4(vector);
    std::memcpy(record.id, &id, sizeof(id));
    std::memcpy(record.vector, &vector, sizeof(vector));
    return record;
}

std::vector<unsigned char> writeRecordBytes()
{
    MemoryBuffer buffer;
    writeRecord(buffer, makeRecord());
    return {buffer.getData(), buffer.getData() + buffer.getSize()};
}

} // namespace

TEST(Streams, EveryKindOfValueComesBackAndLiesAsDocumentsRelyOn)
{
    MemoryBuffer buffer(1, 1);
    writeRecord(buffer, makeRecord());

    const unsigned char head[] = {1, 0xFE, 0xFF, 0xFF, 0xFF, 0x98, 0xBA, 0xDC, 0xFE, 0,
                                  0, 0,    0xBF, 3,    0,    0,    0,    'a',  0,    'b'};
    ASSERT_EQ(buffer.getSize(), 1 + 4 + 4 + 4 + (4 + 3) + (4 + 5) + 16 + 16u);
    EXPECT_EQ(std::memcmp(buffer.getData(), head, sizeof(head)), 0);

    buffer.seek(0);
    InStream in(false);
    in.attach(&buffer);
    EXPECT_EQ(readRecord(in), makeRecord());
    EXPECT_EQ(in.bytesLeft(), 0u);
    EXPECT_FALSE(in.failed());
}

TEST(Streams, AStreamCutAtAnyByteFailsOnceAndThenYieldsNothing)
{
    const std::vector<unsigned char> whole = writeRecordBytes();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        MemoryBuffer buffer({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});
        InStream in(false);
        in.attach(&buffer);
        readRecord(in);
        const std::string words = in.failureText();

        EXPECT_TRUE(in.failed()) << size;
        EXPECT_LE(in.failureOffset(), size);
        EXPECT_EQ(readRecord(in), Record()) << size;
        EXPECT_EQ(in.failureText(), words);
        EXPECT_EQ(in.bytesLeft(), 0u);
    }
}

TEST(Streams, FailuresTellWhatWhereAndHowMuchIsLeft)
{
    MemoryBuffer buffer;
    OutStream out;
    out.attach(&buffer);
    for (int i = 0; i < 27; ++i)
        out.writeInt(i);
    out.writeUInt(0xFFFFFFFF);
    out.writeBytes("0123456789012345678901234567890123456", 37);

    InStream in(false);
    in.setModule("script");
    in.attach(&buffer);
    std::uint32_t number = 1;
    in.readUInt(number);
    EXPECT_EQ(in.failureText(), "script: integer of 4 bytes at offset 149, 0 bytes left");
    EXPECT_EQ(number, 0u);

    buffer.seek(108);
    in.attach(&buffer);
    std::string text = "old";
    in.readString(text);
    EXPECT_EQ(in.failureText(), "script: string of 4294967295 bytes at offset 112, 37 bytes left");
    EXPECT_EQ(in.failureOffset(), 112u);
    EXPECT_EQ(text, "");

    buffer.seek(4);
    in.attach(&buffer);
    EXPECT_FALSE(in.failed());
    in.fail("count of 70000 nodes");
    in.fail("something later");
    EXPECT_EQ(in.failureText(), "script: count of 70000 nodes at offset 4, 145 bytes left");
}

TEST(Streams, WithoutABufferNothingIsWrittenAndReadingFails)
{
    OutStream out;
    out.writeInt(1);
    InStream in(false);
    std::int32_t value = 7;
    in.readInt(value);

    EXPECT_TRUE(out.failed());
    EXPECT_TRUE(in.failed());
    EXPECT_EQ(value, 0);
}

TEST(Streams, TextStreamWritesWhatACStringReaderExpects)
{
    MemoryBuffer buffer(4096, 4096);
    OutAsciiStream out(&buffer);
    out.writeString("Materials: ");
    out.writeInt(-12);
    out.writeChar('\n');
    out.writeString(std::string("Kugel"));
    out.writeChar(0);

    EXPECT_STREQ(reinterpret_cast<const char*>(buffer.getData()), "Materials: -12\nKugel");
}

TEST(Buffers, MemoryOverwritesInTheMiddleAndGrowsAtTheEnd)
{
    MemoryBuffer buffer(2, 3);
    buffer.write("abcdef", 6);
    EXPECT_TRUE(buffer.seek(4));
    buffer.write("XYZ", 3);

    EXPECT_FALSE(buffer.seek(8));
    EXPECT_EQ(buffer.tell(), 7u);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(buffer.getData()), 7), "abcdXYZ");
    EXPECT_STREQ(buffer.getName(), "");
}

TEST(Files, MixedReadsWritesAndSeeksSeeOneFile)
{
    const TestFolder folder;
    const std::string path = folder / "mixed";
    std::string expected(200000, '.'); // more than one block
    WinFile file;
    ASSERT_TRUE(file.create(path.c_str()));
    ASSERT_EQ(file.write(expected.data(), expected.size()), expected.size());
    for (std::size_t at : {199990u, 0u, 65530u, 65535u, 130000u, 3u}) {
        file.seek(at);
        file.write("0123456789", 10);
        expected.replace(at, 10, "0123456789");
        char back[30] = {};
        const std::size_t from = at < 10 ? 0 : at - 10;
        file.seek(from);
        const std::size_t got = file.read(back, sizeof(back));
        EXPECT_EQ(std::string(back, got), expected.substr(from, 30)) << at;
    }

    file.seek(0); // a saver hands the same file on without closing it
    std::vector<unsigned char> bytes;
    ASSERT_TRUE(readRemaining(file, bytes));
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), expected.begin(), expected.end()));
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(readFile(path), expected);
    EXPECT_STREQ(file.getName(), path.c_str());
}

TEST(Files, WhatIsNoRegularFileIsRefusedWithoutWaiting)
{
    const TestFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    takeProblems();
    for (const std::string& path : {std::string(folder.path()), pipe, std::string("/dev/null")}) {
        WinFile file;
        EXPECT_FALSE(file.open(path.c_str())) << path;
        EXPECT_FALSE(file.create(path.c_str())) << path;
        const std::vector<Problem> problems = takeProblems();
        ASSERT_EQ(problems.size(), 2u);
        EXPECT_EQ(problems[0].text, "can't open '" + path + "': not a regular file");
    }
    WinFile file;
    EXPECT_FALSE(file.open((folder / "absent").c_str()));
    EXPECT_FALSE(file.open(nullptr));
    EXPECT_TRUE(takeProblems().empty());
}

TEST(Files, LostWritesAreNoticed)
{
    const TestFolder folder;
    WinFile readOnly;
    ASSERT_TRUE(readOnly.open(folder.write("a", "text").c_str()));
    OutStream out;
    out.attach(&readOnly);
    out.writeInt(1);
    EXPECT_TRUE(out.failed());

    rlimit old;
    getrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{1000, old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small); // as full as a disk can be
    WinFile file;
    ASSERT_TRUE(file.create((folder / "b").c_str()));
    const std::string bytes(5000, 'x');
    file.write(bytes.data(), bytes.size());
    EXPECT_FALSE(file.flush());
    EXPECT_FALSE(file.close());
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_EQ(takeProblems().back().text, "can't write to '" + (folder / "b") + "': File too large");
}

TEST(Report, KeepsTheLatestAndNothingTwice)
{
    takeProblems();
    for (int i = 0; i < 300; ++i) {
        reportProblem("zip", "entry " + std::to_string(i));
        reportProblem("zip", "zip: entry " + std::to_string(i)); // the same words, prefix included
    }
    reportProblem("shader", std::string(50000, 'x'));

    const std::vector<Problem> problems = takeProblems();
    ASSERT_EQ(problems.size(), 256u);
    EXPECT_EQ(problems.front().text, "entry 45");
    EXPECT_EQ(problems.back().module, "shader");
    EXPECT_EQ(problems.back().text.size(), 16384u);
    EXPECT_TRUE(takeProblems().empty());
}

} // namespace helvantine::test
