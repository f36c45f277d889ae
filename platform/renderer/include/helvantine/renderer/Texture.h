// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>
#include <helvantine/renderer/D3D11Types.h>

#include <cstddef>
#include <memory>
#include <string>

namespace helvantine
{

class ID3D11Texture2D;

/// An image that shaders read.
///
/// Its slot is shared by both stages. A slot keeps its texture alive and bound until the next bind or unbind
/// of that slot; callers rely on it.
class HELVANTINE_RENDERER_API Texture : public IRefCount
{
public:
    virtual void bind(unsigned slot) = 0;   ///< slot 0 to 15
    virtual void unbind(unsigned slot) = 0; ///< empties the slot, whatever is in it

    virtual unsigned getWidth() const = 0;  ///< pixels of the largest mip
    virtual unsigned getHeight() const = 0; ///< pixels of the largest mip
};

/// Reads png, bmp, tga, jpg or dds through g_fileSystem: 8-bit RGBA without colour conversion and with a full
/// mip chain, dds as stored (BC1 to BC7, cubes, mips); 16,384 pixels a side at most. Gamma and profiles are not applied.
/// Pixels that a file leaves out are transparent black; a file that ends before its picture does can't be read.
///
/// All users of a path share one object while it lives; a file whose size or time changed is read anew.
/// Null if it can't be read (the report says why) or without a renderer. A new one has count 0.
HELVANTINE_RENDERER_API Texture* loadTextureFromCache(const char* path);

/// The decoding of a file on a thread of its own, for a host that shows frames meanwhile.
///
/// When it is done without an error, loadTextureFromCache finds the texture ready, as long as this object lives and the
/// file stays as it is.
class HELVANTINE_RENDERER_API TextureLoading
{
public:
    virtual ~TextureLoading() = default; ///< waits for the decoder

    virtual bool isDone() = 0; ///< doesn't wait for the decoder; hands what it made to the device
    /// Once it is done: `path: reason`, empty on success.
    virtual const std::string& getErrorText() const = 0;
};

/// Opens the file before it returns. Never null, and path must not be; needs a renderer.
HELVANTINE_RENDERER_API std::unique_ptr<TextureLoading> beginTextureLoading(const char* path);

/// Whether loadTextureFromCache can read that file, found out by decoding it: needs no renderer. False with
/// `path: reason` in error.
HELVANTINE_RENDERER_API bool checkTextureFile(const char* path, std::string& error);

/// The same from the bytes of such a file in main memory, which are free again afterwards. Every call makes an object of
/// its own. Null if they can't be read (the report says why) or without a renderer.
///
/// name: for captures and messages; null gives "picture in memory".
HELVANTINE_RENDERER_API Texture* createTextureFromMemory(const void* bytes, std::size_t size,
                                                         const char* name = nullptr);

/// Pixels in main memory, rows from the top.
struct TexturePixels
{
    DXGI_FORMAT format = DXGI_FORMAT_R8G8B8A8_UNORM; ///< one that shaders can sample
    unsigned width = 0;                              ///< at most 16,384 a side
    unsigned height = 0;
    std::size_t rowPitch =
        0; ///< bytes from one row to the next (of blocks, where the format has them); 0: no gaps
    const void* data = nullptr; ///< borrowed for the call
    std::size_t size = 0;       ///< bytes at data
};

/// A texture of these pixels: with a full mip chain where the format has four channels of 8 bits, else with one level.
/// Null if they don't add up or the device can't sample them (the report says why) or without a renderer.
///
/// name: for captures and messages; null gives "pixels in memory".
HELVANTINE_RENDERER_API Texture* createTextureFromPixels(const TexturePixels& pixels,
                                                         const char* name = nullptr);

/// Wraps a texture for shaders and takes a reference of its own. Null for null.
HELVANTINE_RENDERER_API Texture* createTexture(ID3D11Texture2D* texture);

} // namespace helvantine
