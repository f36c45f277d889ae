// SPDX-License-Identifier: MIT
#include "vulkan/PointSize.h"

#include "shader/SpirvModule.h"

#include <algorithm>
#include <bit>

namespace helvantine
{

namespace
{

bool writesPointSize(const SpirvModule& module)
{
    return std::any_of(module.instructions.begin(), module.instructions.end(),
                       [](const SpirvInstruction& one) {
                           const bool plain = one.op == spv::Op::OpDecorate &&
                                              one.operand(1) == uint32_t(spv::Decoration::BuiltIn) &&
                                              one.operand(2) == uint32_t(spv::BuiltIn::PointSize);
                           const bool member = one.op == spv::Op::OpMemberDecorate &&
                                               one.operand(2) == uint32_t(spv::Decoration::BuiltIn) &&
                                               one.operand(3) == uint32_t(spv::BuiltIn::PointSize);
                           return plain || member;
                       });
}

/// Behind the variables of the function's first block.
void storeAtStart(SpirvModule& module, uint32_t function, uint32_t variable, uint32_t value)
{
    auto place = std::find_if(module.instructions.begin(), module.instructions.end(), [&](const auto& one) {
        return one.op == spv::Op::OpFunction && one.resultId() == function;
    });
    place = std::find_if(place, module.instructions.end(),
                         [](const SpirvInstruction& one) { return one.op == spv::Op::OpLabel; });
    if (place == module.instructions.end())
        return;
    place = std::find_if(place + 1, module.instructions.end(), [](const SpirvInstruction& one) {
        return one.op != spv::Op::OpVariable && one.op != spv::Op::OpLine && one.op != spv::Op::OpNoLine;
    });
    module.instructions.insert(place, {spv::Op::OpStore, {variable, value}});
}

} // namespace

std::vector<uint32_t> addPointSize(const std::vector<uint32_t>& vertexWords)
{
    SpirvModule module;
    if (!module.parse(vertexWords) || writesPointSize(module))
        return vertexWords;
    constexpr auto output = uint32_t(spv::StorageClass::Output);
    const uint32_t number = module.declare(spv::Op::OpTypeFloat, 0, {32});
    const uint32_t pointer = module.declare(spv::Op::OpTypePointer, 0, {output, number});
    const uint32_t one = module.declare(spv::Op::OpConstant, number, {std::bit_cast<uint32_t>(1.0f)});
    const uint32_t variable = module.makeId();
    module.instructions.insert(module.instructions.begin() + static_cast<ptrdiff_t>(module.firstFunction()),
                               {spv::Op::OpVariable, {pointer, variable, output}});
    module.decorate(variable, spv::Decoration::BuiltIn, uint32_t(spv::BuiltIn::PointSize));
    for (SpirvInstruction& instruction : module.instructions) {
        if (instruction.op != spv::Op::OpEntryPoint)
            continue;
        instruction.operands.push_back(variable);
        storeAtStart(module, instruction.operand(1), variable, one);
        break;
    }
    return module.write();
}

} // namespace helvantine
