// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureEffectSharedData.h>

#include <helvantine/renderer/Renderer.h>

namespace helvantine
{

namespace
{

constexpr unsigned vertexCount = 4;

RasterizerState* quadRasterizerState()
{
    D3D11_RASTERIZER_DESC desc = {};
    desc.FillMode = D3D11_FILL_SOLID;
    desc.CullMode = D3D11_CULL_NONE;
    desc.DepthClipEnable = 1;
    desc.MultisampleEnable = 1;
    return getRasterizerState(desc);
}

DepthStencilState* quadDepthState(bool enabled)
{
    D3D11_DEPTH_STENCIL_DESC desc = {};
    desc.DepthEnable = enabled;
    desc.DepthWriteMask = enabled ? D3D11_DEPTH_WRITE_MASK_ALL : D3D11_DEPTH_WRITE_MASK_ZERO;
    desc.DepthFunc = D3D11_COMPARISON_LESS;
    return getDepthStencilState(desc);
}

TextureSampler* makeSampler(D3D11_FILTER filter, D3D11_TEXTURE_ADDRESS_MODE mode)
{
    return createTextureSampler(filter, mode, mode, mode, D3D11_COMPARISON_NEVER);
}

VertexDeclaration* quadDeclaration()
{
    const auto element = [](const char* semantic, unsigned index, DXGI_FORMAT format, unsigned offset) {
        return D3D11_INPUT_ELEMENT_DESC{semantic, index, format, 0, offset, D3D11_INPUT_PER_VERTEX_DATA, 0};
    };
    const D3D11_INPUT_ELEMENT_DESC elements[] = {
        element("POSITION", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0),
        element("COLOR", 0, DXGI_FORMAT_R32G32B32A32_FLOAT, D3D11_APPEND_ALIGNED_ELEMENT),
        element("TEXCOORD", 0, DXGI_FORMAT_R32G32_FLOAT, D3D11_APPEND_ALIGNED_ELEMENT),
        element("TEXCOORD", 1, DXGI_FORMAT_R32G32_FLOAT, D3D11_APPEND_ALIGNED_ELEMENT),
    };
    return createVertexDeclaration(elements, 4);
}

} // namespace

bool TextureEffect::TextureEffectSharedData::create()
{
    m_renderer.set();
    if (!m_renderer.isCurrent())
        return false;
    m_vertexBuffer = createVertexBuffer(nullptr, vertexCount * sizeof(Vertex), sizeof(Vertex),
                                        D3D11_USAGE_DYNAMIC, D3D11_CPU_ACCESS_WRITE, 0);
    m_vertexDeclaration = quadDeclaration();
    m_rasterizerState = quadRasterizerState();
    m_depthOffState = quadDepthState(false);
    m_depthOnState = quadDepthState(true);
    m_clampSampler = makeSampler(D3D11_FILTER_MIN_MAG_MIP_LINEAR, D3D11_TEXTURE_ADDRESS_CLAMP);
    m_wrapSampler = makeSampler(D3D11_FILTER_MIN_MAG_MIP_LINEAR, D3D11_TEXTURE_ADDRESS_WRAP);
    m_mirrorSampler = makeSampler(D3D11_FILTER_MIN_MAG_MIP_LINEAR, D3D11_TEXTURE_ADDRESS_MIRROR);
    m_pointSampler = makeSampler(D3D11_FILTER_MIN_MAG_MIP_POINT, D3D11_TEXTURE_ADDRESS_CLAMP);
    m_constantBuffer = new ConstantBuffer();
    const bool made = m_constantBuffer->create(sizeof(Constants)) && m_vertexBuffer && m_vertexDeclaration &&
                      m_rasterizerState && m_depthOffState && m_depthOnState && m_clampSampler &&
                      m_wrapSampler && m_mirrorSampler && m_pointSampler;
    if (!made)
        m_renderer.clear();
    return made;
}

Shader* TextureEffect::TextureEffectShaderCache::getShader(TextureEffectType type)
{
    const auto found = m_shaders.find(type);
    if (found != m_shaders.end())
        return found->second.get();
    const TextureEffectProgram* program = getTextureEffectProgram(type);
    if (!program || !g_renderer)
        return nullptr;

    ShaderFromMemoryParams params;
    params.vertexSource = getEffectShaderText();
    params.vertexEntry = program->vertexEntry;
    params.pixelSource = params.vertexSource;
    params.pixelEntry = program->pixelEntry;
    Shader* shader = createShaderFromMemory(params);
    m_shaders[type] = shader;
    return shader;
}

} // namespace helvantine
