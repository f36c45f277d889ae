// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/SmartRef.h>

#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace helvantine
{
class Document;
class ShaderCompilation;
class ShaderNode;
} // namespace helvantine

namespace helvantine::tool
{

/// Takes a line for the user.
using Say = std::function<void(const std::string&)>;

/// Gives shader nodes new texts, once these have compiled beside the frames: until then, and while they don't, the
/// nodes keep what they have.
class LiveShaders
{
public:
    LiveShaders(Document& document, Say say);
    ~LiveShaders();

    /// A text for the shader nodes of that name in all compositions. path names it in messages.
    void offer(const std::string& name, const std::string& path, const std::string& text);

    /// Once a frame; doesn't wait. True if a node has got a text.
    bool update();

private:
    /// The first of the queue compiles.
    struct Candidate
    {
        SmartRef<ShaderNode> node;
        std::string path;
        std::string text;
        std::unique_ptr<ShaderCompilation> compilation; ///< null while it waits
        bool outdated = false;                          ///< there is a newer text for the node
    };

    void enqueue(ShaderNode& node, const std::string& path, const std::string& text);
    bool finish(Candidate& candidate);
    void sayErrors(const std::string& path, const std::string& errors);

    Document& m_document;
    Say m_say;
    std::deque<Candidate> m_candidates;
};

} // namespace helvantine::tool
