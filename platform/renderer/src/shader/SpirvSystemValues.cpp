// SPDX-License-Identifier: MIT
#include "shader/SpirvSystemValues.h"

#include "shader/SpirvInputs.h"

#include <algorithm>
#include <bit>

namespace helvantine
{

namespace
{

/// The input variable that holds a system value; 0 without.
uint32_t findInput(const SpirvModule& module, spv::BuiltIn builtIn)
{
    for (const SpirvInstruction& one : module.instructions)
        if (one.op == spv::Op::OpVariable && one.operand(2) == uint32_t(spv::StorageClass::Input) &&
            module.decoration(one.resultId(), spv::Decoration::BuiltIn) == uint32_t(builtIn))
            return one.resultId();
    return 0;
}

void addCapability(SpirvModule& module, spv::Capability capability)
{
    const bool isThere = std::any_of(
        module.instructions.begin(), module.instructions.end(), [capability](const SpirvInstruction& one) {
            return one.op == spv::Op::OpCapability && one.operand(0) == uint32_t(capability);
        });
    if (!isThere)
        module.instructions.insert(module.instructions.begin(),
                                   {spv::Op::OpCapability, {uint32_t(capability)}});
}

void invertPositionW(SpirvModule& module)
{
    constexpr uint32_t w = 3;
    const uint32_t position = findInput(module, spv::BuiltIn::FragCoord);
    if (!position)
        return;
    const uint32_t number = module.declare(spv::Op::OpTypeFloat, 0, {32});
    const uint32_t one = module.declare(spv::Op::OpConstant, number, {std::bit_cast<uint32_t>(1.0f)});
    SpirvInputs(module).derive(position, [&](const SpirvInputs::Derived& derived) {
        const uint32_t inverse = module.makeId();
        const uint32_t inverted = module.makeId();
        derived.code.push_back({spv::Op::OpCompositeExtract, {number, inverse, derived.value, w}});
        derived.code.push_back({spv::Op::OpFDiv, {number, inverted, one, inverse}});
        derived.code.push_back(
            {spv::Op::OpCompositeInsert, {derived.type, derived.result, inverted, derived.value, w}});
    });
}

void countFromZero(SpirvModule& module, spv::BuiltIn index, spv::BuiltIn base)
{
    const uint32_t variable = findInput(module, index);
    if (!variable)
        return;
    addCapability(module, spv::Capability::DrawParameters);
    SpirvInputs inputs(module);
    inputs.derive(variable, [&](const SpirvInputs::Derived& derived) {
        const uint32_t start = inputs.addInput(derived.type, uint32_t(base));
        const uint32_t loaded = inputs.load(start, derived.type, derived.code);
        derived.code.push_back({spv::Op::OpISub, {derived.type, derived.result, derived.value, loaded}});
    });
}

} // namespace

void repairSystemValues(SpirvModule& module)
{
    invertPositionW(module);
    countFromZero(module, spv::BuiltIn::VertexIndex, spv::BuiltIn::BaseVertex);
    countFromZero(module, spv::BuiltIn::InstanceIndex, spv::BuiltIn::BaseInstance);
}

} // namespace helvantine
