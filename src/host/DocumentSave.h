// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/host/SaveOutcome.h>

#include <cstdint>
#include <string>

namespace helvantine
{

class Document;
class WinFile;

/// One save of a document. The file that is there stays until the new one is complete: the archive is written beside
/// it.
class DocumentSave
{
public:
    DocumentSave(Document& document, const char* path);

    /// Saves. A failure is one problem in the report, and so is each file that is left out.
    SaveOutcome run();

private:
    bool writeArchive();
    bool createScript(WinFile& script, void* archive);
    bool writeEntries(WinFile& script, void* archive);
    std::uint64_t measureFiles() const;
    void explain();

    Document& m_document;
    SaveOutcome m_outcome;
    std::uint64_t m_scriptSize = 0; ///< bytes, as far as it came
};

} // namespace helvantine
