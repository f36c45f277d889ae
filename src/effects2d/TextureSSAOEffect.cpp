// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureSSAOEffect.h>

#include <helvantine/core/Random.h>
#include <helvantine/effects2d/TextureEffectSharedData.h>
#include <helvantine/object/AddProperties.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/renderer/Viewport.h>
#include <helvantine/resource/ResourceManager.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace helvantine
{

namespace
{

constexpr float radiansPerDegree = 0.017453292f;

/// Made once, and kept for the life of the shared data.
Texture* createRandomTexture()
{
    constexpr unsigned side = 256;
    if (!g_renderer)
        return nullptr;
    std::vector<uint8_t> texels(size_t{4} * side * side);
    for (uint8_t& channel : texels)
        channel = static_cast<uint8_t>(randomFloat(0.0f, 1.0f) * 255.0f);
    D3D11_TEXTURE2D_DESC desc = {};
    desc.Width = side;
    desc.Height = side;
    desc.MipLevels = 1;
    desc.ArraySize = 1;
    desc.Format = DXGI_FORMAT_R8G8B8A8_UNORM;
    desc.SampleDesc.Count = 1;
    desc.Usage = D3D11_USAGE_DYNAMIC;
    desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    desc.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;
    const D3D11_SUBRESOURCE_DATA data = {texels.data(), side * 4, 0};
    ID3D11Texture2D* made = nullptr;
    g_renderer->getDevice()->CreateTexture2D(&desc, &data, &made);
    Texture* texture = createTexture(made);
    if (made)
        made->Release();
    return texture;
}

/// Corners and axes of a cube, each with a length of its own.
std::array<Vec4, 14> makeOffsetVectors()
{
    constexpr Vec3 directions[] = {{1, 1, 1},   {-1, -1, -1}, {-1, 1, 1}, {1, -1, -1}, {1, 1, -1},
                                   {-1, -1, 1}, {-1, 1, -1},  {1, -1, 1}, {-1, 0, 0},  {1, 0, 0},
                                   {0, -1, 0},  {0, 1, 0},    {0, 0, -1}, {0, 0, 1}};
    std::array<Vec4, std::size(directions)> offsets;
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        const Vec3 offset = normalize(directions[i]) * randomFloat(0.25f, 1.0f);
        offsets[i] = Vec4(offset.x, offset.y, offset.z, 0.0f);
    }
    return offsets;
}

/// From clip space to texture coordinates.
constexpr Matrix s_clipToTexture = {{{0.5f, 0, 0, 0}, {0, -0.5f, 0, 0}, {0, 0, 1, 0}, {0.5f, 0.5f, 0, 1}}};

} // namespace

/// The texture is made first, if there is a renderer by then; with another renderer, it is made anew.
class TextureSSAOEffect::SharedData
{
public:
    SharedData()
    {
        prepare();
        m_offsetVectors = makeOffsetVectors();
    }

    /// Whether there is a texture.
    bool prepare()
    {
        if (!m_randomTexture || !m_renderer.isCurrent()) {
            m_randomTexture = createRandomTexture();
            m_renderer.set();
        }
        return m_randomTexture.get() != nullptr;
    }

    SmartRef<Texture> m_randomTexture;
    std::array<Vec4, offsetCount> m_offsetVectors;

private:
    RendererMark m_renderer;
};

std::unique_ptr<TextureSSAOEffect::SharedData> TextureSSAOEffect::s_sharedSsaoData;
unsigned TextureSSAOEffect::s_instanceCount = 0;

TextureSSAOEffect::TextureSSAOEffect()
    : m_ssaoGroup(new PropertyGroup(this, "SSAO")), m_occlusionRadius(this, KindFloat, "Occlusion Radius"),
      m_occlusionFadeStart(this, KindFloat, "Occlusion Fade Start"),
      m_occlusionFadeEnd(this, KindFloat, "Occlusion Fade End"),
      m_occlusionEpsilon(this, KindFloat, "Occlusion Epsilon"),
      m_hBlurTargetProperty(this, KindResource, "SSAO HBlur Target"),
      m_vBlurTargetProperty(this, KindResource, "SSAO VBlur Target"), m_blurCount(this, KindInt, "Blur Count")
{
    m_occlusionRadius.setDefault(0.5f);
    m_occlusionFadeStart.setDefault(0.2f);
    m_occlusionFadeEnd.setDefault(2.0f);
    m_occlusionEpsilon.setDefault(0.05f);
    m_blurCount.setDefault(1);
    addProperties(*m_ssaoGroup,
                  {&m_occlusionRadius, &m_occlusionFadeStart, &m_occlusionFadeEnd, &m_occlusionEpsilon,
                   &m_hBlurTargetProperty, &m_vBlurTargetProperty, &m_blurCount});
    addInputGroup(m_ssaoGroup.get());
    if (s_instanceCount++ == 0)
        s_sharedSsaoData = std::make_unique<SharedData>();
}

TextureSSAOEffect::~TextureSSAOEffect()
{
    if (--s_instanceCount == 0)
        s_sharedSsaoData.reset();
}

void TextureSSAOEffect::onPropertyChanged(PropertyBase* property)
{
    TextureEffect::onPropertyChanged(property);
    resolveTarget(*property, m_textureProperty, m_normalDepthTarget);
    resolveTarget(*property, m_hBlurTargetProperty, m_hBlurTarget);
    resolveTarget(*property, m_vBlurTargetProperty, m_vBlurTarget);
}

void TextureSSAOEffect::onRender(FxRenderContext& context)
{
    if (!hasSource() || !m_normalDepthTarget || !m_hBlurTarget || !m_vBlurTarget)
        return;
    if (!prepareSharedData() || !s_sharedSsaoData->prepare())
        return;
    m_pointSampler = s_sharedData->m_pointSampler;
    Texture* normalDepth = getTexture(*m_normalDepthTarget);
    drawOcclusion(context, normalDepth);
    drawBlur(normalDepth);
}

void TextureSSAOEffect::drawVariants(FxWarmUpContext& context)
{
    drawWithCount(context, m_blurCount);
}

void TextureSSAOEffect::drawOcclusion(FxRenderContext& context, Texture* normalDepth)
{
    // The colour's x is the number of the vertex's corner of the frustum.
    writeFullTargetQuad({Vec4(0, 0, 0, 0), Vec4(1, 0, 0, 0), Vec4(3, 0, 0, 0), Vec4(2, 0, 0, 0)});
    bindPassStates();
    writeOcclusionConstants(context);
    m_ssaoConstantBuffer.bindVS();
    m_ssaoConstantBuffer.bindPS();
    TextureSampler* sampler = m_pointSampler.get();
    const Input inputs[] = {{normalDepth, sampler}, {s_sharedSsaoData->m_randomTexture.get(), sampler}};
    drawPass(TextureEffectType::SSAO, m_vBlurTarget->getRenderTarget(), inputs);
}

void TextureSSAOEffect::drawBlur(Texture* normalDepth)
{
    constexpr int32_t maxCycles = 7;
    if (m_hBlurTarget->getRenderTarget())
        writeBlurConstants(*m_hBlurTarget->getRenderTarget());
    m_blurConstantBuffer.bindPS();
    TextureSampler* sampler = s_sharedData->m_clampSampler.get();
    for (int32_t i = 0; i < std::min(m_blurCount.m_value, maxCycles); ++i) {
        const Input columns[] = {{normalDepth, sampler}, {getTexture(*m_vBlurTarget), sampler}};
        drawPass(TextureEffectType::SSAOBlurV, m_hBlurTarget->getRenderTarget(), columns);
        const Input rows[] = {{normalDepth, sampler}, {getTexture(*m_hBlurTarget), sampler}};
        drawPass(TextureEffectType::SSAOBlurH, m_vBlurTarget->getRenderTarget(), rows);
    }
}

void TextureSSAOEffect::writeOcclusionConstants(const FxRenderContext& context)
{
    const Viewport* viewport = g_renderer->getViewport();
    const float aspect = viewport ? viewport->getRect().width / viewport->getRect().height : 1.0f;
    const float farPlane = context.farPlane;
    const float halfHeight = std::tan(context.fov * radiansPerDegree / 2.0f) * farPlane;
    const float halfWidth = halfHeight * aspect;
    OcclusionConstants constants = {.occlusionRadius = m_occlusionRadius.m_value,
                                    .occlusionFadeStart = m_occlusionFadeStart.m_value,
                                    .occlusionFadeEnd = m_occlusionFadeEnd.m_value,
                                    .occlusionSurfaceEpsilon = m_occlusionEpsilon.m_value,
                                    .offsetVectors = {},
                                    .frustumCorners = {Vec4(-halfWidth, halfHeight, farPlane, 0),
                                                       Vec4(halfWidth, halfHeight, farPlane, 0),
                                                       Vec4(halfWidth, -halfHeight, farPlane, 0),
                                                       Vec4(-halfWidth, -halfHeight, farPlane, 0)},
                                    .viewToTextureSpace =
                                        MatrixTranspose(MatrixMultiply(context.projection, s_clipToTexture))};
    std::copy(s_sharedSsaoData->m_offsetVectors.begin(), s_sharedSsaoData->m_offsetVectors.end(),
              constants.offsetVectors);
    m_ssaoConstantBuffer.write(constants);
}

void TextureSSAOEffect::writeBlurConstants(const RenderTarget& target)
{
    constexpr float weights[weightCount] = {0.05f, 0.05f, 0.1f, 0.1f,  0.1f, 0.2f,
                                            0.1f,  0.1f,  0.1f, 0.05f, 0.05f};
    BlurConstants constants = {.texelWidth = 1.0f / static_cast<float>(target.getWidth()),
                               .texelHeight = 1.0f / static_cast<float>(target.getHeight()),
                               .unused = {},
                               .weights = {}};
    for (std::size_t i = 0; i < weightCount; ++i)
        constants.weights[i].x = weights[i];
    m_blurConstantBuffer.write(constants);
}

} // namespace helvantine
