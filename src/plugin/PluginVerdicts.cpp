// SPDX-License-Identifier: MIT
#include "plugin/PluginVerdicts.h"

#include <helvantine/core/InStream.h>
#include <helvantine/core/OutStream.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/WinFile.h>

#include <chrono>
#include <filesystem>
#include <utility>

namespace helvantine
{

namespace
{

constexpr const char* s_head = "helvantine plugin verdicts 1";

void writeNumber(OutStream& out, std::uint64_t value)
{
    out.writeUInt(static_cast<std::uint32_t>(value));
    out.writeUInt(static_cast<std::uint32_t>(value >> 32));
}

std::uint64_t readNumber(InStream& in)
{
    std::uint32_t low = 0, high = 0;
    in.readUInt(low);
    in.readUInt(high);
    return static_cast<std::uint64_t>(high) << 32 | low;
}

void writeStamp(OutStream& out, const FileStamp& stamp)
{
    writeNumber(out, stamp.size);
    writeNumber(out, static_cast<std::uint64_t>(stamp.changeTime));
}

FileStamp readStamp(InStream& in)
{
    FileStamp stamp{true, readNumber(in)};
    stamp.changeTime = static_cast<std::int64_t>(readNumber(in));
    return stamp;
}

void writeVerdict(OutStream& out, const PluginVerdict& verdict)
{
    out.writeUInt(static_cast<std::uint32_t>(verdict.kind));
    out.writeUInt(static_cast<std::uint32_t>(verdict.problems.size()));
    for (const std::string& problem : verdict.problems)
        out.writeString(problem);
}

PluginVerdict readVerdict(InStream& in)
{
    PluginVerdict verdict;
    std::uint32_t kind = 0, count = 0;
    in.readUInt(kind);
    in.readUInt(count);
    verdict.kind = static_cast<PluginVerdict::Kind>(kind);
    for (std::uint32_t i = 0; i < count && !in.failed(); ++i)
        in.readString(verdict.problems.emplace_back());
    return verdict;
}

/// What a process has left that was killed while it wrote.
void removeAbandoned(const std::string& folder)
{
    constexpr auto longEnough = std::chrono::minutes(10);
    for (const FileInfo& file : findFiles(folder.c_str(), "plugin-verdicts-*", false)) {
        std::error_code error;
        const auto written = std::filesystem::last_write_time(file.path, error);
        if (!error && std::filesystem::file_time_type::clock::now() - written > longEnough)
            deleteFile(file.path.c_str());
    }
}

} // namespace

PluginVerdicts::PluginVerdicts(std::string path, const FileStamp& runtime)
    : m_path(std::move(path)), m_runtime(runtime)
{
    load();
}

void PluginVerdicts::load()
{
    WinFile file;
    if (m_path.empty() || !file.open(m_path.c_str()))
        return;
    InStream in(false);
    in.attach(&file);
    std::string head;
    in.readString(head);
    while (head == s_head && in.bytesLeft() > 0) {
        std::string library;
        in.readString(library);
        Entry entry{readStamp(in), readStamp(in), readVerdict(in)};
        if (in.failed() || entry.verdict.kind >= PluginVerdict::Kind::Unknown)
            return;
        m_entries[library] = std::move(entry);
    }
}

const PluginVerdict* PluginVerdicts::find(const std::string& library, const FileStamp& stamp) const
{
    const auto found = m_entries.find(library);
    const bool holds =
        found != m_entries.end() && found->second.library == stamp && found->second.runtime == m_runtime;
    return holds ? &found->second.verdict : nullptr;
}

void PluginVerdicts::keep(const std::string& library, const FileStamp& stamp, const PluginVerdict& verdict)
{
    m_entries[library] = {stamp, m_runtime, verdict};
}

void PluginVerdicts::save() const
{
    const std::string folder = getPath(m_path.c_str());
    if (m_path.empty() || !makeFolders(folder.c_str()))
        return;
    removeAbandoned(folder);
    const std::string temporary = createTemporaryFile(folder.c_str(), "plugin-verdicts-");
    WinFile file;
    if (temporary.empty() || !file.create(temporary.c_str()))
        return;
    OutStream out;
    out.attach(&file);
    out.writeCString(s_head);
    for (const auto& [library, entry] : m_entries) {
        if (!getFileStamp(library.c_str()).exists)
            continue; // gone for good
        out.writeString(library);
        writeStamp(out, entry.library);
        writeStamp(out, entry.runtime);
        writeVerdict(out, entry.verdict);
    }
    if (out.failed() || !file.close() || !replaceFile(temporary.c_str(), m_path.c_str()))
        deleteFile(temporary.c_str());
}

} // namespace helvantine
