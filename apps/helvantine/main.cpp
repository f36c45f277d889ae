// SPDX-License-Identifier: MIT
#include "CheckCommand.h"
#include "ExitCode.h"
#include "InfoCommand.h"
#include "PlayCommand.h"
#include "RehearseCommand.h"
#include "RenderCommand.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

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
        return app.exit(error) == 0 ? ExitDone : ExitUsage;
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

} // namespace

int main(int argc, char** argv)
{
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "helvantine: %s\n", error.what());
        return ExitFailed;
    }
}
