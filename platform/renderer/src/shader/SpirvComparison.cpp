// SPDX-License-Identifier: MIT
#include "shader/SpirvComparison.h"

#include "shader/SpirvRewriter.h"
#include "shader/SpirvSamplers.h"

#include <algorithm>
#include <map>

namespace helvantine
{

namespace
{

// Operands of an instruction that samples: type, result, sampled image, place, compared value, then what is optional.
constexpr size_t comparedValue = 4;
constexpr size_t imageOperands = 5;

class GatherWriter : public SpirvRewriter
{
public:
    using SpirvRewriter::SpirvRewriter;

private:
    void rewrite(SpirvInstruction& one) override
    {
        const uint32_t bits =
            one.op == spv::Op::OpImageSampleDrefExplicitLod ? markedBits(one.operand(comparedValue)) : 0;
        if (bits)
            return gather(one, bits);
        constexpr size_t first = 2;
        const bool isSpread =
            one.op == spv::Op::OpCompositeConstruct && one.operands.size() == first + 4 &&
            std::count(one.operands.begin() + first, one.operands.end(), one.operand(first)) == 4;
        if (isSpread) {
            const auto found = m_gathers.find(one.operand(first));
            if (found != m_gathers.end())
                return put(spv::Op::OpCopyObject, one, {found->second});
        }
        keep(one);
    }

    void gather(const SpirvInstruction& one, uint32_t bits)
    {
        const uint32_t value = add(spv::Op::OpBitcast, one.typeId(), {bits});
        constexpr auto lod = uint32_t(spv::ImageOperandsMask::Lod);
        const uint32_t four = m_module.declare(spv::Op::OpTypeVector, 0, {one.typeId(), 4});
        Operands operands = {one.operand(2), one.operand(3), value};
        if (const uint32_t rest = one.operand(imageOperands) & ~lod) {
            operands.push_back(rest);
            operands.insert(operands.end(), one.operands.begin() + imageOperands + 2, one.operands.end());
        }
        const uint32_t gathered = add(spv::Op::OpImageDrefGather, four, operands);
        m_gathers[one.resultId()] = gathered;
        put(spv::Op::OpCompositeExtract, one, {gathered, 0});
    }

    /// The bits of the value under the mark; 0 without a mark.
    uint32_t markedBits(uint32_t value) const
    {
        for (const spv::Op op : {spv::Op::OpBitcast, spv::Op::OpBitReverse, spv::Op::OpBitReverse}) {
            const SpirvInstruction* made = source(value);
            if (!made || made->op != op)
                return 0;
            value = made->operand(2);
        }
        return value;
    }

    std::map<uint32_t, uint32_t> m_gathers; ///< by the single comparison that the text has
};

class ColorComparer : public SpirvRewriter
{
public:
    ColorComparer(SpirvModule& module, const ColorComparison& comparison)
        : SpirvRewriter(module), m_comparison(comparison)
    {
    }

private:
    void rewrite(SpirvInstruction& one) override
    {
        uint32_t sampler = 0;
        const bool isGather = one.op == spv::Op::OpImageDrefGather;
        const bool isImplicit = one.op == spv::Op::OpImageSampleDrefImplicitLod;
        if ((!isGather && !isImplicit && one.op != spv::Op::OpImageSampleDrefExplicitLod) ||
            !isMeant(one, sampler))
            return keep(one);
        const uint32_t scalar = m_module.declare(spv::Op::OpTypeFloat, 0, {32});
        const uint32_t four = m_module.declare(spv::Op::OpTypeVector, 0, {scalar, 4});
        Operands operands = {one.operand(2), one.operand(3)};
        if (isGather)
            operands.push_back(constant(m_module.declare(spv::Op::OpTypeInt, 0, {32, 1}), 0));
        operands.insert(operands.end(),
                        one.operands.begin() + std::ptrdiff_t(std::min(imageOperands, one.operands.size())),
                        one.operands.end());
        uint32_t red = add(isGather     ? spv::Op::OpImageGather
                           : isImplicit ? spv::Op::OpImageSampleImplicitLod
                                        : spv::Op::OpImageSampleExplicitLod,
                           four, operands);
        uint32_t value = one.operand(comparedValue);
        if (isGather)
            value = add(spv::Op::OpCompositeConstruct, four, {value, value, value, value});
        else
            red = add(spv::Op::OpCompositeExtract, scalar, {red, 0});
        compare(one, value, red, m_comparison.functions[sampler]);
    }

    bool isMeant(const SpirvInstruction& one, uint32_t& sampler) const
    {
        const SpirvInstruction* pair = source(one.operand(2));
        if (!pair || pair->op != spv::Op::OpSampledImage)
            return false;
        const uint32_t texture = bindingOf(pair->operand(2)) - textureBindingBase;
        const uint32_t binding = bindingOf(pair->operand(3));
        sampler = binding < samplerPairBindingBase
                      ? binding - samplerBindingBase
                      : (binding - samplerPairBindingBase) / textureRegisterCount;
        return texture < textureRegisterCount && (m_comparison.textures >> texture & 1) &&
               sampler < samplerRegisterCount;
    }

    uint32_t bindingOf(uint32_t value) const
    {
        const uint32_t variable = findLoadedVariable(m_module, source(value));
        return m_module.decoration(variable, spv::Decoration::Binding).value_or(0);
    }

    void compare(const SpirvInstruction& one, uint32_t value, uint32_t red, uint8_t function)
    {
        constexpr uint8_t never = 1;
        constexpr uint8_t always = 8;
        constexpr spv::Op operations[] = {spv::Op::OpFOrdLessThan,      spv::Op::OpFOrdEqual,
                                          spv::Op::OpFOrdLessThanEqual, spv::Op::OpFOrdGreaterThan,
                                          spv::Op::OpFUnordNotEqual,    spv::Op::OpFOrdGreaterThanEqual};
        const uint32_t yes = number(one.typeId(), 1.0f);
        const uint32_t no = number(one.typeId(), 0.0f);
        if (function <= never || function >= always)
            return put(spv::Op::OpCopyObject, one, {function == always ? yes : no});
        const uint32_t holds =
            add(operations[function - never - 1], sameShape(one.typeId(), boolType()), {value, red});
        put(spv::Op::OpSelect, one, {holds, yes, no});
    }

    const ColorComparison& m_comparison;
};

} // namespace

void makeComparedGathers(SpirvModule& module)
{
    GatherWriter(module).write();
}

std::vector<uint32_t> compareColors(const std::vector<uint32_t>& words, const ColorComparison& comparison)
{
    SpirvModule module;
    if (!module.parse(words))
        return words;
    ColorComparer(module, comparison).write();
    return module.write();
}

} // namespace helvantine
