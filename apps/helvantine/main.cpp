// SPDX-License-Identifier: MIT
#include "CheckCommand.h"
#include "ExitCode.h"
#include "InfoCommand.h"
#include "Interruption.h"
#include "PlayCommand.h"
#include "RehearseCommand.h"
#include "RenderCommand.h"
#include "Suggestion.h"
#include "Warnings.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <unistd.h>

using namespace helvantine::tool;

namespace
{

constexpr const char* overview = R"(Examples:
  helvantine render intro.hfx                    every frame, as frame-0000.png and so on
  helvantine render intro.hfx -o intro.mp4       a video
  helvantine render --help                       all about rendering
  helvantine play intro.hfx                      in a window
  helvantine info intro.hfx                      what the document holds
  helvantine check intro.hfx                     what is wrong with it

Exit codes: 0 done, 1 failed (the reason is on standard error) or something found, 2 wrong arguments.
)";

int run(int argc, char** argv)
{
    CLI::App app("The command-line host of Helvantine documents.", "helvantine");
    app.footer(overview);
    app.set_version_flag("--version", "helvantine " HELVANTINE_VERSION);
    app.require_subcommand(1);
    RenderOptions render;
    PlayOptions play;
    InfoOptions info;
    CheckOptions check;
    RehearseOptions rehearse;
    addRenderCommand(app, render);
    addPlayCommand(app, play);
    addInfoCommand(app, info);
    addCheckCommand(app, check);
    addRehearseCommand(app, rehearse);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const std::string unknown = explainUnknownWord(app, {argv + 1, argv + argc});
        if (error.get_exit_code() == 0 || unknown.empty())
            return app.exit(error) == 0 ? ExitDone : ExitUsage;
        return fail(ExitUsage, unknown + "\nRun with --help for more information.");
    }
    if (app.got_subcommand("play"))
        return runPlay(play);
    if (app.got_subcommand("info"))
        return runInfo(info);
    if (app.got_subcommand("check"))
        return runCheck(check);
    if (app.got_subcommand(rehearseCommandName))
        return runRehearse(rehearse);
    return runRender(render);
}

/// Opens what the program was started without, so that no file of ours takes the place of standard output, and writing
/// there still fails.
void openStandardStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) < 0 && open("/dev/null", O_RDONLY) != stream)
            return;
    }
}

/// The exit code, if all that was printed has arrived.
int closeOutput(int code)
{
    errno = 0;
    const bool arrived = std::cout.flush() && std::fflush(stdout) == 0 && !std::ferror(stdout);
    if (arrived)
        return code;
    return fail(ExitFailed, std::string("standard output: can't be written") + (errno ? ": " : "") +
                                (errno ? std::strerror(errno) : ""));
}

} // namespace

int main(int argc, char** argv)
{
    openStandardStreams();
    prepareSignals();
    try {
        return closeOutput(run(argc, argv));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "helvantine: %s\n", error.what());
        return ExitFailed;
    }
}
