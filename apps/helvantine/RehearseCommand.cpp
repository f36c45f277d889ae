// SPDX-License-Identifier: MIT
#include "RehearseCommand.h"

#include "ExitCode.h"
#include "LiveIncludes.h"
#include "LiveShaders.h"
#include "OfflineHost.h"
#include "Rehearsal.h"

#include <helvantine/core/FileSystem.h>
#include <helvantine/core/HelperMain.h>
#include <helvantine/host/Document.h>
#include <helvantine/schematics/ShaderNode.h>

#include <CLI/CLI.hpp>

#include <unistd.h>

namespace helvantine::tool
{

namespace
{

void setTexts(const Document& document, const std::vector<NodeText>& texts)
{
    for (const SmartRef<ShaderNode>& node : getShaderNodes(document)) {
        for (const NodeText& text : texts) {
            if (text.node == node->m_id)
                node->setText(text.text.c_str());
        }
    }
}

/// Both return the reason why they couldn't; empty for success.
std::string prepare(const RehearseOptions& options, OfflineHost& host, LiveIncludes& includes)
{
    const auto size = parseFrameSize(options.size);
    if (!size)
        return "has no size";
    std::string error = host.load(options.document);
    if (error.empty())
        error = host.choose(options.composition);
    if (!error.empty())
        return error;
    includes.setFolder(options.folder);
    if (!options.folder.empty())
        host.document().getFileSystem()->addVfsAtTop(&includes);
    return host.setSize(*size);
}

std::string draw(OfflineHost& host, MessageChannel& channel)
{
    std::string message;
    Scene scene;
    if (channel.receive(message, maxRehearsalScene, MessageChannel::s_never) !=
            MessageChannel::Result::Done ||
        !decodeScene(message, scene))
        return "was told nothing";
    setTexts(host.document(), scene.texts);
    host.warmUp();
    host.drawAlone(scene.frame);
    return {};
}

} // namespace

void addRehearseCommand(CLI::App& app, RehearseOptions& options)
{
    CLI::App* rehearse = app.add_subcommand(rehearseCommandName, "Draws a frame ahead of a playback.");
    rehearse->group(""); // hidden
    rehearse->add_option("document", options.document)->required();
    rehearse->add_option("--composition", options.composition);
    rehearse->add_option("--folder", options.folder);
    rehearse->add_option("--size", options.size);
}

int runRehearse(const RehearseOptions& options)
{
    becomeHelper();
    constexpr int lessUrgent = 5; // than the playback
    if (nice(lessUrgent) == -1) { /* it is as urgent then */
    }
    MessageChannel channel(STDIN_FILENO);
    const SmartRef<LiveIncludes> includes(new LiveIncludes);
    OfflineHost host(false);
    std::string error = prepare(options, host, *includes);
    if (error.empty())
        error = draw(host, channel);
    if (error.empty())
        return ExitDone;
    channel.send(error.substr(0, maxRehearsalReason),
                 MessageChannel::Clock::now() + std::chrono::seconds(10));
    return ExitFailed;
}

} // namespace helvantine::tool
