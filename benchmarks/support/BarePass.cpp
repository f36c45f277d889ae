// SPDX-License-Identifier: MIT
#include "support/BarePass.h"

#include "shader/ShaderBuilder.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace helvantine::bench
{

namespace
{

VkDescriptorType chooseType(const ShaderBinding& binding)
{
    switch (binding.kind) {
    case ShaderBindingKind::ConstantBuffer:
        return VK_DESCRIPTOR_TYPE_UNIFORM_BUFFER_DYNAMIC;
    case ShaderBindingKind::Texture:
        return VK_DESCRIPTOR_TYPE_SAMPLED_IMAGE;
    default:
        return VK_DESCRIPTOR_TYPE_SAMPLER;
    }
}

VkShaderStageFlags chooseStages(const ShaderBinding& binding)
{
    return (binding.stages & vertexStageBit ? VK_SHADER_STAGE_VERTEX_BIT : 0) |
           (binding.stages & pixelStageBit ? VK_SHADER_STAGE_FRAGMENT_BIT : 0);
}

VkVertexInputAttributeDescription describeInput(const ShaderVertexInput& input)
{
    constexpr uint32_t texCoords[] = {offsetof(BareVertex, texCoord0), offsetof(BareVertex, texCoord1)};
    if (input.semantic == "POSITION")
        return {input.location, 0, VK_FORMAT_R32G32B32_SFLOAT, offsetof(BareVertex, position)};
    if (input.semantic == "COLOR")
        return {input.location, 0, VK_FORMAT_R32G32B32A32_SFLOAT, offsetof(BareVertex, color)};
    return {input.location, 0, VK_FORMAT_R32G32_SFLOAT, texCoords[input.index]};
}

} // namespace

ShaderProgramPtr buildProgram(const char* text, const char* vertexEntry, const char* pixelEntry)
{
    ShaderRequest request;
    request.vertexEntry = vertexEntry;
    request.pixelEntry = pixelEntry;
    ShaderSource source;
    source.text = text;
    std::string errors;
    ShaderProgramPtr program = ShaderBuilder().build(request, source, source, errors);
    if (!program) {
        std::fprintf(stderr, "%s\n", errors.c_str());
        std::exit(1);
    }
    return program;
}

BarePass::BarePass(BareVulkan& vulkan, const BarePassDescription& description)
    : m_vulkan(vulkan), m_description(description), m_vertices(vulkan.allocate(sizeof description.vertices))
{
    writeVertices();
    createConstants();
    createLayout();
    createSet();
    createPipeline();
}

BarePass::~BarePass()
{
    const VkDevice device = m_vulkan.getDevice();
    vkDestroyPipeline(device, m_pipeline, nullptr);
    vkDestroyDescriptorPool(device, m_pool, nullptr);
    vkDestroyPipelineLayout(device, m_layout, nullptr);
    vkDestroyDescriptorSetLayout(device, m_setLayout, nullptr);
}

void BarePass::createConstants()
{
    const auto alignment = static_cast<uint32_t>(m_vulkan.getLimits().minUniformBufferOffsetAlignment);
    for (const auto& [binding, values] : m_description.constants) {
        const auto size = static_cast<uint32_t>(values.size() * sizeof values[0]);
        m_stride = std::max(m_stride, (size + alignment - 1) / alignment * alignment);
    }
    for (const ShaderBinding& binding : m_description.program->bindings) {
        if (binding.kind == ShaderBindingKind::ConstantBuffer)
            m_constants.push_back({m_vulkan.allocate(VkDeviceSize(m_stride) * m_description.draws),
                                   &m_description.constants.at(binding.binding)});
    }
}

void BarePass::createLayout()
{
    std::vector<VkDescriptorSetLayoutBinding> bindings;
    for (const ShaderBinding& binding : m_description.program->bindings)
        bindings.push_back({binding.binding, chooseType(binding), 1, chooseStages(binding), nullptr});
    VkDescriptorSetLayoutCreateInfo set{VK_STRUCTURE_TYPE_DESCRIPTOR_SET_LAYOUT_CREATE_INFO};
    set.bindingCount = static_cast<uint32_t>(bindings.size());
    set.pBindings = bindings.data();
    const VkDevice device = m_vulkan.getDevice();
    require(vkCreateDescriptorSetLayout(device, &set, nullptr, &m_setLayout), "create a descriptor layout");
    VkPipelineLayoutCreateInfo info{VK_STRUCTURE_TYPE_PIPELINE_LAYOUT_CREATE_INFO};
    info.setLayoutCount = 1;
    info.pSetLayouts = &m_setLayout;
    require(vkCreatePipelineLayout(device, &info, nullptr, &m_layout), "create a pipeline layout");
}

void BarePass::createSet()
{
    const VkDescriptorPoolSize sizes[] = {{VK_DESCRIPTOR_TYPE_UNIFORM_BUFFER_DYNAMIC, 16},
                                          {VK_DESCRIPTOR_TYPE_SAMPLED_IMAGE, 16},
                                          {VK_DESCRIPTOR_TYPE_SAMPLER, 16}};
    VkDescriptorPoolCreateInfo pool{VK_STRUCTURE_TYPE_DESCRIPTOR_POOL_CREATE_INFO};
    pool.maxSets = 1;
    pool.poolSizeCount = 3;
    pool.pPoolSizes = sizes;
    const VkDevice device = m_vulkan.getDevice();
    require(vkCreateDescriptorPool(device, &pool, nullptr, &m_pool), "create a descriptor pool");
    VkDescriptorSetAllocateInfo info{VK_STRUCTURE_TYPE_DESCRIPTOR_SET_ALLOCATE_INFO};
    info.descriptorPool = m_pool;
    info.descriptorSetCount = 1;
    info.pSetLayouts = &m_setLayout;
    require(vkAllocateDescriptorSets(device, &info, &m_set), "allocate a descriptor set");

    size_t nextConstants = 0;
    for (const ShaderBinding& binding : m_description.program->bindings) {
        VkDescriptorBufferInfo buffer{};
        VkDescriptorImageInfo image{};
        if (binding.kind == ShaderBindingKind::ConstantBuffer) {
            const auto& [bytes, values] = m_constants[nextConstants++];
            buffer = {bytes.buffer, bytes.offset, values->size() * sizeof(float)};
        } else if (binding.kind == ShaderBindingKind::Texture) {
            image = {VK_NULL_HANDLE, m_description.sources.at(binding.slot)->view,
                     VK_IMAGE_LAYOUT_SHADER_READ_ONLY_OPTIMAL};
        } else {
            image.sampler = m_description.samplers.at(binding.slot);
        }
        VkWriteDescriptorSet write{VK_STRUCTURE_TYPE_WRITE_DESCRIPTOR_SET};
        write.dstSet = m_set;
        write.dstBinding = binding.binding;
        write.descriptorCount = 1;
        write.descriptorType = chooseType(binding);
        write.pBufferInfo = &buffer;
        write.pImageInfo = &image;
        vkUpdateDescriptorSets(device, 1, &write, 0, nullptr);
    }
}

VkShaderModule BarePass::createModule(const std::vector<uint32_t>& words) const
{
    VkShaderModuleCreateInfo info{VK_STRUCTURE_TYPE_SHADER_MODULE_CREATE_INFO};
    info.codeSize = words.size() * sizeof words[0];
    info.pCode = words.data();
    VkShaderModule module = VK_NULL_HANDLE;
    require(vkCreateShaderModule(m_vulkan.getDevice(), &info, nullptr, &module), "create a shader module");
    return module;
}

void BarePass::createPipeline()
{
    const ShaderProgram& program = *m_description.program;
    VkPipelineShaderStageCreateInfo stages[2] = {{VK_STRUCTURE_TYPE_PIPELINE_SHADER_STAGE_CREATE_INFO},
                                                 {VK_STRUCTURE_TYPE_PIPELINE_SHADER_STAGE_CREATE_INFO}};
    stages[0].stage = VK_SHADER_STAGE_VERTEX_BIT;
    stages[0].module = createModule(program.vertexWords);
    stages[0].pName = program.vertexEntry.c_str();
    stages[1].stage = VK_SHADER_STAGE_FRAGMENT_BIT;
    stages[1].module = createModule(program.pixelWords);
    stages[1].pName = program.pixelEntry.c_str();

    const VkVertexInputBindingDescription binding{0, sizeof(BareVertex), VK_VERTEX_INPUT_RATE_VERTEX};
    std::vector<VkVertexInputAttributeDescription> attributes;
    for (const ShaderVertexInput& input : program.vertexInputs)
        attributes.push_back(describeInput(input));
    VkPipelineVertexInputStateCreateInfo input{VK_STRUCTURE_TYPE_PIPELINE_VERTEX_INPUT_STATE_CREATE_INFO};
    input.vertexBindingDescriptionCount = 1;
    input.pVertexBindingDescriptions = &binding;
    input.vertexAttributeDescriptionCount = static_cast<uint32_t>(attributes.size());
    input.pVertexAttributeDescriptions = attributes.data();

    VkPipelineInputAssemblyStateCreateInfo assembly{
        VK_STRUCTURE_TYPE_PIPELINE_INPUT_ASSEMBLY_STATE_CREATE_INFO};
    assembly.topology = VK_PRIMITIVE_TOPOLOGY_TRIANGLE_STRIP;
    // Clip space as the renderer has it: y up.
    const auto width = static_cast<float>(m_description.target->width);
    const auto height = static_cast<float>(m_description.target->height);
    const VkViewport whole{0.0f, height, width, -height, 0.0f, 1.0f};
    const VkRect2D scissor{{0, 0}, {m_description.target->width, m_description.target->height}};
    VkPipelineViewportStateCreateInfo viewport{VK_STRUCTURE_TYPE_PIPELINE_VIEWPORT_STATE_CREATE_INFO};
    viewport.viewportCount = viewport.scissorCount = 1;
    viewport.pViewports = &whole;
    viewport.pScissors = &scissor;
    VkPipelineRasterizationStateCreateInfo rasterization{
        VK_STRUCTURE_TYPE_PIPELINE_RASTERIZATION_STATE_CREATE_INFO};
    rasterization.lineWidth = 1.0f;
    VkPipelineMultisampleStateCreateInfo multisample{
        VK_STRUCTURE_TYPE_PIPELINE_MULTISAMPLE_STATE_CREATE_INFO};
    multisample.rasterizationSamples = VK_SAMPLE_COUNT_1_BIT;
    VkPipelineColorBlendStateCreateInfo blend{VK_STRUCTURE_TYPE_PIPELINE_COLOR_BLEND_STATE_CREATE_INFO};
    blend.attachmentCount = 1;
    blend.pAttachments = &m_description.blend;
    VkPipelineRenderingCreateInfo rendering{VK_STRUCTURE_TYPE_PIPELINE_RENDERING_CREATE_INFO};
    rendering.colorAttachmentCount = 1;
    rendering.pColorAttachmentFormats = &m_description.target->format;

    VkGraphicsPipelineCreateInfo info{VK_STRUCTURE_TYPE_GRAPHICS_PIPELINE_CREATE_INFO};
    info.pNext = &rendering;
    info.stageCount = 2;
    info.pStages = stages;
    info.pVertexInputState = &input;
    info.pInputAssemblyState = &assembly;
    info.pViewportState = &viewport;
    info.pRasterizationState = &rasterization;
    info.pMultisampleState = &multisample;
    info.pColorBlendState = &blend;
    info.layout = m_layout;
    require(vkCreateGraphicsPipelines(m_vulkan.getDevice(), VK_NULL_HANDLE, 1, &info, nullptr, &m_pipeline),
            "create a pipeline");
    for (const VkPipelineShaderStageCreateInfo& stage : stages)
        vkDestroyShaderModule(m_vulkan.getDevice(), stage.module, nullptr);
}

void BarePass::record(VkCommandBuffer commands)
{
    writeVertices();
    for (const auto& [bytes, values] : m_constants)
        std::memcpy(bytes.data, values->data(), values->size() * sizeof(float));
    begin(commands);
    bindConstants(commands, 0);
    vkCmdDraw(commands, 4, 1, 0, 0);
    end(commands);
}

void BarePass::writeVertices()
{
    std::memcpy(m_vertices.data, m_description.vertices.data(), sizeof m_description.vertices);
}

void BarePass::begin(VkCommandBuffer commands)
{
    m_vulkan.makeReady(commands, m_description.sources, *m_description.target);
    VkRenderingAttachmentInfo color{VK_STRUCTURE_TYPE_RENDERING_ATTACHMENT_INFO};
    color.imageView = m_description.target->view;
    color.imageLayout = VK_IMAGE_LAYOUT_COLOR_ATTACHMENT_OPTIMAL;
    color.loadOp = m_description.clears ? VK_ATTACHMENT_LOAD_OP_CLEAR : VK_ATTACHMENT_LOAD_OP_LOAD;
    color.storeOp = VK_ATTACHMENT_STORE_OP_STORE;
    VkRenderingInfo info{VK_STRUCTURE_TYPE_RENDERING_INFO};
    info.renderArea.extent = {m_description.target->width, m_description.target->height};
    info.layerCount = 1;
    info.colorAttachmentCount = 1;
    info.pColorAttachments = &color;
    vkCmdBeginRendering(commands, &info);
    vkCmdBindPipeline(commands, VK_PIPELINE_BIND_POINT_GRAPHICS, m_pipeline);
    vkCmdBindVertexBuffers(commands, 0, 1, &m_vertices.buffer, &m_vertices.offset);
}

void BarePass::bindConstants(VkCommandBuffer commands, uint32_t draw) const
{
    uint32_t offsets[16];
    std::fill_n(offsets, m_constants.size(), draw * m_stride);
    vkCmdBindDescriptorSets(commands, VK_PIPELINE_BIND_POINT_GRAPHICS, m_layout, 0, 1, &m_set,
                            static_cast<uint32_t>(m_constants.size()), offsets);
}

void BarePass::end(VkCommandBuffer commands)
{
    vkCmdEndRendering(commands);
}

} // namespace helvantine::bench
