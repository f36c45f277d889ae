// SPDX-License-Identifier: MIT
#include "vulkan/PipelineBuilder.h"

#include "vulkan/PointSize.h"
#include "vulkan/States.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanProgram.h"

#include <array>
#include <iterator>

namespace helvantine
{

namespace
{

constexpr VkDynamicState dynamicStates[] = {
    VK_DYNAMIC_STATE_VIEWPORT,
    VK_DYNAMIC_STATE_SCISSOR,
    VK_DYNAMIC_STATE_DEPTH_BIAS,
    VK_DYNAMIC_STATE_BLEND_CONSTANTS,
    VK_DYNAMIC_STATE_STENCIL_COMPARE_MASK,
    VK_DYNAMIC_STATE_STENCIL_WRITE_MASK,
    VK_DYNAMIC_STATE_STENCIL_REFERENCE,
    VK_DYNAMIC_STATE_CULL_MODE,
    VK_DYNAMIC_STATE_FRONT_FACE,
    VK_DYNAMIC_STATE_PRIMITIVE_TOPOLOGY,
    VK_DYNAMIC_STATE_PRIMITIVE_RESTART_ENABLE,
    VK_DYNAMIC_STATE_DEPTH_TEST_ENABLE,
    VK_DYNAMIC_STATE_DEPTH_WRITE_ENABLE,
    VK_DYNAMIC_STATE_DEPTH_COMPARE_OP,
    VK_DYNAMIC_STATE_DEPTH_BIAS_ENABLE,
    VK_DYNAMIC_STATE_STENCIL_TEST_ENABLE,
    VK_DYNAMIC_STATE_STENCIL_OP,
};

/// The vertex inputs of a program, fed from the elements of a declaration.
class VertexInput
{
public:
    VertexInput(const PipelineKey& key, const PipelineCache::Parts& parts) : m_key(key)
    {
        for (const ShaderVertexInput& input : parts.program->getProgram().vertexInputs)
            addInput(input, parts.declaration);
        m_info.vertexBindingDescriptionCount = m_bindingCount;
        m_info.pVertexBindingDescriptions = m_bindings.data();
        m_info.vertexAttributeDescriptionCount = m_attributeCount;
        m_info.pVertexAttributeDescriptions = m_attributes.data();
    }

    const VkPipelineVertexInputStateCreateInfo& getInfo() const { return m_info; }

private:
    using Element = VulkanVertexDeclaration::Element;

    void addInput(const ShaderVertexInput& input, const VulkanVertexDeclaration* declaration)
    {
        if (m_attributeCount == m_attributes.size())
            return;
        const Element* element = declaration ? declaration->find(input.semantic, input.index) : nullptr;
        const bool numbersFit =
            element && isInteger(*element) == (input.component != ShaderComponentType::Float);
        VkVertexInputAttributeDescription& attribute = m_attributes[m_attributeCount++];
        attribute.location = input.location;
        if (numbersFit && m_key.strides[element->slot] != PipelineKey::unboundSlot) {
            attribute.binding = element->slot;
            attribute.format = element->format->vulkan;
            attribute.offset = element->offset;
            addBinding(element->slot, m_key.strides[element->slot], element->perInstance);
            return;
        }
        const bool isFloat = input.component == ShaderComponentType::Float;
        attribute.binding = missingInputBinding;
        attribute.format = isFloat                                       ? VK_FORMAT_R32G32B32A32_SFLOAT
                           : input.component == ShaderComponentType::Int ? VK_FORMAT_R32G32B32A32_SINT
                                                                         : VK_FORMAT_R32G32B32A32_UINT;
        attribute.offset = isFloat ? 0 : 16;
        addBinding(missingInputBinding, 0, false);
    }

    static bool isInteger(const Element& element) { return isIntegerFormat(element.format->dxgi); }

    void addBinding(uint32_t binding, uint32_t stride, bool perInstance)
    {
        for (uint32_t i = 0; i < m_bindingCount; ++i) {
            if (m_bindings[i].binding == binding)
                return;
        }
        m_bindings[m_bindingCount++] = {
            binding, stride, perInstance ? VK_VERTEX_INPUT_RATE_INSTANCE : VK_VERTEX_INPUT_RATE_VERTEX};
    }

    const PipelineKey& m_key;
    std::array<VkVertexInputBindingDescription, vertexSlotCount + 1> m_bindings{};
    std::array<VkVertexInputAttributeDescription, 32> m_attributes{};
    uint32_t m_bindingCount = 0;
    uint32_t m_attributeCount = 0;
    VkPipelineVertexInputStateCreateInfo m_info{VK_STRUCTURE_TYPE_PIPELINE_VERTEX_INPUT_STATE_CREATE_INFO};
};

/// Null if the program writes no colour.
const ShaderPixelOutput* findColor(const ShaderProgram& program)
{
    for (const ShaderPixelOutput& output : program.pixelOutputs) {
        if (output.target == 0 && output.component == ShaderComponentType::Float)
            return &output;
    }
    return nullptr;
}

/// Vulkan wants an alpha to be there; without one, Direct3D covers all samples.
bool coversByAlpha(const PipelineCache::Parts& parts)
{
    constexpr uint32_t withAlpha = 4;
    const ShaderPixelOutput* color = findColor(parts.program->getProgram());
    return parts.blend && parts.blend->isAlphaToCoverage() && color && color->componentCount == withAlpha;
}

VkPipelineColorBlendAttachmentState chooseBlending(const PipelineCache::Parts& parts)
{
    VkPipelineColorBlendAttachmentState state{};
    if (parts.blend)
        state = parts.blend->getAttachment();
    else
        state.colorWriteMask = D3D11_COLOR_WRITE_ENABLE_ALL;
    // A target that the program doesn't write keeps its pixels, as in Direct3D.
    if (!findColor(parts.program->getProgram()))
        state.colorWriteMask = 0;
    return state;
}

VkPipelineShaderStageCreateInfo describeStage(VkShaderStageFlagBits stage, VkShaderModule module,
                                              const std::string& entry)
{
    VkPipelineShaderStageCreateInfo info{VK_STRUCTURE_TYPE_PIPELINE_SHADER_STAGE_CREATE_INFO};
    info.stage = stage;
    info.module = module;
    info.pName = entry.c_str();
    return info;
}

bool hasStencil(VkFormat format)
{
    return format == VK_FORMAT_D24_UNORM_S8_UINT || format == VK_FORMAT_D32_SFLOAT_S8_UINT;
}

/// The records that describe a pipeline to Vulkan, which point at each other.
class Description
{
public:
    Description(const PipelineKey& key, const PipelineCache::Parts& parts, VkShaderModule vertexModule,
                VkShaderModule pixelModule)
        : m_key(key), m_vertexInput(key, parts), m_attachment(chooseBlending(parts))
    {
        const VulkanProgram& program = *parts.program;
        m_stages[0] =
            describeStage(VK_SHADER_STAGE_VERTEX_BIT, vertexModule, program.getProgram().vertexEntry);
        m_stages[1] =
            describeStage(VK_SHADER_STAGE_FRAGMENT_BIT, pixelModule, program.getProgram().pixelEntry);
        describeRasterization();
        m_multisample.alphaToCoverageEnable = coversByAlpha(parts);
        describeTarget();
        link();
        m_info.layout = program.getLayout().pipeline;
    }
    Description(const Description&) = delete;
    Description& operator=(const Description&) = delete;

    const VkGraphicsPipelineCreateInfo& getInfo() const { return m_info; }

private:
    void describeRasterization()
    {
        m_assembly.topology = m_key.topologyClass;
        m_viewport.viewportCount = 1;
        m_viewport.scissorCount = 1;
        m_rasterization.depthClampEnable = m_key.depthClamp;
        m_rasterization.polygonMode = m_key.wireframe ? VK_POLYGON_MODE_LINE : VK_POLYGON_MODE_FILL;
        m_rasterization.lineWidth = 1.0f;
        m_multisample.rasterizationSamples = m_key.samples;
        m_multisample.pSampleMask = &m_key.sampleMask;
        m_dynamic.dynamicStateCount = static_cast<uint32_t>(std::size(dynamicStates));
        m_dynamic.pDynamicStates = dynamicStates;
    }

    void describeTarget()
    {
        m_blend.attachmentCount = m_key.color != VK_FORMAT_UNDEFINED ? 1 : 0;
        m_blend.pAttachments = &m_attachment;
        m_rendering.colorAttachmentCount = m_blend.attachmentCount;
        m_rendering.pColorAttachmentFormats = &m_key.color;
        m_rendering.depthAttachmentFormat = m_key.depth;
        m_rendering.stencilAttachmentFormat = hasStencil(m_key.depth) ? m_key.depth : VK_FORMAT_UNDEFINED;
    }

    void link()
    {
        m_info.pNext = &m_rendering;
        m_info.stageCount = m_stages[1].module ? 2 : 1;
        m_info.pStages = m_stages;
        m_info.pVertexInputState = &m_vertexInput.getInfo();
        m_info.pInputAssemblyState = &m_assembly;
        m_info.pViewportState = &m_viewport;
        m_info.pRasterizationState = &m_rasterization;
        m_info.pMultisampleState = &m_multisample;
        m_info.pDepthStencilState = &m_depthStencil;
        m_info.pColorBlendState = &m_blend;
        m_info.pDynamicState = &m_dynamic;
    }

    const PipelineKey& m_key;
    VertexInput m_vertexInput;
    VkPipelineColorBlendAttachmentState m_attachment;
    VkPipelineShaderStageCreateInfo m_stages[2];
    VkPipelineInputAssemblyStateCreateInfo m_assembly{
        VK_STRUCTURE_TYPE_PIPELINE_INPUT_ASSEMBLY_STATE_CREATE_INFO};
    VkPipelineViewportStateCreateInfo m_viewport{VK_STRUCTURE_TYPE_PIPELINE_VIEWPORT_STATE_CREATE_INFO};
    VkPipelineRasterizationStateCreateInfo m_rasterization{
        VK_STRUCTURE_TYPE_PIPELINE_RASTERIZATION_STATE_CREATE_INFO};
    VkPipelineMultisampleStateCreateInfo m_multisample{
        VK_STRUCTURE_TYPE_PIPELINE_MULTISAMPLE_STATE_CREATE_INFO};
    VkPipelineDepthStencilStateCreateInfo m_depthStencil{
        VK_STRUCTURE_TYPE_PIPELINE_DEPTH_STENCIL_STATE_CREATE_INFO};
    VkPipelineColorBlendStateCreateInfo m_blend{VK_STRUCTURE_TYPE_PIPELINE_COLOR_BLEND_STATE_CREATE_INFO};
    VkPipelineDynamicStateCreateInfo m_dynamic{VK_STRUCTURE_TYPE_PIPELINE_DYNAMIC_STATE_CREATE_INFO};
    VkPipelineRenderingCreateInfo m_rendering{VK_STRUCTURE_TYPE_PIPELINE_RENDERING_CREATE_INFO};
    VkGraphicsPipelineCreateInfo m_info{VK_STRUCTURE_TYPE_GRAPHICS_PIPELINE_CREATE_INFO};
};

/// A stage of a program as a pipeline needs it: the program's own module, or another one that goes with this object.
class StageModule
{
public:
    StageModule(VulkanDevice& device, VkShaderModule module) : m_device(device), m_module(module) {}
    ~StageModule()
    {
        if (m_isOwn)
            vkDestroyShaderModule(m_device.getHandle(), m_module, nullptr);
    }
    StageModule(const StageModule&) = delete;
    StageModule& operator=(const StageModule&) = delete;

    void replace(const std::vector<uint32_t>& words)
    {
        m_module = createShaderModule(m_device, words);
        m_isOwn = true;
    }
    VkShaderModule get() const { return m_module; }

private:
    VulkanDevice& m_device;
    VkShaderModule m_module;
    bool m_isOwn = false;
};

/// False, with the reason in the report, if the device refuses a module.
bool adaptStages(const PipelineKey& key, const ShaderProgram& program, StageModule& vertex,
                 StageModule& pixel)
{
    std::vector<uint32_t> vertexWords;
    if (key.comparison) {
        const ColorComparison comparison = unpackComparison(key.comparison);
        vertexWords = compareColors(program.vertexWords, comparison);
        if (pixel.get())
            pixel.replace(compareColors(program.pixelWords, comparison));
        if (!program.pixelWords.empty() && !pixel.get())
            return false;
    }
    if (key.topologyClass == VK_PRIMITIVE_TOPOLOGY_POINT_LIST)
        vertexWords = addPointSize(vertexWords.empty() ? program.vertexWords : vertexWords);
    if (!vertexWords.empty())
        vertex.replace(vertexWords);
    return vertex.get() != VK_NULL_HANDLE;
}

} // namespace

VkPipeline buildPipeline(VulkanContext& context, VkPipelineCache driverCache, const PipelineKey& key,
                         const PipelineCache::Parts& parts)
{
    VulkanDevice& device = context.device();
    const ShaderProgram& program = parts.program->getProgram();
    StageModule vertex(device, parts.program->getVertexModule());
    StageModule pixel(device, parts.program->getPixelModule());
    if (!adaptStages(key, program, vertex, pixel))
        return VK_NULL_HANDLE;
    const Description description(key, parts, vertex.get(), pixel.get());
    VkPipeline pipeline = VK_NULL_HANDLE;
    if (!device.check(vkCreateGraphicsPipelines(device.getHandle(), driverCache, 1, &description.getInfo(),
                                                nullptr, &pipeline),
                      "create a pipeline"))
        pipeline = VK_NULL_HANDLE;
    const std::string& name = program.pixelEntry.empty() ? program.vertexEntry : program.pixelEntry;
    device.setName(VK_OBJECT_TYPE_PIPELINE, pipeline, name.c_str());
    return pipeline;
}

} // namespace helvantine
