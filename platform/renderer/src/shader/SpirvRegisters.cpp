// SPDX-License-Identifier: MIT
#include "shader/SpirvRegisters.h"

#include <algorithm>
#include <map>
#include <utility>

namespace helvantine
{

namespace
{

/// What a variable of a type takes.
struct Size
{
    uint64_t registers = 1;
    uint64_t longest = 0; ///< elements of the longest array in it; 0 without one
};

Size sizeOf(const SpirvModule& module, uint32_t typeId)
{
    constexpr uint64_t most = uint64_t(1) << 32;
    const SpirvInstruction* type = module.find(typeId);
    Size size;
    if (type && type->op == spv::Op::OpTypeMatrix) {
        size.registers = type->operand(2);
    } else if (type && type->op == spv::Op::OpTypeArray) {
        const uint64_t count = module.constantValue(type->operand(2));
        size = sizeOf(module, type->operand(1));
        size.registers = std::min(size.registers * count, most);
        size.longest = std::max(size.longest, count);
    } else if (type && type->op == spv::Op::OpTypeStruct) {
        size.registers = 0;
        for (size_t member = 1; member < type->operands.size(); ++member) {
            const Size one = sizeOf(module, type->operands[member]);
            size.registers = std::min(size.registers + one.registers, most);
            size.longest = std::max(size.longest, one.longest);
        }
    }
    return size;
}

/// Variables, and constants that they begin with, of which one is a copy of the other.
class Copies
{
public:
    uint32_t leaderOf(uint32_t id)
    {
        uint32_t leader = id;
        for (auto next = m_leaders.find(leader); next != m_leaders.end(); next = m_leaders.find(leader))
            leader = next->second;
        while (id != leader)
            id = std::exchange(m_leaders[id], leader);
        return leader;
    }

    void join(uint32_t a, uint32_t b)
    {
        a = leaderOf(a);
        b = leaderOf(b);
        if (a != b)
            m_leaders[std::max(a, b)] = std::min(a, b);
    }

private:
    std::map<uint32_t, uint32_t> m_leaders;
};

bool isLocal(const SpirvInstruction& one)
{
    return one.op == spv::Op::OpVariable && (one.operand(2) == uint32_t(spv::StorageClass::Function) ||
                                             one.operand(2) == uint32_t(spv::StorageClass::Private));
}

} // namespace

ArrayRegisters countArrayRegisters(const SpirvModule& module)
{
    std::map<uint32_t, Size> arrays; // by variable
    Copies copies;
    for (const SpirvInstruction& one : module.instructions) {
        if (!isLocal(one))
            continue;
        const Size size = sizeOf(module, module.findPointee(one)->resultId());
        if (size.longest == 0)
            continue;
        arrays[one.resultId()] = size;
        if (one.operand(3))
            copies.join(one.resultId(), one.operand(3));
    }
    for (const SpirvInstruction& one : module.instructions) {
        if (one.op != spv::Op::OpStore || !arrays.count(one.operand(0)))
            continue;
        const SpirvInstruction* value = module.find(one.operand(1));
        copies.join(one.operand(0),
                    value && value->op == spv::Op::OpLoad ? value->operand(2) : one.operand(1));
    }
    ArrayRegisters result;
    std::map<uint32_t, uint64_t> groups;
    for (const auto& [variable, size] : arrays) {
        uint64_t& group = groups[copies.leaderOf(variable)];
        group = std::max(group, size.registers);
        if (size.registers > result.largest) {
            result.largest = size.registers;
            result.largestSize = size.longest;
        }
    }
    for (const auto& [leader, registers] : groups)
        result.all += registers;
    return result;
}

} // namespace helvantine
