// SPDX-License-Identifier: MIT
#include "shader/SpirvRewriter.h"

#include <bit>
#include <cstddef>
#include <iterator>
#include <utility>

namespace helvantine
{

void SpirvRewriter::write()
{
    const auto start = m_module.instructions.begin() + std::ptrdiff_t(m_module.firstFunction());
    std::vector<SpirvInstruction> old(std::make_move_iterator(start),
                                      std::make_move_iterator(m_module.instructions.end()));
    m_module.instructions.erase(start, m_module.instructions.end());
    for (SpirvInstruction& one : old)
        rewrite(one);
    m_module.instructions.insert(m_module.instructions.end(), std::make_move_iterator(m_code.begin()),
                                 std::make_move_iterator(m_code.end()));
    m_code.clear();
}

uint32_t SpirvRewriter::add(spv::Op op, uint32_t type, Operands operands)
{
    const uint32_t id = m_module.makeId();
    operands.insert(operands.begin(), {type, id});
    m_code.push_back({op, std::move(operands)});
    return id;
}

void SpirvRewriter::put(spv::Op op, const SpirvInstruction& replaced, Operands operands)
{
    operands.insert(operands.begin(), {replaced.typeId(), replaced.resultId()});
    m_code.push_back({op, std::move(operands)});
}

uint32_t SpirvRewriter::sameShape(uint32_t type, uint32_t scalar)
{
    const SpirvInstruction* vector = m_module.find(type);
    if (!vector || vector->op != spv::Op::OpTypeVector)
        return scalar;
    return m_module.declare(spv::Op::OpTypeVector, 0, {scalar, vector->operand(2)});
}

uint32_t SpirvRewriter::constant(uint32_t type, uint32_t bits)
{
    const SpirvInstruction* vector = m_module.find(type);
    if (!vector || vector->op != spv::Op::OpTypeVector)
        return m_module.declare(spv::Op::OpConstant, type, {bits});
    const uint32_t count = vector->operand(2);
    const uint32_t component = m_module.declare(spv::Op::OpConstant, vector->operand(1), {bits});
    return m_module.declare(spv::Op::OpConstantComposite, type, Operands(count, component));
}

uint32_t SpirvRewriter::number(uint32_t type, float value)
{
    return constant(type, std::bit_cast<uint32_t>(value));
}

const SpirvInstruction* SpirvRewriter::source(uint32_t value) const
{
    for (auto one = m_code.rbegin(); one != m_code.rend(); ++one)
        if (one->resultId() == value)
            return &*one;
    return m_module.find(value);
}

} // namespace helvantine
