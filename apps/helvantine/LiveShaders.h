// SPDX-License-Identifier: MIT
#pragma once

#include "Say.h"
#include "ShaderReview.h"

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
class Rehearsal;

/// The shader nodes of all compositions.
std::vector<SmartRef<ShaderNode>> getShaderNodes(const Document& document);

/// Gives shader nodes new texts, once these have compiled beside the frames and were drawn with elsewhere: until then,
/// and if either fails, the nodes keep what they have.
class LiveShaders
{
public:
    /// rehearsal: null if texts need only compile.
    LiveShaders(Document& document, const LiveIncludes& includes, Say say, Rehearsal* rehearsal = nullptr);
    ~LiveShaders();

    /// Whether a shader node of any composition is called so.
    bool hasNode(const std::string& name) const;

    /// A text for the shader nodes of that name in all compositions. path names it in messages.
    void offer(const std::string& name, const std::string& path, const std::string& text);

    /// Compiles what includes files of these names anew: the text that a node was offered last, or has. Returns the
    /// names that something includes.
    std::set<std::string> offerIncluding(const std::set<std::string>& names);

    /// Once a frame, with its number; doesn't wait. True if a node has got a text.
    bool update(int frame = 0);

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

    Source getSource(ShaderNode& node) const;
    void enqueue(const Source& source);
    void compile();
    bool rehearse(int frame);
    void stage(int frame);
    bool finishStaged();
    void refuseStaged();
    bool finish(const Candidate& candidate);
    void sayLines(const std::string& path, const std::string& words);

    Document& m_document;
    const LiveIncludes& m_includes;
    Say m_say;
    std::vector<Source> m_sources; ///< the latest of each node, whether it compiled or not
    Rehearsal* m_rehearsal;
    ShaderReview m_review;
    std::deque<Candidate> m_candidates;
    std::deque<Candidate> m_compiled; ///< and not yet drawn with
    std::deque<Candidate> m_staged;   ///< being drawn with
    size_t m_oneByOne = 0;            ///< as many of the compiled are staged alone, since one of them failed
};

} // namespace helvantine::tool
