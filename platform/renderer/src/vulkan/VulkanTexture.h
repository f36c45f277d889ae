// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/FrameHistory.h"
#include "vulkan/GpuObject.h"
#include "vulkan/VulkanImage.h"

#include <helvantine/renderer/Texture.h>

#include <functional>

namespace helvantine
{

class ImageSink;
struct ImageData;
struct ImageHeader;

/// A texture that owns its image. The textures of render targets are of this class too.
class VulkanTexture final : public Texture, public GpuObject
{
public:
    /// Takes the image over.
    VulkanTexture(VulkanContext& context, const VulkanImage& image);
    ~VulkanTexture() override;

    void bind(unsigned slot) override;
    void unbind(unsigned slot) override;
    unsigned getWidth() const override { return m_width; }
    unsigned getHeight() const override { return m_height; }

    VulkanImage& getImage() { return m_image; } ///< empty once the renderer is gone
    ImageHistory& getHistory() { return m_history; }
    const ImageHistory& getHistory() const { return m_history; }

private:
    void releaseGpu() override;

    VulkanImage m_image;
    ImageHistory m_history;
    unsigned m_width;
    unsigned m_height;
};

/// Makes a texture of what fill puts into the sink. Null if fill says false; null, with the reason in the report, when
/// the device can't sample the format or has no memory; null without a renderer. name: for captures and messages.
Texture* createTextureFromRows(const ImageHeader& header, const char* name,
                               const std::function<bool(ImageSink&)>& fill);

/// Puts a decoded image on the GPU. Null, with the reason in the report, for a format that the device can't
/// sample or texels that don't add up; null without a renderer. name: for captures and messages.
Texture* createTextureFromImage(const ImageData& image, const char* name);

} // namespace helvantine
