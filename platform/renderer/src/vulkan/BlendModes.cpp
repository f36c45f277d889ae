// SPDX-License-Identifier: MIT
#include <helvantine/renderer/BlendState.h>

namespace helvantine
{

namespace
{

struct BlendModeInfo
{
    const char* name;
    bool enabled;
    D3D11_BLEND source;
    D3D11_BLEND destination;
    D3D11_BLEND sourceAlpha;
    D3D11_BLEND destinationAlpha;
};

/// In the order of BlendMode.
constexpr BlendModeInfo blendModes[blendModeCount] = {
    {"Solid", false, D3D11_BLEND_ONE, D3D11_BLEND_ZERO, D3D11_BLEND_ONE, D3D11_BLEND_ZERO},
    {"Additive", true, D3D11_BLEND_SRC_ALPHA, D3D11_BLEND_ONE, D3D11_BLEND_ONE, D3D11_BLEND_ONE},
    {"Alpha", true, D3D11_BLEND_SRC_ALPHA, D3D11_BLEND_INV_SRC_ALPHA, D3D11_BLEND_ONE,
     D3D11_BLEND_INV_SRC_ALPHA},
    {"Multiply", true, D3D11_BLEND_DEST_COLOR, D3D11_BLEND_ZERO, D3D11_BLEND_ZERO, D3D11_BLEND_ONE},
    {"Premultiplied", true, D3D11_BLEND_ONE, D3D11_BLEND_INV_SRC_ALPHA, D3D11_BLEND_ONE,
     D3D11_BLEND_INV_SRC_ALPHA},
};

bool isKnown(BlendMode mode)
{
    return mode >= BlendMode::Solid && static_cast<int32_t>(mode) < blendModeCount;
}

} // namespace

BlendState* getBlendState(BlendMode mode)
{
    const BlendModeInfo& info = blendModes[isKnown(mode) ? static_cast<int32_t>(mode) : 0];
    D3D11_BLEND_DESC desc;
    desc.RenderTarget[0].BlendEnable = info.enabled;
    desc.RenderTarget[0].SrcBlend = info.source;
    desc.RenderTarget[0].DestBlend = info.destination;
    desc.RenderTarget[0].SrcBlendAlpha = info.sourceAlpha;
    desc.RenderTarget[0].DestBlendAlpha = info.destinationAlpha;
    return getBlendState(desc);
}

const char* getBlendName(BlendMode mode)
{
    return isKnown(mode) ? blendModes[static_cast<int32_t>(mode)].name : "";
}

} // namespace helvantine
