// SPDX-License-Identifier: MIT
#include "shader/SpirvNumbers.h"

#include <spirv/unified1/GLSL.std.450.h>

#include <bit>
#include <cstddef>
#include <iterator>
#include <utility>

namespace helvantine
{

namespace
{

using Operands = std::vector<uint32_t>;

/// Writes the functions of a module anew, instruction by instruction.
class NumberWriter
{
public:
    explicit NumberWriter(SpirvModule& module) : m_module(module)
    {
        for (const SpirvInstruction& one : module.instructions)
            if (one.op == spv::Op::OpExtInstImport && one.text(1) == "GLSL.std.450")
                m_extended = one.resultId();
    }

    void write()
    {
        const auto start = m_module.instructions.begin() + std::ptrdiff_t(m_module.firstFunction());
        std::vector<SpirvInstruction> old(std::make_move_iterator(start),
                                          std::make_move_iterator(m_module.instructions.end()));
        m_module.instructions.erase(start, m_module.instructions.end());
        for (SpirvInstruction& one : old)
            rewrite(one);
        m_module.instructions.insert(m_module.instructions.end(), std::make_move_iterator(m_code.begin()),
                                     std::make_move_iterator(m_code.end()));
    }

private:
    void rewrite(SpirvInstruction& one)
    {
        switch (one.op) {
        case spv::Op::OpFMod:
            one.op = spv::Op::OpFRem;
            break;
        case spv::Op::OpSMod:
            one.op = spv::Op::OpSRem;
            break;
        case spv::Op::OpConvertFToS:
            return convertToSigned(one);
        case spv::Op::OpConvertFToU:
            return convertToUnsigned(one);
        case spv::Op::OpShiftLeftLogical:
        case spv::Op::OpShiftRightLogical:
        case spv::Op::OpShiftRightArithmetic:
            return shift(one);
        case spv::Op::OpExtInst:
            if (one.operand(2) == m_extended && m_extended)
                return rewriteExtended(one);
            break;
        default:
            break;
        }
        m_code.push_back(std::move(one));
    }

    void rewriteExtended(SpirvInstruction& one)
    {
        switch (one.operand(3)) {
        case GLSLstd450FMin:
            one.operands[3] = GLSLstd450NMin;
            break;
        case GLSLstd450FMax:
            one.operands[3] = GLSLstd450NMax;
            break;
        case GLSLstd450FClamp:
            one.operands[3] = GLSLstd450NClamp;
            break;
        case GLSLstd450Step:
            return step(one);
        case GLSLstd450Pow:
            return power(one);
        default:
            break;
        }
        m_code.push_back(std::move(one));
    }

    void step(const SpirvInstruction& one)
    {
        const uint32_t type = one.typeId();
        const uint32_t reached = add(spv::Op::OpFOrdGreaterThanEqual, sameShape(type, boolType()),
                                     {one.operand(5), one.operand(4)});
        put(spv::Op::OpSelect, one, {reached, number(type, 1.0f), number(type, 0.0f)});
    }

    void power(const SpirvInstruction& one)
    {
        const uint32_t type = one.typeId();
        const uint32_t logarithm = extended(type, GLSLstd450Log2, {one.operand(4)});
        const uint32_t product = add(spv::Op::OpFMul, type, {logarithm, one.operand(5)});
        m_module.decorate(product, spv::Decoration::NoContraction); // or some drivers make it a pow again
        put(spv::Op::OpExtInst, one, {m_extended, GLSLstd450Exp2, product});
    }

    void convertToSigned(const SpirvInstruction& one)
    {
        const uint32_t value = one.operand(2);
        const uint32_t from = typeOf(value);
        const uint32_t bools = sameShape(one.typeId(), boolType());
        const uint32_t clamped = extended(from, GLSLstd450NClamp,
                                          {value, number(from, -2147483648.0f), number(from, 2147483520.0f)});
        const uint32_t converted = add(spv::Op::OpConvertFToS, one.typeId(), {clamped});
        const uint32_t isLarge =
            add(spv::Op::OpFOrdGreaterThanEqual, bools, {value, number(from, 2147483648.0f)});
        const uint32_t saturated =
            add(spv::Op::OpSelect, one.typeId(), {isLarge, constant(one.typeId(), INT32_MAX), converted});
        const uint32_t isNumber = add(spv::Op::OpFOrdEqual, bools, {value, value});
        put(spv::Op::OpSelect, one, {isNumber, saturated, constant(one.typeId(), 0)});
    }

    void convertToUnsigned(const SpirvInstruction& one)
    {
        const uint32_t value = one.operand(2);
        const uint32_t from = typeOf(value);
        const uint32_t bools = sameShape(one.typeId(), boolType());
        const uint32_t clamped =
            extended(from, GLSLstd450NClamp, {value, number(from, 0.0f), number(from, 4294967040.0f)});
        const uint32_t converted = add(spv::Op::OpConvertFToU, one.typeId(), {clamped});
        const uint32_t isLarge =
            add(spv::Op::OpFOrdGreaterThanEqual, bools, {value, number(from, 4294967296.0f)});
        put(spv::Op::OpSelect, one, {isLarge, constant(one.typeId(), UINT32_MAX), converted});
    }

    void shift(SpirvInstruction& one)
    {
        const uint32_t type = typeOf(one.operand(3));
        one.operands[3] = add(spv::Op::OpBitwiseAnd, type, {one.operand(3), constant(type, 31)});
        m_code.push_back(std::move(one));
    }

    /// Instructions that make new values, and one that makes that of another instruction.
    uint32_t add(spv::Op op, uint32_t type, Operands operands)
    {
        const uint32_t id = m_module.makeId();
        operands.insert(operands.begin(), {type, id});
        m_code.push_back({op, std::move(operands)});
        return id;
    }
    uint32_t extended(uint32_t type, uint32_t instruction, Operands operands)
    {
        operands.insert(operands.begin(), {extendedSet(), instruction});
        return add(spv::Op::OpExtInst, type, std::move(operands));
    }
    void put(spv::Op op, const SpirvInstruction& replaced, Operands operands)
    {
        operands.insert(operands.begin(), {replaced.typeId(), replaced.resultId()});
        m_code.push_back({op, std::move(operands)});
    }

    /// Imports stand behind the capabilities and extensions.
    uint32_t extendedSet()
    {
        if (m_extended)
            return m_extended;
        m_extended = m_module.makeId();
        size_t place = 0;
        while (m_module.instructions[place].op == spv::Op::OpCapability ||
               m_module.instructions[place].op == spv::Op::OpExtension)
            ++place;
        m_module.instructions.insert(
            m_module.instructions.begin() + std::ptrdiff_t(place),
            {spv::Op::OpExtInstImport, {m_extended, 0x4c534c47, 0x6474732e, 0x3035342e, 0}}); // its name
        return m_extended;
    }

    uint32_t boolType() { return m_module.declare(spv::Op::OpTypeBool, 0, {}); }

    /// A vector or scalar of `scalar` with as many components as `type`.
    uint32_t sameShape(uint32_t type, uint32_t scalar)
    {
        const SpirvInstruction* vector = m_module.find(type);
        if (!vector || vector->op != spv::Op::OpTypeVector)
            return scalar;
        return m_module.declare(spv::Op::OpTypeVector, 0, {scalar, vector->operand(2)});
    }

    uint32_t constant(uint32_t type, uint32_t bits)
    {
        const SpirvInstruction* vector = m_module.find(type);
        if (!vector || vector->op != spv::Op::OpTypeVector)
            return m_module.declare(spv::Op::OpConstant, type, {bits});
        const uint32_t count = vector->operand(2);
        const uint32_t component = m_module.declare(spv::Op::OpConstant, vector->operand(1), {bits});
        return m_module.declare(spv::Op::OpConstantComposite, type, Operands(count, component));
    }
    uint32_t number(uint32_t type, float value) { return constant(type, std::bit_cast<uint32_t>(value)); }

    /// Of a value, wherever it was made.
    uint32_t typeOf(uint32_t value) const
    {
        if (const SpirvInstruction* global = m_module.find(value))
            return global->typeId();
        for (auto one = m_code.rbegin(); one != m_code.rend(); ++one)
            if (one->resultId() == value)
                return one->typeId();
        return 0;
    }

    SpirvModule& m_module;
    uint32_t m_extended = 0; ///< the imported instructions; 0 while there are none
    std::vector<SpirvInstruction> m_code;
};

} // namespace

void repairNumbers(SpirvModule& module)
{
    NumberWriter(module).write();
}

} // namespace helvantine
