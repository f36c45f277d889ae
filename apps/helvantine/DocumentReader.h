// SPDX-License-Identifier: MIT
#pragma once

#include "ScratchFolder.h"

#include <helvantine/host/Application.h>

#include <string>

namespace helvantine
{
class Document;
}

namespace helvantine::tool
{

/// Unpacks and reads a document into the application. Damage is no error: what could be read is there, and
/// the document knows what was wrong. Returns a sentence for the user, empty for success.
std::string readDocument(Application& application, const ScratchFolder& scratch, const std::string& path);

/// A host that reads a document without a device, to tell about it.
class DocumentReader
{
public:
    DocumentReader();

    std::string read(const std::string& path) { return readDocument(m_application, m_scratch, path); }
    Document& document() { return *m_application.getDocument(); } ///< once one was read

private:
    ScratchFolder m_scratch; ///< the document's cache folder; goes after it
    Application m_application;
};

} // namespace helvantine::tool
