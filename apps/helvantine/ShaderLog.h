// SPDX-License-Identifier: MIT
#pragma once

#include "ShaderReview.h"

#include <helvantine/core/SmartRef.h>

#include <string>
#include <vector>

namespace helvantine
{
class Composition;
class Document;
class Shader;
class ShaderNode;
} // namespace helvantine

namespace helvantine::tool
{

/// What is to be said of the texts of a document's shader nodes, each time that one is compiled anew: the compiler's
/// words, or what its program reads that nothing binds.
class ShaderLog
{
public:
    explicit ShaderLog(const Document& document);
    ~ShaderLog();

    /// Lines such as `Main/Sky/Shader Code:12: error: …` on what has changed since the last call. Links may change a
    /// text in any frame.
    std::vector<std::string> takeNews();

private:
    struct Entry
    {
        SmartRef<ShaderNode> node;
        std::string path; ///< of its text
        // When it was looked at.
        std::string words;
        SmartRef<Shader> shader;
    };
    void addNodes(const Composition& composition);

    ShaderReview m_review;
    std::vector<Entry> m_entries;
};

} // namespace helvantine::tool
