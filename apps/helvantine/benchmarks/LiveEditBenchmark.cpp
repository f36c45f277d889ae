// SPDX-License-Identifier: MIT
// From saving a shader's text to the picture that it draws, as `helvantine play --watch` goes about it: in a window
// of 1280 by 720, sixty frames a second. Needs a display; xvfb-run gives it one.
#include "LiveFolder.h"
#include "Rehearsal.h"
#include "ScratchFolder.h"
#include "WindowHost.h"

#include <helvantine/core/Path.h>
#include <helvantine/core/System.h>
#include <helvantine/core/Text.h>
#include <helvantine/effects2d/RayMarchingEffect.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/object/PropertyLink.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/schematics/ShaderNode.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <optional>
#include <thread>
#include <utility>

namespace helvantine::bench
{

namespace
{

using namespace helvantine::tool;

constexpr const char* g_nodeName = "hills";
constexpr double g_framePace = 1.0 / 60.0; ///< seconds
constexpr double g_longestRest = 0.004;    ///< seconds, as PlaySession has it
constexpr double g_patience = 60.0;        ///< seconds
constexpr FrameSize g_size{1280, 720};

std::string readText(const char* path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A document that one shader draws.
void writeDocument(const std::string& path, const std::string& text)
{
    const ScratchFolder scratch;
    Application application(getExecutableFolder().c_str(), false);
    application.newDocument(scratch.getPath().c_str());
    const SmartRef<Composition> composition(new Composition(true, true));
    application.getDocument()->getCompositionManager()->getRoot()->addComposition(composition.get());
    const SmartRef<ShaderNode> node(new ShaderNode);
    node->m_name = g_nodeName;
    node->setText(text.c_str());
    const SmartRef<RayMarchingEffect> effect(new RayMarchingEffect);
    effect->onInit();
    effect->setEnd(1 << 20);
    effect->findGroup("Transformation")->findProperty("Size")->fromString("960, 540"); // the whole screen
    composition->m_rootEffect->addObject(effect.get(), 0);
    Schematics& graph = *composition->m_schematics;
    graph.addNode(node.get());
    graph.addNode(effect->m_effectNode.get());
    graph.addLink(new PropertyLink(node->findGroup("Output")->findProperty("Shader"),
                                   effect->findGroup("Raymarching")->findProperty("Shader")));
    application.saveDocument(path.c_str());
}

/// The playback, and the editor that saves.
class LiveEdit
{
public:
    /// extra: HLSL in front of the text, for a driver that is to take longer.
    explicit LiveEdit(const std::string& extra) : m_text(extra + readText(LIVE_SHADER)) {}

    std::string open()
    {
        const std::string path = m_files.getPath() + "live.hfx";
        writeDocument(path, m_text);
        m_host.emplace(false);
        std::string error = m_host->open({path, "", g_size, false});
        if (!error.empty())
            return error;
        m_rehearsal.emplace(Rehearsal::Stage{.program = HELVANTINE_COMMAND,
                                             .document = path,
                                             .composition = "",
                                             .folder = m_files.getPath(),
                                             .size = g_size});
        m_live = std::make_unique<LiveFolder>(
            m_host->document(), [this](const std::string& line) { m_said += line + "\n"; }, &*m_rehearsal);
        return m_live->open(m_files.getPath());
    }

    /// As an editor does it: the file is whole when it gets its name. The text is one that no cache has seen.
    void save()
    {
        const std::string unfinished = m_files.getPath() + "unfinished";
        std::ofstream(unfinished, std::ios::binary)
            << formatString("#define EDIT %.9f\n", std::fmod(getTime(), 1000.0) * 1e-3) << m_text;
        std::rename(unfinished.c_str(), (m_files.getPath() + g_nodeName + ".hlsl").c_str());
    }

    /// Plays until a text is taken over; returns when. Gives up after g_patience.
    double playUntilChange()
    {
        const double started = getTime();
        for (double due = started;;) {
            const double now = getTime();
            if (m_live->update(now, m_frame) || now > started + g_patience)
                return getTime();
            m_longest = std::max(m_longest, getTime() - now);
            if (now >= due) {
                m_longest = std::max(m_longest, drawWhole());
                due = now + g_framePace;
            } else {
                std::this_thread::sleep_for(
                    std::chrono::duration<double>(std::min(due - now, g_longestRest)));
            }
        }
    }

    /// Draws a frame to its last pixel; returns how long it took.
    double drawWhole()
    {
        const double started = getTime();
        m_host->draw(m_frame++, true, false);
        g_renderer->readBack(nullptr, m_pixels);
        return getTime() - started;
    }

    double takeLongest() { return std::exchange(m_longest, 0.0); } ///< of the frames, in seconds
    const std::string& said() const { return m_said; }

private:
    ScratchFolder m_files;
    std::string m_text;
    std::optional<WindowHost>
        m_host; ///< made once the document is written: there is one application at a time
    std::optional<Rehearsal> m_rehearsal;
    std::unique_ptr<LiveFolder> m_live;
    double m_longest = 0.0;
    std::string m_said;
    std::vector<uint8_t> m_pixels;
    int m_frame = 0;
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0.0 : values[values.size() / 2];
}

/// Time: from saving to the whole picture. "taken_over": until the node has the text, which another process has drawn
/// with by then; "longest_frame": of all frames since saving, the first with the new text included; "frame": what one
/// takes once all is there. The argument is how often a part of the text is unrolled.
void saveToPicture(benchmark::State& state)
{
    LiveEdit edit(formatString("#define COPIES %d\n", static_cast<int>(state.range(0))));
    if (const std::string error = edit.open(); !error.empty())
        return state.SkipWithError(error.c_str());
    std::vector<double> taken, frames, longest;
    for ([[maybe_unused]] auto _ : state) {
        edit.drawWhole();
        const double saved = getTime();
        edit.save();
        taken.push_back(edit.playUntilChange() - saved);
        if (taken.back() > g_patience)
            return state.SkipWithError(edit.said().c_str());
        longest.push_back(std::max(edit.drawWhole(), edit.takeLongest()));
        state.SetIterationTime(getTime() - saved);
        double next = edit.drawWhole();
        for (int i = 0; i < 4; ++i)
            next = std::min(next, edit.drawWhole());
        frames.push_back(next);
    }
    state.counters["taken_over_ms"] = 1e3 * median(taken);
    state.counters["frame_ms"] = 1e3 * median(frames);
    state.counters["longest_frame_ms"] = 1e3 * median(longest);
    state.counters["worst_longest_frame_ms"] = 1e3 * *std::max_element(longest.begin(), longest.end());
}
BENCHMARK(saveToPicture)->UseManualTime()->Unit(benchmark::kMillisecond)->Arg(0)->Iterations(20);
BENCHMARK(saveToPicture)->UseManualTime()->Unit(benchmark::kMillisecond)->Arg(40)->Iterations(5);

} // namespace

} // namespace helvantine::bench
