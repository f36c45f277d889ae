// SPDX-License-Identifier: MIT
#include "RenderCommand.h"

#include "FileExtension.h"
#include "FrameWriter.h"
#include "Interruption.h"
#include "OfflineHost.h"
#include "Progress.h"
#include "SlowWork.h"
#include "Warnings.h"

#include <helvantine/core/System.h>
#include <helvantine/core/Text.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/timeline/Composition.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <sys/resource.h>

namespace helvantine::tool
{

namespace
{

constexpr const char* examples = R"(Examples:
  helvantine render intro.hfx
      every frame, in the project's size, as frame-0000.png, frame-0001.png and so on
  helvantine render intro.hfx --frames 120 --size 1920x1080 -o still.png
      one frame
  helvantine render intro.hfx --composition Outro --frames 0-59 -o out/outro-%03d.png
      the first 60 frames of another composition; the folder is made
  helvantine render intro.hfx --every 60 --sheet 4 --size 320x180 -o overview.png
      a contact sheet: every 60th frame, four to a row
  helvantine render intro.hfx -o intro.mp4
      a video (.mp4, .mkv, .mov, .webm, .gif, …), made with the ffmpeg program

A frame is the same picture whether it is rendered alone or in a range.
)";

/// What the arguments mean, before anything is loaded.
struct Plan
{
    std::optional<FrameRange> frames; ///< none: the whole timeline
    std::optional<FrameSize> size;    ///< none: the project's
    int every = 1;
    int sheetColumns = 0; ///< 0: no sheet
    bool video = false;
    FramePattern pattern;
};

std::string makePlan(const RenderOptions& options, Plan& plan)
{
    if (!options.frames.empty() && !(plan.frames = parseFrameRange(options.frames)))
        return "--frames " + options.frames + ": expected a range such as 0-59, or one frame such as 120";
    if (!options.size.empty() && !(plan.size = parseFrameSize(options.size)))
        return formatString("--size %s: expected width x height such as 1280x720, each 1 to %u",
                            options.size.c_str(), maxSide);
    if (options.every < 1 || options.every > maxFrame)
        return formatString("--every %d: expected 1 to %d", options.every, maxFrame);
    if (options.preroll && (*options.preroll < 0 || *options.preroll > maxFrame))
        return formatString("--preroll %d: expected 0 to %d", *options.preroll, maxFrame);
    if (options.sheet && *options.sheet < 1)
        return formatString("--sheet %d: expected 1 or more columns", *options.sheet);
    plan.every = options.every;
    plan.sheetColumns = options.sheet.value_or(0);
    plan.video = isVideo(options.output);
    if (const std::string type = getExtension(options.output); !plan.video && !type.empty() && type != ".png")
        return formatString("-o %s: no %s files are written; pictures are .png, videos %s",
                            options.output.c_str(), type.c_str(), listVideoTypes().c_str());
    if (plan.video)
        return plan.sheetColumns ? "--sheet: makes a picture, not a video" : std::string();
    const auto pattern = FramePattern::parse(options.output);
    if (!pattern)
        return "-o " + options.output + ": expected one place for the number, such as frame-%04d.png";
    plan.pattern = *pattern;
    return {};
}

std::string checkSheet(const Plan& plan)
{
    const auto columns = static_cast<unsigned>(std::min(plan.sheetColumns, plan.frames->getCount()));
    const unsigned rows = (static_cast<unsigned>(plan.frames->getCount()) + columns - 1) / columns;
    if (plan.pattern.hasPlace())
        return "--sheet: makes one picture; name it with -o, without a place for a number";
    // Divided, since the product may not fit.
    if (columns > maxSide / plan.size->width || rows > maxSide / plan.size->height)
        return formatString(
            "--sheet: %u by %u frames of %u by %u are larger than %u pixels; take fewer (--every) or "
            "smaller ones (--size)",
            columns, rows, plan.size->width, plan.size->height, maxSide);
    return {};
}

/// Fills in what the document says where the arguments are silent.
std::string completePlan(const RenderOptions& options, OfflineHost& host, Plan& plan)
{
    if (!plan.frames)
        plan.frames = FrameRange{0, host.composition().getEndFrame() - 1};
    plan.frames->step = plan.every;
    if (plan.frames->getCount() < 1)
        return options.document + ": the timeline is empty; name frames with --frames";
    const ProjectSettings& settings = host.settings();
    if (!plan.size)
        plan.size = FrameSize{settings.getWidth(), settings.getHeight()};
    if (plan.size->width - 1 >= maxSide || plan.size->height - 1 >= maxSide)
        return formatString("%s: the project's size is %u by %u; name another with --size",
                            options.document.c_str(), plan.size->width, plan.size->height);
    if (plan.sheetColumns)
        return checkSheet(plan);
    if (!plan.video && !plan.pattern.hasPlace() && plan.frames->getCount() > 1)
        return formatString("-o %s: names one file for %d frames; a place for the number is missing, as in "
                            "frame-%%04d.png",
                            options.output.c_str(), plan.frames->getCount());
    return {};
}

/// Of what is done otherwise than somebody might expect.
void warnOfPlan(const RenderOptions& options, OfflineHost& host, const Plan& plan)
{
    const int end = host.composition().getEndFrame();
    if (plan.frames->last >= end)
        warn(formatString("%s: frames %d to %d lie behind the timeline, which has %d",
                          options.document.c_str(), std::max(plan.frames->first, end), plan.frames->last,
                          std::max(end, 0)));
    const FrameSize even{(plan.size->width + 1) / 2 * 2, (plan.size->height + 1) / 2 * 2};
    if (plan.video && needsEvenSides(getExtension(options.output)) &&
        (even.width != plan.size->width || even.height != plan.size->height))
        warn(formatString(
            "%s: %u by %u is rounded up to %u by %u, with a black edge, since players want even sides",
            options.output.c_str(), plan.size->width, plan.size->height, even.width, even.height));
}

std::unique_ptr<FrameWriter> createWriter(const RenderOptions& options, const Plan& plan, int frameRate,
                                          std::string& error)
{
    if (plan.video)
        return createVideoWriter(options.output, *plan.size, frameRate, plan.frames->getCount(), error);
    if (plan.sheetColumns)
        return createSheetWriter(plan.pattern.getPath(0), *plan.size, plan.sheetColumns,
                                 plan.frames->getCount());
    return createPngWriter(plan.pattern, *plan.size);
}

std::string renderFrames(OfflineHost& host, const Plan& plan, FrameWriter& writer, Progress& progress,
                         Warnings& warnings, bool& validation, double& writing)
{
    std::vector<uint8_t> pixels;
    int written = 0;
    for (int frame = plan.frames->first; frame <= plan.frames->last; frame += plan.frames->step) {
        std::string error = host.draw(frame, pixels);
        validation |= warnings.show(&progress);
        const double started = getTime();
        if (error.empty())
            error = writer.write(frame, pixels);
        writing += getTime() - started;
        if (!error.empty())
            return error;
        progress.show(++written);
    }
    const double started = getTime();
    std::string error = writer.finish();
    writing += getTime() - started;
    return error;
}

void showCarrier(const OfflineHost& host, const RenderOptions& options)
{
    if (host.getCarrier().empty())
        return;
    std::fprintf(stderr, "carried    %s, from frame to frame; %s\n", host.getCarrier().c_str(),
                 options.preroll
                     ? formatString("--preroll draws %d frames before each", *options.preroll).c_str()
                     : "all frames before were drawn");
}

void showStats(const OfflineHost& host, const RenderOptions& options, int frames, double writing)
{
    const OfflineHost::Times& times = host.times();
    const RendererStats& stats = g_renderer->getStats();
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    std::fprintf(stderr, "device     %s\n", g_renderer->getDeviceName());
    std::fprintf(stderr, "frames     %d written, %d drawn\n", frames, host.countDrawnFrames());
    showCarrier(host, options);
    std::fprintf(stderr, "times      load %.3f s, tick %.3f s, draw %.3f s (GPU %.3f s), write %.3f s\n",
                 times.load, times.tick, times.draw, times.gpu, writing);
    std::fprintf(stderr, "programs   %u before the first frame, %u after\n", stats.programsBeforeFirstFrame,
                 stats.programsAfterFirstFrame);
    std::fprintf(stderr, "pipelines  %u before the first frame, %u after\n", stats.pipelinesBeforeFirstFrame,
                 stats.pipelinesAfterFirstFrame);
    std::fprintf(stderr, "memory     %.1f MiB at most\n", static_cast<double>(usage.ru_maxrss) / 1024.0);
}

} // namespace

void addRenderCommand(CLI::App& app, RenderOptions& options)
{
    CLI::App* render =
        app.add_subcommand("render", "Draws frames of a document into picture files or a video.");
    render->footer(examples);
    render->add_option("document", options.document, "The document")->required()->type_name("DOCUMENT");
    render
        ->add_option("--composition", options.composition,
                     "Name of the composition; the first one by default")
        ->type_name("NAME");
    render
        ->add_option("--frames", options.frames,
                     "First and last frame, or one frame; the whole timeline by default")
        ->type_name("A-B");
    render->add_option("--every", options.every, "Every N-th of the frames only")->type_name("N");
    render->add_option("--sheet", options.sheet, "One picture with the frames side by side, so many to a row")
        ->type_name("COLUMNS");
    render
        ->add_option(
            "--preroll", options.preroll,
            "How many frames to draw before each one that is taken alone, whatever it needs of them; by "
            "default one, and all where targets carry their pictures from frame to frame")
        ->type_name("N");
    render->add_option("--size", options.size, "In pixels; the project's size by default")->type_name("WxH");
    render
        ->add_option("-o,--output", options.output,
                     "PNG files with a place for the frame number, or a video; frame-%04d.png by default")
        ->type_name("PATH");
    render->add_flag("--progress", options.progress,
                     "Tells how far it is where standard error is no terminal, too");
    render->add_flag("--stats", options.stats, "Tells afterwards, on standard error, what it took");
    render->add_flag("--validation", options.validation,
                     "Runs under the graphics validation layer, whose messages fail the command");
}

int runRender(const RenderOptions& options)
{
    Plan plan;
    if (const std::string error = makePlan(options, plan); !error.empty())
        return fail(ExitUsage, error);

    watchInterruption();
    OfflineHost host(options.validation, options.preroll);
    Warnings warnings(options.document);
    std::string error = host.load(options.document);
    if (error.empty())
        warnings.follow(&host.document());
    host.setDocumentListener([&warnings](const Document* document) { warnings.follow(document); });
    bool validation = warnings.show(nullptr);
    if (error.empty())
        error = host.choose(options.composition);
    if (!error.empty())
        return fail(ExitFailed, error);
    if (error = completePlan(options, host, plan); !error.empty())
        return fail(ExitUsage, error);
    {
        const SlowWork slow(slowWarmUp, Progress::chooseMode(options.progress));
        error = host.setSize(*plan.size);
    }
    std::unique_ptr<FrameWriter> writer;
    if (error.empty())
        writer = createWriter(options, plan, host.settings().getFrameRate(), error);
    validation |= warnings.show(nullptr);
    if (!error.empty())
        return fail(ExitFailed, error);

    warnOfPlan(options, host, plan);
    Progress progress(Progress::chooseMode(options.progress), plan.frames->getCount());
    double writing = 0.0;
    error = renderFrames(host, plan, *writer, progress, warnings, validation, writing);
    progress.finish();
    if (error.empty() && options.stats)
        showStats(host, options, plan.frames->getCount(), writing);
    if (!error.empty()) {
        const std::string kept = writer->abandon();
        return fail(ExitFailed, kept.empty() ? error : error + "; " + kept);
    }
    return validation ? fail(ExitFailed, options.document + ": the validation layer has spoken") : ExitDone;
}

} // namespace helvantine::tool
