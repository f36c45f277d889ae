// SPDX-License-Identifier: MIT
#include "shader/SpirvSamplers.h"

#include "shader/ShaderProgram.h"

#include <cstddef>
#include <map>
#include <set>
#include <utility>

namespace helvantine
{

namespace
{

uint32_t findVariable(const SpirvModule& module, uint32_t value)
{
    return findLoadedVariable(module, module.find(value));
}

uint32_t bindingOf(const SpirvModule& module, uint32_t variable)
{
    return module.decoration(variable, spv::Decoration::Binding).value_or(UINT32_MAX);
}

size_t countSamplers(const SpirvModule& module)
{
    size_t count = 0;
    for (const SpirvInstruction& one : module.instructions) {
        const SpirvInstruction* type = one.op == spv::Op::OpVariable ? module.findPointee(one) : nullptr;
        count += type && type->op == spv::Op::OpTypeSampler;
    }
    return count;
}

/// The samplers of one stage, while they are separated.
class StageSamplers
{
public:
    explicit StageSamplers(SpirvModule& module) : m_module(module), m_count(countSamplers(module)) {}

    /// Adds the textures that are read through each sampler, by binding.
    void collect(std::map<uint32_t, std::set<uint32_t>>& textures) const
    {
        for (const SpirvInstruction& one : m_module.instructions)
            if (const Pair pair = pairOf(one); pair.sampler)
                textures[bindingOf(m_module, pair.sampler)].insert(pair.textureBinding);
    }

    /// The variables that were added.
    std::set<uint32_t> separate(const std::map<uint32_t, std::set<uint32_t>>& textures)
    {
        for (size_t i = m_module.firstFunction(); i < m_module.instructions.size(); ++i) {
            const Pair pair = pairOf(m_module.instructions[i]);
            if (!pair.sampler || textures.at(bindingOf(m_module, pair.sampler)).size() < 2)
                continue;
            const size_t before = m_module.instructions.size();
            const uint32_t copy = findCopy(pair);
            i += m_module.instructions.size() - before;
            if (!copy)
                continue;
            const uint32_t type = m_module.find(m_module.instructions[i].operand(3))->typeId();
            const uint32_t loaded = m_module.makeId();
            m_module.instructions[i].operands[3] = loaded;
            m_module.instructions.insert(m_module.instructions.begin() + std::ptrdiff_t(i),
                                         {spv::Op::OpLoad, {type, loaded, copy}});
            ++i;
        }
        std::set<uint32_t> variables;
        for (const auto& [binding, variable] : m_copies)
            variables.insert(variable);
        return variables;
    }

private:
    struct Pair
    {
        uint32_t sampler = 0; ///< variable; 0 if it or the texture can't be told
        uint32_t textureBinding = 0;
    };

    Pair pairOf(const SpirvInstruction& one) const
    {
        if (one.op != spv::Op::OpSampledImage)
            return {};
        const uint32_t sampler = findVariable(m_module, one.operand(3));
        const uint32_t texture = bindingOf(m_module, findVariable(m_module, one.operand(2)));
        const bool isKnown = sampler && isIn(texture, textureBindingBase, textureRegisterCount) &&
                             isIn(bindingOf(m_module, sampler), samplerBindingBase, samplerRegisterCount);
        return isKnown ? Pair{sampler, texture} : Pair{};
    }

    static bool isIn(uint32_t binding, uint32_t base, uint32_t count)
    {
        return binding >= base && binding < base + count;
    }

    /// The variable for a pair; 0 if there can be no more.
    uint32_t findCopy(const Pair& pair)
    {
        const uint32_t binding = samplerPairBinding(bindingOf(m_module, pair.sampler) - samplerBindingBase,
                                                    pair.textureBinding - textureBindingBase);
        if (const auto found = m_copies.find(binding); found != m_copies.end())
            return found->second;
        if (m_count == samplerRegisterCount)
            return m_copies[binding] = 0;
        ++m_count;
        SpirvInstruction variable = *m_module.find(pair.sampler);
        const uint32_t copy = variable.operands[1] = m_module.makeId();
        const auto place = m_module.instructions.begin() + std::ptrdiff_t(m_module.firstFunction());
        m_module.instructions.insert(place, std::move(variable));
        copyName(pair.sampler, copy);
        m_module.decorate(copy, spv::Decoration::DescriptorSet, 0);
        m_module.decorate(copy, spv::Decoration::Binding, binding);
        return m_copies[binding] = copy;
    }

    void copyName(uint32_t from, uint32_t to)
    {
        for (size_t i = 0; i < m_module.instructions.size(); ++i) {
            SpirvInstruction name = m_module.instructions[i];
            if (name.op != spv::Op::OpName || name.operand(0) != from)
                continue;
            name.operands[0] = to;
            m_module.instructions.insert(m_module.instructions.begin() + std::ptrdiff_t(i), std::move(name));
            return;
        }
    }

    SpirvModule& m_module;
    size_t m_count;                        ///< of samplers in the stage
    std::map<uint32_t, uint32_t> m_copies; ///< by binding
};

/// Loads of samplers that nothing uses any more, and the samplers that nothing loads.
void removeUnusedSamplers(SpirvModule& module)
{
    for (const spv::Op op : {spv::Op::OpLoad, spv::Op::OpVariable}) {
        std::set<uint32_t> used;
        for (const SpirvInstruction& one : module.instructions)
            if (one.op != spv::Op::OpName && one.op != spv::Op::OpDecorate)
                for (const uint32_t operand : one.operands)
                    if (operand != one.resultId())
                        used.insert(operand);
        std::set<uint32_t> unused;
        for (const SpirvInstruction& one : module.instructions) {
            if (one.op != op || used.count(one.resultId()))
                continue;
            const SpirvInstruction* type =
                op == spv::Op::OpLoad ? module.find(one.typeId()) : module.findPointee(one);
            if (type && type->op == spv::Op::OpTypeSampler)
                unused.insert(one.resultId());
        }
        std::erase_if(module.instructions, [&](const SpirvInstruction& one) {
            const bool isNote = one.op == spv::Op::OpName || one.op == spv::Op::OpDecorate;
            return unused.count(isNote ? one.operand(0) : one.resultId()) != 0;
        });
    }
}

} // namespace

uint32_t findLoadedVariable(const SpirvModule& module, const SpirvInstruction* source)
{
    const SpirvInstruction* variable =
        source && source->op == spv::Op::OpLoad ? module.find(source->operand(2)) : nullptr;
    return variable && variable->op == spv::Op::OpVariable ? variable->resultId() : 0;
}

SeparatedSamplers separateSamplers(SpirvModule& vertex, SpirvModule& pixel)
{
    StageSamplers stages[] = {StageSamplers(vertex), StageSamplers(pixel)};
    std::map<uint32_t, std::set<uint32_t>> textures;
    for (const StageSamplers& stage : stages)
        stage.collect(textures);
    SeparatedSamplers separated{stages[0].separate(textures), stages[1].separate(textures)};
    removeUnusedSamplers(vertex);
    removeUnusedSamplers(pixel);
    return separated;
}

uint16_t findTexturesOf(const SpirvModule& module, uint32_t sampler)
{
    uint16_t textures = 0;
    for (const SpirvInstruction& one : module.instructions) {
        if (one.op != spv::Op::OpSampledImage)
            continue;
        const uint32_t source = findVariable(module, one.operand(3));
        if (source && source != sampler)
            continue;
        const uint32_t slot = bindingOf(module, findVariable(module, one.operand(2))) - textureBindingBase;
        textures |= slot < textureRegisterCount ? uint16_t(1u << slot) : uint16_t(0xFFFF);
    }
    return textures;
}

} // namespace helvantine
