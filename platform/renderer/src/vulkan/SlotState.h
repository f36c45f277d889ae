// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"
#include "shader/SpirvComparison.h"
#include "vulkan/VulkanApi.h"
#include "vulkan/VulkanSampler.h"

#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/ConstantBuffer.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/renderer/TextureSampler.h>

#include <array>

namespace helvantine
{

class VulkanContext;
class VulkanProgram;
class VulkanRenderTarget;
class VulkanTexture;

/// The slots that shaders read from, and what of them the GPU already knows.
///
/// A slot keeps what is bound alive. Before a draw, only the bindings of its program that differ from what
/// was pushed last are pushed.
class SlotState
{
public:
    explicit SlotState(VulkanContext& context);
    ~SlotState();

    bool create();

    // A slot number out of range does nothing. Null empties the slot.
    void setConstants(ShaderStage stage, unsigned slot, ConstantBuffer* buffer);
    void setTexture(unsigned slot, VulkanTexture* texture);
    void setSampler(unsigned slot, VulkanSampler* sampler);
    const VulkanTexture* getTexture(unsigned slot) const { return m_textures[slot].get(); }
    void unbindTexturesOf(const VulkanRenderTarget& target);
    void unbindAll();

    /// Frames are left out: each slot may hold something else than if they had been drawn, until it is set again.
    void skipFrames();
    bool isUnknown(const ShaderBinding& binding) const;

    /// True if a texture that the program reads isn't ready: rendering has to be closed for barriers.
    bool needsBarriers(const VulkanProgram& program) const;
    /// Makes every bound texture ready for shaders; rendering is closed.
    void addBarriers(VkCommandBuffer commands);

    /// Nothing has been pushed in the new batch.
    void startBatch() { m_pushedLayout = VK_NULL_HANDLE; }

    /// What the program has to compare by itself, for the textures that are bound.
    ColorComparison findColorComparison(const VulkanProgram& program) const;

    /// Hands the program its bindings. False when there is no memory left for constants.
    bool push(VkCommandBuffer commands, const VulkanProgram& program);

private:
    /// What a binding holds: a range of constants, a view or a sampler.
    struct Content
    {
        VkBuffer buffer = VK_NULL_HANDLE;
        VkDeviceSize offset = 0;
        VkDeviceSize range = VK_WHOLE_SIZE;
        VkImageView view = VK_NULL_HANDLE;
        VkSampler sampler = VK_NULL_HANDLE;

        bool operator==(const Content&) const = default;
    };

    /// Descriptors to be written, in memory of their own.
    struct Writes
    {
        std::array<VkWriteDescriptorSet, maxShaderBindings> all;
        std::array<VkDescriptorBufferInfo, maxShaderBindings> buffers;
        std::array<VkDescriptorImageInfo, maxShaderBindings> images;
        uint32_t count = 0;

        void add(const ShaderBinding& binding, const Content& content, VkDescriptorSet set);
    };

    bool bindSet(VkCommandBuffer commands, const VulkanProgram& program);
    bool findContent(const ShaderBinding& binding, Content& content);
    bool findConstants(const ShaderBinding& binding, Content& content);
    VkImageView findView(const ShaderBinding& binding) const;
    VkSampler findSampler(const ShaderBinding& binding) const;

    VulkanContext& m_context;
    std::array<SmartRef<ConstantBuffer>, constantRegisterCount> m_vertexConstants;
    std::array<SmartRef<ConstantBuffer>, constantRegisterCount> m_pixelConstants;
    std::array<SmartRef<VulkanTexture>, textureRegisterCount> m_textures;
    std::array<SmartRef<VulkanSampler>, samplerRegisterCount> m_samplers;
    /// Slots not set since frames were left out, a bit each.
    struct Unknown
    {
        uint32_t vertexConstants = 0;
        uint32_t pixelConstants = 0;
        uint32_t textures = 0;
        uint32_t samplers = 0;
    };
    Unknown m_unknown;
    SamplerHandles m_defaultSampler;
    VkPipelineLayout m_pushedLayout = VK_NULL_HANDLE; ///< for which m_pushed holds; null: for none
    std::array<Content, maxShaderBindings> m_pushed;  ///< in the order of the program's bindings
};

} // namespace helvantine
