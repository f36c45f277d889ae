// SPDX-License-Identifier: MIT
#pragma once

#include "FrameRange.h"

#include <helvantine/core/HelperProcess.h>
#include <helvantine/core/UniqueId.h>

#include <chrono>
#include <string>
#include <vector>

namespace helvantine::tool
{

/// A text that a shader node has or is to get.
struct NodeText
{
    UniqueId node;
    std::string text;
};

/// What is to be drawn. The texts of other nodes are those of the document.
struct Scene
{
    int frame = 0;
    std::vector<NodeText> texts;
};

std::string encodeScene(const Scene& scene);
/// False if it is none.
bool decodeScene(const std::string& bytes, Scene& scene);

/// Has another process draw a document with new shader texts before this one does.
///
/// A driver makes the machine code of a program when that is first drawn with, in its one queue, and there is no bound
/// to the time. Here that happens elsewhere; the driver's cache on disk hands the code over, complete once that
/// process has ended. One process stands ready with the document for the next text.
class Rehearsal
{
public:
    struct Stage
    {
        std::string program; ///< the command-line tool
        std::string document;
        std::string composition; ///< as `play` takes it
        std::string folder;      ///< whose files shaders include in place of the document's; empty: none
        FrameSize size{};
        std::chrono::milliseconds patience{60000};
    };

    explicit Rehearsal(Stage stage) : m_stage(std::move(stage)) {}

    enum class State
    {
        Idle,
        Running,
        Drawn,
        Failed,    ///< it wasn't drawn, for what getReason says
        Impossible ///< no process could be had
    };

    /// Has a process read the document, if none stands ready or draws.
    void prepare();

    /// Begins anew; what draws ends.
    void begin(const Scene& scene);

    /// Never waits. What isn't Running is told once, and is Idle afterwards.
    State look();

    void stop();

    /// After Failed or Impossible: the rest of a sentence.
    const std::string& getReason() const { return m_reason; }

private:
    bool start();
    State conclude();

    Stage m_stage;
    HelperProcess m_process;
    MessageChannel::Deadline m_deadline;
    State m_state = State::Idle;
    std::string m_reason;
};

} // namespace helvantine::tool
