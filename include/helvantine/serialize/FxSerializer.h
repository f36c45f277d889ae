// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/InStream.h>
#include <helvantine/core/OutStream.h>
#include <helvantine/core/UniqueId.h>
#include <helvantine/serialize/LoadProblem.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// Laws of the document stream.
///
/// - Every class has one `serialize` for both directions. The order of its statements is the format: the
///   stream has no tags, lengths or markers.
/// - What is read is hostile. A count is checked against the bytes that are left before anything is made of
///   it, nesting against a limit, a class against the kind that belongs in its place.
/// - What reading makes is paid for by bytes of the document: an object that leaves out what its class has gained pays
///   with its own id, which no archive packs. Beyond that, what records leave out and what links set off has a limit.
/// - At the first thing that can't be, reading fails for good: every further read yields zero, whoever reads
///   stops and keeps what it has read so far. The failure is reported once and can be asked for.
namespace helvantine
{

class Buffer;
class Composition;
class Effect;

/// The version of documents that this library writes.
inline constexpr std::uint32_t g_formatVersion = 7;

/// Hears of the progress of reading.
class HELVANTINE_FX_API FxSerializerListener
{
public:
    virtual void onProgress(unsigned done, unsigned total) = 0;

protected:
    ~FxSerializerListener() = default;
};

/// The stream of one save or one load. Plain member access: records read and write m_in and m_out themselves.
class HELVANTINE_FX_API FxSerializer
{
public:
    /// The buffer is borrowed and outlives the serializer. `zip` is a handle of ZipWrite, null when reading.
    FxSerializer(const char* path, Buffer* buffer, bool writing, void* zip);
    FxSerializer(const FxSerializer&) = delete;
    FxSerializer& operator=(const FxSerializer&) = delete;
    virtual ~FxSerializer();

    void setVersion(int version) { m_version = version; }
    void setListener(FxSerializerListener* listener) { m_listener = listener; }
    void setObjectTotalCount(unsigned count) { m_objectTotalCount = count; }

    /// Puts a file into the document's archive, once; does nothing without an archive. One that isn't there is noted in
    /// m_missingFiles.
    void addFileToZip(const char* name);
    /// Counts an object, a property or a resource; tells the listener when reading.
    void tick();

    /// Reads a number of items of which each takes at least that many bytes. False, and failed, if they can't
    /// all be there; `what` names them, in the plural.
    bool readCount(std::uint32_t& count, std::uint32_t bytesPerItem, const char* what);
    /// The same test on a count that has been read.
    bool checkCount(std::uint32_t count, std::uint32_t bytesPerItem, const char* what);
    /// Ends reading here. `what` reads like "count of 70000 nodes", `expected` like "at most 37 bytes", which
    /// it is without one; offset, record and object are added.
    void fail(const std::string& what, const char* expected = nullptr,
              LoadProblem::Kind kind = LoadProblem::Kind::Damage);
    /// True once reading has ended early, here or in the stream below. Asked after each group of reads.
    bool failed();
    const std::string& getFailureText() const { return m_failureText; } ///< empty while nothing failed
    /// The object of that id has so much that its record holds no bytes for, as the properties that the class has
    /// gained since it was saved. Free of charge with a generated id: a document of a given size on disk holds only so
    /// many of those. With ids that repeat what came before, millions pack to next to nothing: reading fails once their
    /// objects have more than a document of its size may cost.
    void chargeMissing(const UniqueId& id, std::uint64_t bytes);
    std::uint64_t getMissingBytes() const { return m_missingBytes; } ///< those that were charged
    /// Reports something that is left out, in the form of a failure; reading goes on.
    void warn(const std::string& what, const char* expected, LoadProblem::Kind kind);
    /// The same without a word in the report: nothing is lost that a user would miss.
    void note(const std::string& what, const char* expected, LoadProblem::Kind kind);

    /// What was wrong so far, in the order of the stream; the first 256.
    const std::vector<LoadProblem>& getProblems() const { return m_problems; }
    void addProblem(LoadProblem problem);

    /// The record being read, for the texts of failures and against endless nesting. Lives on the stack of
    /// whoever reads it; name and label are borrowed.
    class HELVANTINE_FX_API Record
    {
    public:
        enum Kind
        {
            Whole,
            Part
        }; ///< a part has a name within its object

        Record(FxSerializer& serializer, const char* label, const std::string* name, Kind kind = Whole);
        ~Record();
        Record(const Record&) = delete;
        Record& operator=(const Record&) = delete;

    private:
        friend class FxSerializer;
        FxSerializer& m_serializer;
        const Record* m_outer;
        const char* m_label;
        const std::string* m_name;
        Kind m_kind;
        bool m_isRoot;
    };

    /// The next record is that of a root, which paths leave out.
    void announceRoot() { m_rootAnnounced = true; }
    /// To the record being read, as in LoadProblem. Names are cut short, and of a long way the inner end is told.
    std::string describePath() const;

    /// Records within records: deeper ones are not read.
    static constexpr int s_maxDepth = 512;
    static constexpr std::size_t s_maxProblems = 256;
    /// What may be made beyond what the script holds, beside as much again as the script is long.
    static constexpr std::uint64_t s_maxMissingBytes = 64 << 20;

    /// What the stream reads or writes; its position is the stream's. Borrowed.
    Buffer* getBuffer() const { return m_buffer; }

    bool m_writing;
    std::string m_path;
    InStream m_in;
    OutStream m_out;
    std::int32_t m_version = 0; ///< of the document at hand
    void* m_zip;
    std::map<std::string, std::int32_t> m_zipFiles; ///< names in the archive, with 1
    std::uint32_t m_objectCount = 0;
    std::uint32_t m_objectTotalCount = 0;
    FxSerializerListener* m_listener = nullptr;

    /// The effects of compositions whose graphs have been read, until the graph of the one around takes them over.
    std::map<const Composition*, std::map<UniqueId, Effect*>> m_effectIndices;
    /// What the links of all graphs may still set off while they are read (PropertyLinkLimit).
    std::int64_t m_linkSteps = 200000;
    /// Files that the archive should have and nothing has; each once.
    std::vector<std::string> m_missingFiles;

private:
    bool isNew(const UniqueId& id);
    std::string describeRecord() const;
    LoadProblem describeProblem(std::string found, std::string expected, LoadProblem::Kind kind) const;

    Buffer* m_buffer; ///< borrowed
    std::uint64_t m_missingBytes = 0;
    std::vector<std::uint32_t> m_idWords; ///< of the latest ids, by a hash; empty until one is asked for
    std::string m_failureText;
    const char* m_expected = nullptr; ///< in the place of what has failed; borrowed
    LoadProblem::Kind m_failureKind = LoadProblem::Kind::Damage;
    std::vector<LoadProblem> m_problems;
    const Record* m_record = nullptr;
    int m_depth = 0;
    bool m_rootAnnounced = false;
};

} // namespace helvantine
