// SPDX-License-Identifier: MIT
// What 2D effects cost against a program that draws the same passes with Vulkan alone. Both record, submit and wait.
#include "support/BarePass.h"
#include "support/Ratio.h"

#include <helvantine/core/System.h>
#include <helvantine/core/UniqueId.h>
#include <helvantine/effects2d/TextureBlendEffect.h>
#include <helvantine/effects2d/TextureBlurEffect.h>
#include <helvantine/effects2d/TextureColorCorrectionEffect.h>
#include <helvantine/effects2d/TextureDisplacementEffect.h>
#include <helvantine/effects2d/TextureEffectSharedData.h>
#include <helvantine/effects2d/TextureGlowEffect.h>
#include <helvantine/host/Application.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/resource/ResourceManager.h>

#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>

namespace helvantine::bench
{

namespace
{

constexpr uint32_t g_width = 1280;
constexpr uint32_t g_height = 720;

/// A smooth picture that uses all values.
std::vector<uint32_t> makeTexels(uint32_t seed)
{
    std::vector<uint32_t> texels;
    for (uint32_t y = 0; y < g_height; ++y) {
        for (uint32_t x = 0; x < g_width; ++x) {
            const uint32_t red = (x / 2 + seed) & 0xFF;
            const uint32_t green = (y / 2 + x / 4) & 0xFF;
            const uint32_t blue = (x * y / 1024 + seed) & 0xFF;
            texels.push_back(red | green << 8 | blue << 16 | 0xFF000000u);
        }
    }
    return texels;
}

/// As a file that is used as it stands, without smaller mips.
void writeDds(const std::string& path, const std::vector<uint32_t>& texels)
{
    uint32_t header[32] = {0x20534444, 124, 0x1007, g_height, g_width, g_width * 4};
    header[7] = 1;
    const uint32_t pixelFormat[8] = {32, 0x41, 0, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000};
    std::memcpy(header + 19, pixelFormat, sizeof pixelFormat);
    header[27] = 0x1000;
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(header), sizeof header);
    file.write(reinterpret_cast<const char*>(texels.data()),
               static_cast<std::streamsize>(texels.size() * sizeof texels[0]));
}

void set(Object& object, const char* group, const char* name, const std::string& text)
{
    object.findGroup(group)->findProperty(name)->fromString(text.c_str());
}

/// An application with two pictures, three render targets and one to draw to; and the same for Vulkan alone.
class Stage
{
public:
    Stage() : m_application(getExecutableFolder().c_str(), true), m_bare(openRenderer(m_application))
    {
        m_application.newDocument(nullptr);
        addPicture(1);
        addPicture(2);
        for (int i = 0; i < 3; ++i)
            addTarget();
        m_target = createRenderTarget(g_width, g_height, DXGI_FORMAT_B8G8R8A8_UNORM, 1, 0, 0);
        m_bareTarget = m_bare.createTarget(g_width, g_height, VK_FORMAT_B8G8R8A8_UNORM);
        m_linear = m_bare.createSampler(VK_FILTER_LINEAR, VK_SAMPLER_ADDRESS_MODE_CLAMP_TO_EDGE);
        m_point = m_bare.createSampler(VK_FILTER_NEAREST, VK_SAMPLER_ADDRESS_MODE_CLAMP_TO_EDGE);
    }

    ~Stage()
    {
        m_passes.clear();
        m_effect = nullptr;
        m_target = nullptr;
        m_pictures.clear();
        m_targets.clear();
    }

    /// The effect over the whole target, with the first picture as its source.
    template <class T>
    T& makeEffect()
    {
        auto* effect = new T;
        m_effect = effect;
        set(*effect, "Transformation", "Size", "960, 540");
        set(*effect, "Attributes", "Texture", getPictureId(0));
        return *effect;
    }

    std::string getPictureId(size_t index) const { return uniqueIdToString(m_pictures[index]->getId()); }
    std::string getTargetId(size_t index) const { return uniqueIdToString(m_targets[index]->getId()); }
    BareImage& barePicture(size_t index) { return m_barePictures[index]; }
    BareImage& bareTarget(size_t index) { return m_bareTargets[index]; }

    /// A pass over the whole of a target, without transformation. Each call adds to what Vulkan alone draws.
    void addPass(TextureEffectType type, BareImage& target, BareImage& source, bool filtered,
                 const std::vector<float>& pixelConstants = {})
    {
        const Effect2D::Corners corners = {Vec3(-1, 1, 0), Vec3(1, 1, 0), Vec3(1, -1, 0), Vec3(-1, -1, 0)};
        BarePassDescription description = describe(type, corners, Matrix());
        description.target = &target;
        description.sources = {&source};
        description.samplers = {filtered ? m_linear : m_point};
        addPass(description, {}, pixelConstants);
    }

    /// The pass that draws the effect's own quad.
    void addFinalPass(TextureEffectType type, const std::vector<BareImage*>& sources,
                      const std::vector<float>& vertexConstants = {},
                      const std::vector<float>& pixelConstants = {})
    {
        FxUpdateContext context;
        context.fov = 45.0f;
        m_effect->update(context);
        const Matrix transform = MatrixMultiply(MatrixMultiply(m_effect->getWorld(), m_effect->getView()),
                                                m_effect->getProjection());
        BarePassDescription description = describe(type, m_effect->getCorners(), transform);
        description.target = &m_bareTarget;
        description.sources = sources;
        description.samplers.assign(sources.size(), m_linear);
        addPass(description, vertexConstants, pixelConstants);
    }

    void compareWithBare(benchmark::State& state)
    {
        const auto drawBare = [this] {
            const VkCommandBuffer commands = m_bare.begin();
            for (const auto& pass : m_passes)
                pass->record(commands);
            m_bare.submit();
            m_bare.wait();
        };
        const auto drawEffect = [this] {
            FxRenderContext context;
            g_renderer->beginFrame(m_target.get());
            m_effect->render(context);
            g_renderer->endFrame();
        };
        drawBare();
        drawEffect();
        compare(state, drawBare, drawEffect);
        std::vector<uint8_t> pixels;
        if (!g_renderer->readBack(m_target.get(), pixels) || pixels != m_bare.read(m_bareTarget))
            state.SkipWithError("Vulkan alone draws something else");
    }

private:
    static const char* openRenderer(Application&)
    {
        if (!g_renderer)
            std::exit(1);
        g_renderer->setOffline(true);
        return g_renderer->getDeviceName();
    }

    void addPicture(uint32_t seed)
    {
        const std::vector<uint32_t> texels = makeTexels(seed);
        const std::string path = (std::filesystem::temp_directory_path() /
                                  ("helvantine-benchmark-" + std::to_string(getpid()) + ".dds"))
                                     .string();
        writeDds(path, texels);
        SmartRef<TextureResource> resource(new TextureResource);
        if (!resource->load(path.c_str()))
            std::exit(1);
        std::filesystem::remove(path);
        getResourceManager()->getRoot()->addResource(resource.get());
        m_pictures.push_back(resource);
        m_barePictures.push_back(
            m_bare.createTexture(g_width, g_height, VK_FORMAT_R8G8B8A8_UNORM, texels.data()));
    }

    void addTarget()
    {
        SmartRef<RenderTargetResource> resource(new RenderTargetResource);
        if (!resource->create(g_width, g_height, RenderTargetResource::RGBA8, 1, 0, false,
                              RenderTargetResource::D24S8))
            std::exit(1);
        getResourceManager()->getRoot()->addResource(resource.get());
        m_targets.push_back(resource);
        m_bareTargets.push_back(m_bare.createTarget(g_width, g_height, VK_FORMAT_B8G8R8A8_UNORM));
    }

    static BarePassDescription describe(TextureEffectType type, const Effect2D::Corners& corners,
                                        const Matrix& transform)
    {
        const TextureEffectProgram* program = getTextureEffectProgram(type);
        BarePassDescription description;
        description.program = buildProgram(getEffectShaderText(), program->vertexEntry, program->pixelEntry);
        TextureEffect::TextureEffectSharedData::Constants common{};
        common.worldViewProjection = MatrixTranspose(transform);
        common.invScreenSize = Vec2(1.0f / g_width, 1.0f / g_height);
        std::vector<float>& values = description.constants[vertexConstantBindingBase];
        values.resize(sizeof common / sizeof values[0]);
        std::memcpy(values.data(), &common, sizeof common);
        const size_t cornerOfVertex[] = {0, 1, 3, 2};
        for (size_t i = 0; i < 4; ++i) {
            const Vec3& corner = corners[cornerOfVertex[i]];
            const float u = i % 2 == 0 ? 0.0f : 1.0f;
            const float v = i < 2 ? 0.0f : 1.0f;
            description.vertices[i] = {{corner.x, corner.y, corner.z}, {1, 1, 1, 1}, {u, v}, {u, v}};
        }
        return description;
    }

    void addPass(BarePassDescription& description, const std::vector<float>& vertexConstants,
                 const std::vector<float>& pixelConstants)
    {
        if (!vertexConstants.empty())
            description.constants[vertexConstantBindingBase + 1] = vertexConstants;
        if (!pixelConstants.empty())
            description.constants[pixelConstantBindingBase + 1] = pixelConstants;
        m_passes.push_back(std::make_unique<BarePass>(m_bare, description));
    }

    Application m_application;
    BareVulkan m_bare;
    SmartRef<TextureEffect> m_effect;
    SmartRef<RenderTarget> m_target;
    std::vector<SmartRef<TextureResource>> m_pictures;
    std::vector<SmartRef<RenderTargetResource>> m_targets;
    std::deque<BareImage> m_barePictures; // passes point at them
    std::deque<BareImage> m_bareTargets;
    BareImage m_bareTarget;
    VkSampler m_linear = VK_NULL_HANDLE;
    VkSampler m_point = VK_NULL_HANDLE;
    std::vector<std::unique_ptr<BarePass>> m_passes;
};

using Type = TextureEffectType;

void drawTexture(benchmark::State& state)
{
    Stage stage;
    stage.makeEffect<TextureEffect>();
    stage.addFinalPass(Type::Texture, {&stage.barePicture(0)});
    stage.compareWithBare(state);
}

void drawColorCorrection(benchmark::State& state)
{
    Stage stage;
    auto& effect = stage.makeEffect<TextureColorCorrectionEffect>();
    set(effect, "Color Correction", "Contrast", "1.5");
    set(effect, "Color Correction", "Hue", "30");
    stage.addFinalPass(Type::ColorCorrection, {&stage.barePicture(0)}, {1.0f, 1.5f, 1.0f, 30.0f});
    stage.compareWithBare(state);
}

void drawBlend(benchmark::State& state)
{
    Stage stage;
    auto& effect = stage.makeEffect<TextureBlendEffect>();
    set(effect, "Attributes", "Texture-2", stage.getPictureId(1));
    stage.addFinalPass(Type::BlendLinear, {&stage.barePicture(0), &stage.barePicture(1)}, {},
                       {0.5f, 0, 0, 0});
    stage.compareWithBare(state);
}

void drawDisplacement(benchmark::State& state)
{
    Stage stage;
    auto& effect = stage.makeEffect<TextureDisplacementEffect>();
    set(effect, "Attributes", "Displacement Texture", stage.getPictureId(1));
    set(effect, "UV", "U Power", "0.05");
    set(effect, "UV", "V Power", "0.05");
    stage.addFinalPass(Type::Displacement, {&stage.barePicture(0), &stage.barePicture(1)}, {},
                       {0.05f, 0.05f, 0, 0});
    stage.compareWithBare(state);
}

// With "filtered", Vulkan alone reads the passes' sources with a linear filter. Pixels and texels are the same, so this
// is the same picture.

void drawBlur(benchmark::State& state)
{
    const bool filtered = state.range(0) != 0;
    Stage stage;
    auto& effect = stage.makeEffect<TextureBlurEffect>();
    set(effect, "Blur", "Vertical Blur Target", stage.getTargetId(0));
    set(effect, "Blur", "Horizontal Blur Target", stage.getTargetId(1));
    stage.addPass(Type::HorizontalBlur, stage.bareTarget(0), stage.barePicture(0), filtered);
    stage.addPass(Type::VerticalBlur, stage.bareTarget(1), stage.bareTarget(0), filtered);
    stage.addFinalPass(Type::Texture, {&stage.bareTarget(1)});
    stage.compareWithBare(state);
}

void drawGlow(benchmark::State& state)
{
    const bool filtered = state.range(0) != 0;
    Stage stage;
    auto& effect = stage.makeEffect<TextureGlowEffect>();
    set(effect, "Glow", "Glow Target", stage.getTargetId(2));
    set(effect, "Glow", "Vertical Blur Target", stage.getTargetId(0));
    set(effect, "Glow", "Horizontal Blur Target", stage.getTargetId(1));
    const std::vector<float> constants = {0.5f, 1.0f, 1.0f, 1.0f, 1.0f, 0, 0, 0};
    stage.addPass(Type::Glow, stage.bareTarget(2), stage.barePicture(0), filtered, constants);
    stage.addPass(Type::HorizontalBlur, stage.bareTarget(0), stage.bareTarget(2), filtered);
    stage.addPass(Type::VerticalBlur, stage.bareTarget(1), stage.bareTarget(0), filtered);
    stage.addFinalPass(Type::GlowCombine, {&stage.bareTarget(1), &stage.barePicture(0)}, {}, constants);
    stage.compareWithBare(state);
}

BENCHMARK(drawTexture)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(drawColorCorrection)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(drawBlend)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(drawDisplacement)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(drawBlur)->ArgName("filtered")->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(drawGlow)->ArgName("filtered")->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace helvantine::bench
