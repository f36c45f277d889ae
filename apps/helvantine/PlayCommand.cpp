// SPDX-License-Identifier: MIT
#include "PlayCommand.h"

#include "Interruption.h"
#include "LiveFolder.h"
#include "PlaySession.h"
#include "Rehearsal.h"
#include "SlowWork.h"
#include "Warnings.h"
#include "WindowHost.h"

#include <helvantine/core/System.h>
#include <helvantine/core/Text.h>
#include <helvantine/timeline/Composition.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>

namespace helvantine::tool
{

namespace
{

constexpr const char* keys = R"(Keys:
  Space               pause, and go on; at the end: from the start
  Left, Right         one second back or on
  Shift with them     one frame back or on, and pause
  Home, End           to the first or the last frame
  F11                 full screen, and back
  Escape              quit

Frames are due by the clock; a slow machine skips some, but a stop of more than a tenth of a second counts
as a tenth. The playback stops on the last frame, unless --loop is given; with --frames it ends there.

With --watch a file NAME.hlsl becomes the text of the shader nodes of that name, an image replaces the
textures that were loaded from a file of its name, and shaders include the folder's files before others.

Exit codes: 0 done, 1 failed (the reason is on standard error), 2 wrong arguments.
)";

} // namespace

void addPlayCommand(CLI::App& app, PlayOptions& options)
{
    CLI::App* play = app.add_subcommand("play", "Plays a document in a window.");
    play->footer(keys);
    play->add_option("document", options.document, "The document")->required()->type_name("DOCUMENT");
    play->add_option("--composition", options.composition,
                     "Name of the composition; the first one by default")
        ->type_name("NAME");
    play->add_option("--size", options.size,
                     "Of the pictures, in pixels; the project's size by default. The window scales them")
        ->type_name("WxH");
    play->add_option("--frames", options.frames, "Ends by itself when so many frames have been drawn")
        ->type_name("N");
    play->add_option("--watch", options.watch, "Takes over shader texts and images as they are saved there")
        ->type_name("FOLDER");
    play->add_flag("--fullscreen", options.fullscreen, "Begins in full screen");
    play->add_flag("--loop", options.loop, "Starts over at the end");
    play->add_flag("--validation", options.validation,
                   "Runs under the graphics validation layer, whose messages fail the command");
}

namespace
{

std::string open(WindowHost& host, const WindowHost::Request& request)
{
    const SlowWork slow(slowWarmUp, Progress::chooseMode(false));
    return host.open(request);
}

Rehearsal::Stage makeStage(const PlayOptions& options, const WindowHost& host)
{
    std::error_code error;
    const auto folder = std::filesystem::absolute(options.watch, error) / "";
    return {.program = getExecutablePath(),
            .document = std::filesystem::absolute(options.document, error).string(),
            .composition = options.composition,
            .folder = options.watch.empty() ? "" : folder.string(),
            .size = host.size()};
}

} // namespace

int runPlay(const PlayOptions& options)
{
    WindowHost::Request request{options.document, options.composition, std::nullopt, options.fullscreen};
    if (!options.size.empty() && !(request.size = parseFrameSize(options.size)))
        return fail(ExitUsage,
                    formatString("--size %s: expected width x height such as 1280x720, each 1 to %u",
                                 options.size.c_str(), maxSide));
    if (options.frames && *options.frames < 1)
        return fail(ExitUsage, formatString("--frames %d: expected 1 or more", *options.frames));

    watchInterruption();
    WindowHost host(options.validation);
    if (const std::string error = open(host, request); !error.empty())
        return fail(ExitFailed, error);
    if (host.composition().getEndFrame() < 1)
        return fail(ExitFailed, options.document + ": the timeline is empty");

    Warnings warnings(options.document);
    warnings.follow(&host.document());
    Rehearsal rehearsal(makeStage(options, host));
    LiveFolder folder(
        host.document(), [](const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); },
        &rehearsal);
    if (!options.watch.empty()) {
        if (const std::string error = folder.open(options.watch); !error.empty())
            return fail(ExitFailed, error);
    }
    const PlaySession::Request session{options.frames.value_or(0), options.loop, options.fullscreen};
    if (PlaySession(host, options.watch.empty() ? nullptr : &folder, session, warnings).run())
        return fail(ExitFailed, options.document + ": the validation layer has spoken");
    return ExitDone;
}

} // namespace helvantine::tool
