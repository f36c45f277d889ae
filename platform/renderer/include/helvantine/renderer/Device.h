// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/renderer/D3D11Types.h>

namespace helvantine
{

/// A 2D texture made through ID3D11Device. Starts with a count of 1; Release deletes it at 0.
///
/// Give it to createTexture to read it in shaders; the wrapper takes a reference of its own.
class ID3D11Texture2D
{
public:
    virtual uint32_t AddRef() = 0;
    virtual uint32_t Release() = 0;
    virtual void GetDesc(D3D11_TEXTURE2D_DESC* desc) const = 0;

protected:
    virtual ~ID3D11Texture2D() = default;
};

/// Makes textures from descriptions, as Direct3D's device does. Borrowed from the Renderer.
class ID3D11Device
{
public:
    /// Returns 0 (S_OK) and stores the texture; a negative number and null when the description can't be met.
    /// data holds one entry for each mip of each array slice, slices outermost; null leaves the texture zero.
    virtual int32_t CreateTexture2D(const D3D11_TEXTURE2D_DESC* desc, const D3D11_SUBRESOURCE_DATA* data,
                                    ID3D11Texture2D** texture) = 0;

protected:
    virtual ~ID3D11Device() = default;
};

/// The immediate context: draws with what is bound. Borrowed from the Renderer.
///
/// A draw without a bound shader, topology or render target does nothing.
class ID3D11DeviceContext
{
public:
    virtual void IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY topology) = 0;
    virtual void Draw(uint32_t vertexCount, uint32_t startVertex) = 0;
    virtual void DrawIndexed(uint32_t indexCount, uint32_t startIndex, int32_t baseVertex) = 0;

    /// Maps a dynamic texture's subresource for writing; 0 on success. The bytes show what was there before.
    virtual int32_t Map(ID3D11Texture2D* texture, uint32_t subresource, D3D11_MAP type, uint32_t flags,
                        D3D11_MAPPED_SUBRESOURCE* mapped) = 0;
    virtual void Unmap(ID3D11Texture2D* texture, uint32_t subresource) = 0;

protected:
    virtual ~ID3D11DeviceContext() = default;
};

} // namespace helvantine
