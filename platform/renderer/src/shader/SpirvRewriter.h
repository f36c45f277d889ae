// SPDX-License-Identifier: MIT
#pragma once

#include "shader/SpirvModule.h"

#include <cstdint>
#include <vector>

namespace helvantine
{

/// Writes the functions of a module anew, instruction by instruction.
class SpirvRewriter
{
public:
    explicit SpirvRewriter(SpirvModule& module) : m_module(module) {}
    virtual ~SpirvRewriter() = default;

    void write();

protected:
    using Operands = std::vector<uint32_t>;

    /// Puts the instruction, or others in its place.
    virtual void rewrite(SpirvInstruction& one) = 0;

    void keep(SpirvInstruction& one) { m_code.push_back(std::move(one)); }
    /// An instruction that makes a new value, whose id is the result.
    uint32_t add(spv::Op op, uint32_t type, Operands operands);
    /// An instruction that makes the value of another one.
    void put(spv::Op op, const SpirvInstruction& replaced, Operands operands);

    uint32_t boolType() { return m_module.declare(spv::Op::OpTypeBool, 0, {}); }
    /// A vector or scalar of `scalar` with as many components as `type`.
    uint32_t sameShape(uint32_t type, uint32_t scalar);
    /// A scalar, or a vector of one number.
    uint32_t constant(uint32_t type, uint32_t bits);
    uint32_t number(uint32_t type, float value);

    /// What made a value, in a function or outside; null if that isn't written yet.
    const SpirvInstruction* source(uint32_t value) const;
    uint32_t typeOf(uint32_t value) const { return source(value) ? source(value)->typeId() : 0; }

    SpirvModule& m_module; ///< without its functions while they are written

private:
    std::vector<SpirvInstruction> m_code;
};

} // namespace helvantine
