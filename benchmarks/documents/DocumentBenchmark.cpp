// SPDX-License-Identifier: MIT
// What a document of 10,000 effects costs to save and to load, against deflating and inflating the same bytes.
#include "support/Ratio.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Keyframe.h>
#include <helvantine/core/System.h>
#include <helvantine/effects3d/CameraEffect.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/object/Property.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <zlib.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <string>
#include <vector>

namespace helvantine::bench
{

namespace
{

constexpr int g_layerCount = 100;
constexpr int g_effectsInALayer = 100;
constexpr int g_keyCount = 8;
constexpr int g_deflateLevel = 6; ///< the archive's: the sizes that come out tell

/// Numbers as an editor leaves them: no two alike.
class Numbers
{
public:
    explicit Numbers(uint32_t seed) : m_state(seed) {}

    float next()
    {
        m_state = m_state * 1664525u + 1013904223u;
        return static_cast<float>(m_state >> 8) * 1e-4f;
    }

private:
    uint32_t m_state;
};

/// Eight keys on each property that takes them: six of a camera's seven.
void animate(Effect& effect, Numbers numbers)
{
    for (const SmartRef<PropertyGroup>& group : effect.m_inputGroups) {
        for (PropertyBase* property : group->m_properties) {
            property->enableKeyframe(true);
            Keyframe* curve = property->m_keyframe.get();
            for (int k = 0; curve && k < g_keyCount; ++k) {
                Key* key = curve->createKey();
                key->time = static_cast<float>(k) * 0.5f;
                key->mode = KeyModeBezier;
                for (unsigned c = 0; c < curve->getComponentCount(); ++c)
                    key->values[c] = numbers.next();
                key->vectorA.x = key->vectorB.x = numbers.next();
                curve->addKey(key, false);
            }
        }
    }
}

void fillComposition(Composition& composition)
{
    for (int i = 0; i < g_layerCount; ++i) {
        auto* layer = new Layer;
        composition.m_rootEffect->addObject(layer, -1);
        layer->onInit();
        for (int j = 0; j < g_effectsInALayer; ++j) {
            auto* camera = new CameraEffect;
            layer->addObject(camera, -1);
            camera->onInit();
            animate(*camera, Numbers(static_cast<uint32_t>(i * g_effectsInALayer + j)));
        }
    }
}

class Project
{
public:
    Project()
        : m_folder(getTemporaryFolder() + "/helvantine-bench-" + uniqueIdToString(generateUniqueId()) + "/")
    {
        makeFolders(m_folder.c_str());
        m_application.newDocument(m_folder.c_str());
        const SmartRef<Composition> composition(new Composition(true, true));
        m_application.getDocument()->getCompositionManager()->getRoot()->addComposition(composition.get());
        fillComposition(*composition);
        save();
        std::ifstream file(m_folder + "Helvantine.Script", std::ios::binary);
        m_script.assign(std::istreambuf_iterator<char>(file), {});
        m_deflated.resize(compressBound(m_script.size()));
        deflateScript();
    }
    ~Project()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    void save() { m_application.saveDocument(getPath().c_str()); }
    void load() { m_application.loadDocument(getPath().c_str(), nullptr, nullptr); }

    void empty()
    {
        m_application.newDocument(m_folder.c_str());
        malloc_trim(0);
    }

    void deflateScript()
    {
        z_stream stream = {};
        deflateInit2(&stream, g_deflateLevel, Z_DEFLATED, -MAX_WBITS, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY);
        stream.next_in = m_script.data();
        stream.avail_in = static_cast<uInt>(m_script.size());
        stream.next_out = m_deflated.data();
        stream.avail_out = static_cast<uInt>(m_deflated.size());
        deflate(&stream, Z_FINISH);
        m_deflatedSize = stream.total_out;
        deflateEnd(&stream);
    }
    void inflateScript()
    {
        z_stream stream = {};
        inflateInit2(&stream, -MAX_WBITS);
        stream.next_in = m_deflated.data();
        stream.avail_in = static_cast<uInt>(m_deflatedSize);
        stream.next_out = m_script.data();
        stream.avail_out = static_cast<uInt>(m_script.size());
        inflate(&stream, Z_FINISH);
        inflateEnd(&stream);
    }

    double getScriptSize() const { return static_cast<double>(m_script.size()); }
    double getDeflatedSize() const { return static_cast<double>(m_deflatedSize); }
    std::string getPath() const { return m_folder + "bench.hfx"; }

private:
    std::string m_folder;
    Application m_application{nullptr, false};
    std::vector<uint8_t> m_script;
    std::vector<uint8_t> m_deflated;
    std::size_t m_deflatedSize = 0;
};

/// A line "VmHWM:  1234 kB" of the process's status, in bytes.
double readMemory(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(name))
            return std::stod(line.substr(name.size() + 1)) * 1024.0;
    }
    return 0.0;
}

/// How far the work makes the resident memory grow at its highest.
template <class Work>
double measurePeak(Work&& work)
{
    std::ofstream("/proc/self/clear_refs") << 5; // the high mark starts anew
    const double before = readMemory("VmRSS:");
    work();
    return readMemory("VmHWM:") - before;
}

void save(benchmark::State& state)
{
    Project project;
    compare(
        state, [&] { project.deflateScript(); }, [&] { project.save(); });
    state.counters["script_MB"] = project.getScriptSize() * 1e-6;
    state.counters["deflated_MB"] = project.getDeflatedSize() * 1e-6;
    state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(project.getPath())) * 1e-6;
    malloc_trim(0);
    state.counters["peak_of_script"] = measurePeak([&] { project.save(); }) / project.getScriptSize();
}
BENCHMARK(save)->UseManualTime()->Unit(benchmark::kMillisecond);

void load(benchmark::State& state)
{
    Project project;
    compare(
        state, [&] { project.inflateScript(); }, [&] { project.load(); });
    project.empty();
    state.counters["peak_of_script"] = measurePeak([&] { project.load(); }) / project.getScriptSize();
}
BENCHMARK(load)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

} // namespace helvantine::bench
