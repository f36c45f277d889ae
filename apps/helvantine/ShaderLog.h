// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/SmartRef.h>

#include <string>
#include <vector>

namespace helvantine
{
class Composition;
class Document;
class ShaderNode;
} // namespace helvantine

namespace helvantine::tool
{

/// What the compiler says of the texts of a document's shader nodes, each time that it is something new.
class ShaderLog
{
public:
    explicit ShaderLog(const Document& document);
    ~ShaderLog();

    /// Lines such as `Main/Sky/Shader Code:12: error: …` that weren't there at the last call. Links may change a text
    /// in any frame.
    std::vector<std::string> takeNews();

private:
    struct Entry
    {
        SmartRef<ShaderNode> node;
        std::string path; ///< of its text
        std::string words;
    };
    void addNodes(const Composition& composition);

    std::vector<Entry> m_entries;
};

} // namespace helvantine::tool
