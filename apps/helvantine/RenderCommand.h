// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace CLI
{
class App;
}

namespace helvantine::tool
{

struct RenderOptions
{
    std::string document;
    std::string composition;    ///< empty: the first
    std::string frames;         ///< empty: the whole timeline
    int every = 1;              ///< from one frame to the next
    std::optional<int> sheet;   ///< columns of a contact sheet; none: no sheet
    std::string size;           ///< empty: the project's
    std::optional<int> preroll; ///< frames drawn before each one; none: as many as it needs
    std::string output = "frame-%04d.png";
    bool progress = false;
    bool validation = false;
    bool stats = false;
};

/// Adds the subcommand "render", which fills the options.
void addRenderCommand(CLI::App& app, RenderOptions& options);

/// Returns an ExitCode.
int runRender(const RenderOptions& options);

} // namespace helvantine::tool
