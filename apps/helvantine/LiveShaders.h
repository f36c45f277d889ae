// SPDX-License-Identifier: MIT
#pragma once

#include "Say.h"

#include <helvantine/core/SmartRef.h>

#include <deque>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace helvantine
{
class Document;
class ShaderCompilation;
class ShaderNode;
} // namespace helvantine

namespace helvantine::tool
{

class LiveIncludes;

/// Gives shader nodes new texts, once these have compiled beside the frames: until then, and while they don't, the
/// nodes keep what they have.
class LiveShaders
{
public:
    LiveShaders(Document& document, const LiveIncludes& includes, Say say);
    ~LiveShaders();

    /// Whether a shader node of any composition is called so.
    bool hasNode(const std::string& name) const;

    /// A text for the shader nodes of that name in all compositions. path names it in messages.
    void offer(const std::string& name, const std::string& path, const std::string& text);

    /// Compiles what includes files of these names anew: the text that a node was offered last, or has. Returns the
    /// names that something includes.
    std::set<std::string> offerIncluding(const std::set<std::string>& names);

    /// Once a frame; doesn't wait. True if a node has got a text.
    bool update();

private:
    struct Source
    {
        SmartRef<ShaderNode> node;
        std::string path; ///< in messages
        std::string text;
    };
    /// The first of the queue compiles.
    struct Candidate
    {
        Source source;
        std::unique_ptr<ShaderCompilation> compilation; ///< null while it waits
        bool outdated = false;                          ///< there is a newer text for the node
    };

    std::vector<SmartRef<ShaderNode>> getNodes() const;
    Source getSource(ShaderNode& node) const;
    void enqueue(const Source& source);
    bool finish(const Candidate& candidate);
    void sayErrors(const std::string& path, const std::string& errors);

    Document& m_document;
    const LiveIncludes& m_includes;
    Say m_say;
    std::vector<Source> m_sources; ///< the latest of each node, whether it compiled or not
    std::deque<Candidate> m_candidates;
};

} // namespace helvantine::tool
