// SPDX-License-Identifier: MIT
#include "shader/SpirvNumbers.h"

#include "shader/SpirvRewriter.h"

#include <spirv/unified1/GLSL.std.450.h>

#include <cstddef>
#include <utility>

namespace helvantine
{

namespace
{

class NumberWriter : public SpirvRewriter
{
public:
    explicit NumberWriter(SpirvModule& module) : SpirvRewriter(module)
    {
        for (const SpirvInstruction& one : module.instructions)
            if (one.op == spv::Op::OpExtInstImport && one.text(1) == "GLSL.std.450")
                m_extended = one.resultId();
    }

private:
    void rewrite(SpirvInstruction& one) override
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
        keep(one);
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
        keep(one);
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
        keep(one);
    }

    uint32_t extended(uint32_t type, uint32_t instruction, Operands operands)
    {
        operands.insert(operands.begin(), {extendedSet(), instruction});
        return add(spv::Op::OpExtInst, type, std::move(operands));
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

    uint32_t m_extended = 0; ///< the imported instructions; 0 while there are none
};

} // namespace

void repairNumbers(SpirvModule& module)
{
    NumberWriter(module).write();
}

} // namespace helvantine
