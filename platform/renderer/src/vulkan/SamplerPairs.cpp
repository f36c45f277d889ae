// SPDX-License-Identifier: MIT
#include "vulkan/SamplerPairs.h"

#include "shader/SpirvModule.h"

namespace helvantine
{

namespace
{

/// The registers, as bits, that a loaded image or sampler may come from; all of them if that can't be told.
uint32_t findRegisters(const SpirvModule& module, uint32_t value, uint32_t bindingBase)
{
    const SpirvInstruction* source = module.find(value);
    while (source && source->op == spv::Op::OpCopyObject)
        source = module.find(source->operand(2));
    const bool loaded = source && source->op == spv::Op::OpLoad;
    const auto binding =
        loaded ? module.decoration(source->operand(2), spv::Decoration::Binding) : std::optional<uint32_t>();
    const bool known = binding && *binding >= bindingBase && *binding < bindingBase + 16;
    return known ? 1u << (*binding - bindingBase) : 0xFFFFu;
}

void addPairs(const std::vector<uint32_t>& words, SamplerPairs& pairs)
{
    SpirvModule module;
    if (!module.parse(words))
        return;
    for (const SpirvInstruction& instruction : module.instructions) {
        if (instruction.op != spv::Op::OpSampledImage)
            continue;
        const uint32_t textures = findRegisters(module, instruction.operand(2), textureBindingBase);
        const uint32_t samplers = findRegisters(module, instruction.operand(3), samplerBindingBase);
        for (uint32_t slot = 0; slot < samplerRegisterCount; ++slot) {
            if (samplers & (1u << slot))
                pairs[slot] = static_cast<uint16_t>(pairs[slot] | textures);
        }
    }
}

} // namespace

SamplerPairs findSamplerPairs(const ShaderProgram& program)
{
    SamplerPairs pairs{};
    addPairs(program.vertexWords, pairs);
    addPairs(program.pixelWords, pairs);
    return pairs;
}

} // namespace helvantine
