// SPDX-License-Identifier: MIT
#include <helvantine/serialize/FxSerializer.h>

#include <helvantine/core/Buffer.h>
#include <helvantine/core/FileSystem.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/ZipWrite.h>

#include <cstring>
#include <utility>

namespace helvantine
{

namespace
{

constexpr const char* s_module = "script";
constexpr std::size_t s_maxNameBytes = 256; // of what texts quote; in a document they may be of any length
constexpr std::size_t s_maxPathBytes = 4096;

/// A name, or the begin of a long one, up to a whole character of UTF-8.
std::string quote(const std::string& name)
{
    if (name.size() <= s_maxNameBytes)
        return name;
    std::size_t size = s_maxNameBytes;
    while (size > 0 && (static_cast<unsigned char>(name[size]) & 0xC0) == 0x80)
        --size;
    return name.substr(0, size) + "...";
}

} // namespace

FxSerializer::FxSerializer(const char* path, Buffer* buffer, bool writing, void* zip)
    : m_writing(writing), m_path(path ? path : ""), m_zip(zip), m_buffer(buffer)
{
    m_in.setModule(s_module);
    if (writing)
        m_out.attach(buffer);
    else
        m_in.attach(buffer);
}

FxSerializer::~FxSerializer() = default;

void FxSerializer::addFileToZip(const char* name)
{
    if (!m_zip)
        return;
    const std::string valid = makeValidFilename(name);
    if (m_zipFiles.contains(valid))
        return;
    m_zipFiles[valid] = 1;
    if (g_fileSystem && !g_fileSystem->hasFile(valid.c_str()))
        m_missingFiles.push_back(valid);
    else
        ZipWrite::add(m_zip, valid.c_str());
}

void FxSerializer::tick()
{
    if (m_writing) {
        ++m_objectCount;
    } else if (m_listener) {
        ++m_objectCount;
        m_listener->onProgress(m_objectCount, m_objectTotalCount);
    }
}

bool FxSerializer::readCount(std::uint32_t& count, std::uint32_t bytesPerItem, const char* what)
{
    m_in.readUInt(count);
    if (checkCount(count, bytesPerItem, what))
        return true;
    count = 0;
    return false;
}

bool FxSerializer::checkCount(std::uint32_t count, std::uint32_t bytesPerItem, const char* what)
{
    if (std::uint64_t{count} * bytesPerItem > m_in.bytesLeft())
        fail("count of " + std::to_string(count) + " " + what);
    return !failed();
}

void FxSerializer::fail(const std::string& what, const char* expected, LoadProblem::Kind kind)
{
    if (!m_in.failed()) {
        m_expected = expected;
        m_failureKind = kind;
    }
    m_in.fail(what);
    failed();
}

/// Whether an archive could hardly pack the id, because most of its words are none that stood in the latest ids.
bool FxSerializer::isNew(const UniqueId& id)
{
    constexpr unsigned hashBits = 16; // further back than packing looks
    constexpr int generated = 3;      // words of four; what is counted up has one that is new, or two
    m_idWords.resize(std::size_t(1) << hashBits);
    std::uint32_t words[4];
    static_assert(sizeof(words) == sizeof(id));
    std::memcpy(words, &id, sizeof(id));
    int newWords = 0;
    for (const std::uint32_t word : words) {
        std::uint32_t& known = m_idWords[word * 2654435761u >> (32 - hashBits)];
        newWords += known != word ? 1 : 0;
        known = word;
    }
    return newWords >= generated;
}

void FxSerializer::chargeMissing(const UniqueId& id, std::uint64_t bytes)
{
    if (bytes == 0 || isNew(id))
        return;
    m_missingBytes += bytes;
    const std::uint64_t scriptBytes = m_buffer ? m_buffer->getSize() : 0;
    if (m_missingBytes > s_maxMissingBytes + scriptBytes)
        fail("objects with " + std::to_string(m_missingBytes) + " bytes that their records leave out",
             "records that hold their objects' properties");
}

bool FxSerializer::failed()
{
    if (m_in.failed() && m_failureText.empty()) {
        m_failureText = m_in.failureText() + describeRecord();
        reportProblem(s_module, m_failureText);
        const std::string left = "at most " + std::to_string(m_in.failureBytesLeft()) + " bytes";
        LoadProblem problem =
            describeProblem(m_in.failureReason(), m_expected ? m_expected : left, m_failureKind);
        problem.offset = m_in.failureOffset();
        problem.endsReading = true;
        addProblem(std::move(problem));
    }
    return m_in.failed();
}

void FxSerializer::warn(const std::string& what, const char* expected, LoadProblem::Kind kind)
{
    const std::uint64_t offset = m_buffer ? m_buffer->tell() : 0;
    reportProblem(s_module, what + " at offset " + std::to_string(offset) + describeRecord());
    note(what, expected, kind);
}

void FxSerializer::note(const std::string& what, const char* expected, LoadProblem::Kind kind)
{
    if (m_problems.size() < s_maxProblems) // a hostile document has many more
        addProblem(describeProblem(what, expected, kind));
}

void FxSerializer::addProblem(LoadProblem problem)
{
    if (m_problems.size() < s_maxProblems)
        m_problems.push_back(std::move(problem));
}

LoadProblem FxSerializer::describeProblem(std::string found, std::string expected,
                                          LoadProblem::Kind kind) const
{
    LoadProblem problem;
    problem.kind = kind;
    problem.file = m_path;
    problem.record = m_record ? m_record->m_label : "document";
    const Record* object = m_record;
    while (object && object->m_kind == Record::Part)
        object = object->m_outer;
    if (object)
        problem.object = quote(*object->m_name);
    problem.offset = m_buffer ? m_buffer->tell() : 0;
    problem.found = std::move(found);
    problem.expected = std::move(expected);
    problem.path = describePath();
    return problem;
}

std::string FxSerializer::describePath() const
{
    std::string path;
    for (const Record* record = m_record; record; record = record->m_outer) {
        if (record->m_kind == Record::Part || record->m_isRoot)
            continue;
        if (path.size() > s_maxPathBytes)
            return ".../" + path;
        const std::string name = record->m_name->empty() ? record->m_label : quote(*record->m_name);
        path = path.empty() ? name : name + '/' + path;
    }
    return path;
}

std::string FxSerializer::describeRecord() const
{
    // The innermost record, and the one that a person knows by name.
    std::string text;
    const char* link = ", in ";
    for (const Record* record = m_record; record; record = record->m_outer) {
        const bool named = !record->m_name->empty();
        if (record != m_record && !named)
            continue;
        text += link;
        text += record->m_label;
        if (named)
            text += " \"" + quote(*record->m_name) + '"';
        if (record != m_record)
            break;
        link = " of ";
    }
    return text;
}

FxSerializer::Record::Record(FxSerializer& serializer, const char* label, const std::string* name, Kind kind)
    : m_serializer(serializer), m_outer(serializer.m_record), m_label(label), m_name(name), m_kind(kind),
      m_isRoot(std::exchange(serializer.m_rootAnnounced, false))
{
    serializer.m_record = this;
    if (++serializer.m_depth > s_maxDepth && !serializer.m_writing)
        serializer.fail("records nested deeper than " + std::to_string(s_maxDepth), "fewer levels");
}

FxSerializer::Record::~Record()
{
    m_serializer.m_record = m_outer;
    --m_serializer.m_depth;
}

} // namespace helvantine
