// SPDX-License-Identifier: MIT
#include "HlslInputs.h"

#include <gtest/gtest.h>
#include <helvantine/core/Vec4.h>
#include <helvantine/renderer/ConstantBuffer.h>
#include <helvantine/renderer/Device.h>

#include <bit>
#include <cstring>

namespace helvantine::test
{

namespace
{

SmartRef<Texture> makeTexture(Renderer& renderer)
{
    std::vector<Vec4> texels;
    for (int i = 0; i < 8; ++i)
        texels.emplace_back(float(i % 4), float(i / 4), float(i % 4 + 10 * (i / 4)), 1.0f);
    const Vec4 small[] = {{100, 0, 0, 1}, {101, 0, 0, 1}};
    const D3D11_SUBRESOURCE_DATA data[] = {{texels.data(), 64, 0}, {small, 32, 0}};
    D3D11_TEXTURE2D_DESC desc;
    desc.Width = 4;
    desc.Height = 2;
    desc.MipLevels = 2;
    desc.Format = DXGI_FORMAT_R32G32B32A32_FLOAT;
    desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    ID3D11Texture2D* texture = nullptr;
    EXPECT_EQ(renderer.getDevice()->CreateTexture2D(&desc, data, &texture), 0);
    SmartRef<Texture> wrapped = createTexture(texture);
    if (texture)
        texture->Release();
    return wrapped;
}

SmartRef<TextureSampler> makeSampler(D3D11_FILTER filter, D3D11_TEXTURE_ADDRESS_MODE mode)
{
    return createTextureSampler(filter, mode, mode, mode, D3D11_COMPARISON_LESS);
}

void bindConstants(unsigned slot, const std::vector<uint32_t>& words)
{
    const SmartRef<ConstantBuffer> buffer = new ConstantBuffer;
    EXPECT_TRUE(buffer->create(static_cast<unsigned>(words.size() * 4)));
    std::memcpy(buffer->map(), words.data(), words.size() * 4);
    buffer->unmap();
    buffer->bindVS(slot);
    buffer->bindPS(slot);
}

} // namespace

HlslInputs::HlslInputs(Renderer& renderer)
    : m_texture(makeTexture(renderer)),
      m_samplers{makeSampler(D3D11_FILTER_MIN_MAG_MIP_POINT, D3D11_TEXTURE_ADDRESS_CLAMP),
                 makeSampler(D3D11_FILTER_MIN_MAG_MIP_LINEAR, D3D11_TEXTURE_ADDRESS_WRAP),
                 makeSampler(D3D11_FILTER_COMPARISON_MIN_MAG_MIP_POINT, D3D11_TEXTURE_ADDRESS_CLAMP)}
{
}

void HlslInputs::bind(const std::vector<uint32_t>& arguments)
{
    std::vector<uint32_t> numbers(256);
    for (uint32_t i = 0; i < numbers.size(); ++i)
        numbers[i] = std::bit_cast<uint32_t>(static_cast<float>(i));
    bindConstants(0, arguments);
    bindConstants(1, numbers);
    bindConstants(2, numbers);
    m_texture->bind(0);
    for (unsigned i = 0; i < m_samplers.size(); ++i)
        m_samplers[i]->bind(i);
}

} // namespace helvantine::test
