// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"
#include "support/BareVulkan.h"

#include <array>
#include <map>
#include <vector>

namespace helvantine::bench
{

/// A program from the compiler that the renderer has, both stages from one text. Ends the process if it doesn't
/// compile.
ShaderProgramPtr buildProgram(const char* text, const char* vertexEntry, const char* pixelEntry);

/// A vertex of the effects' quads.
struct BareVertex
{
    float position[3];
    float color[4];
    float texCoord0[2];
    float texCoord1[2];
};

/// One draw of four vertices into one target: a program, what it reads, and where it draws.
struct BarePassDescription
{
    ShaderProgramPtr program;
    BareImage* target = nullptr;
    std::vector<BareImage*> sources;                 ///< t0 and following
    std::vector<VkSampler> samplers;                 ///< s0 and following
    std::map<uint8_t, std::vector<float>> constants; ///< by Vulkan binding
    std::array<BareVertex, 4> vertices{};            ///< a strip
    VkPipelineColorBlendAttachmentState blend{VK_FALSE, {}, {}, {}, {}, {}, {}, 15};
    bool clears = false; ///< to transparent black
    uint32_t draws = 1;  ///< each with constants of its own
};

/// A pass with all that is made once: pipeline, descriptor set, places of its constants and vertices.
class BarePass
{
public:
    BarePass(BareVulkan& vulkan, const BarePassDescription& description);
    ~BarePass();
    BarePass(const BarePass&) = delete;
    BarePass& operator=(const BarePass&) = delete;

    /// The whole pass as a frame needs it: constants and vertices are written anew.
    void record(VkCommandBuffer commands);

    // Its parts, for loops that draw more than once.
    void begin(VkCommandBuffer commands);
    uint8_t* getConstants(uint32_t draw) const { return m_constants[0].bytes.data + draw * m_stride; }
    void bindConstants(VkCommandBuffer commands, uint32_t draw) const;
    void end(VkCommandBuffer commands);

private:
    struct Constants
    {
        BareBytes bytes;
        const std::vector<float>* values;
    };

    void writeVertices();
    void createConstants();
    void createLayout();
    void createSet();
    void createPipeline();
    VkShaderModule createModule(const std::vector<uint32_t>& words) const;

    BareVulkan& m_vulkan;
    BarePassDescription m_description;
    VkDescriptorSetLayout m_setLayout = VK_NULL_HANDLE;
    VkPipelineLayout m_layout = VK_NULL_HANDLE;
    VkDescriptorPool m_pool = VK_NULL_HANDLE;
    VkDescriptorSet m_set = VK_NULL_HANDLE;
    VkPipeline m_pipeline = VK_NULL_HANDLE;
    std::vector<Constants> m_constants; ///< in the order of their bindings
    uint32_t m_stride = 0;              ///< bytes between the constants of two draws
    BareBytes m_vertices;
};

} // namespace helvantine::bench
