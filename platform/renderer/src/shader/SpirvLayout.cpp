// SPDX-License-Identifier: MIT
#include "shader/SpirvLayout.h"

#include <algorithm>

namespace helvantine
{

namespace
{

constexpr uint32_t registerSize = 16;

uint32_t alignUp(uint32_t offset, uint32_t alignment)
{
    return (offset + alignment - 1) / alignment * alignment;
}

struct MatrixLayout
{
    uint32_t stride = registerSize;
    bool rowMajor = false;
};

MatrixLayout matrixLayout(const SpirvModule& module, uint32_t structId, uint32_t member)
{
    return {module.memberDecoration(structId, member, spv::Decoration::MatrixStride).value_or(registerSize),
            module.memberDecoration(structId, member, spv::Decoration::RowMajor).has_value()};
}

uint32_t sizeOf(const SpirvModule& module, uint32_t typeId, const MatrixLayout& matrix)
{
    const SpirvInstruction* type = module.find(typeId);
    if (!type)
        return 0;
    switch (type->op) {
    case spv::Op::OpTypeInt:
    case spv::Op::OpTypeFloat:
        return type->operand(1) / 8;
    case spv::Op::OpTypeVector:
        return type->operand(2) * sizeOf(module, type->operand(1), matrix);
    case spv::Op::OpTypeMatrix: {
        const SpirvInstruction* column = module.find(type->operand(1));
        if (!column)
            return 0;
        uint32_t lines = matrix.rowMajor ? column->operand(2) : type->operand(2);
        uint32_t width = matrix.rowMajor ? type->operand(2) : column->operand(2);
        return (std::max(lines, 1u) - 1) * matrix.stride + width * sizeOf(module, column->operand(1), matrix);
    }
    case spv::Op::OpTypeArray: {
        uint32_t count = std::max(module.constantValue(type->operand(2)), 1u);
        uint32_t stride = module.decoration(typeId, spv::Decoration::ArrayStride).value_or(registerSize);
        return (count - 1) * stride + sizeOf(module, type->operand(1), matrix);
    }
    case spv::Op::OpTypeStruct:
        return blockSize(module, *type);
    default:
        return 0;
    }
}

/// Lays out the structures of constant buffers, inner ones first.
class Packer
{
public:
    explicit Packer(SpirvModule& module) : m_module(module) {}

    void packMembers(uint32_t structId, bool movesMembers)
    {
        const std::vector<uint32_t> members = membersOf(structId);
        uint32_t end = 0;
        for (uint32_t member = 0; member < members.size(); ++member) {
            packInner(members[member]);
            uint32_t size = sizeOf(m_module, members[member], matrixLayout(m_module, structId, member));
            uint32_t offset = placeFor(members[member], end, size);
            if (movesMembers)
                setOffset(structId, member, offset);
            end = offset + size;
        }
    }

private:
    std::vector<uint32_t> membersOf(uint32_t structId) const
    {
        const std::vector<uint32_t>& operands = m_module.find(structId)->operands;
        return {operands.begin() + 1, operands.end()};
    }

    /// Structures in structures and in arrays, whose stride follows from their size.
    void packInner(uint32_t typeId)
    {
        const SpirvInstruction* type = m_module.find(typeId);
        if (type && type->op == spv::Op::OpTypeStruct)
            packMembers(typeId, true);
        if (!type || type->op != spv::Op::OpTypeArray)
            return;
        uint32_t element = type->operand(1);
        packInner(element);
        const SpirvInstruction* elementType = m_module.find(element);
        bool isCompound = elementType && (elementType->op == spv::Op::OpTypeStruct ||
                                          elementType->op == spv::Op::OpTypeArray);
        if (isCompound)
            m_module.decorate(typeId, spv::Decoration::ArrayStride,
                              alignUp(sizeOf(m_module, element, {}), registerSize));
    }

    uint32_t placeFor(uint32_t typeId, uint32_t end, uint32_t size) const
    {
        const SpirvInstruction* type = m_module.find(typeId);
        bool isNumber = type && (type->op == spv::Op::OpTypeInt || type->op == spv::Op::OpTypeFloat ||
                                 type->op == spv::Op::OpTypeVector);
        bool crossesRegister = end / registerSize != (end + std::max(size, 1u) - 1) / registerSize;
        return isNumber && !crossesRegister ? end : alignUp(end, registerSize);
    }

    void setOffset(uint32_t structId, uint32_t member, uint32_t offset)
    {
        for (SpirvInstruction& one : m_module.instructions)
            if (one.op == spv::Op::OpMemberDecorate && one.operand(0) == structId &&
                one.operand(1) == member && one.operand(2) == uint32_t(spv::Decoration::Offset))
                one.operands[3] = offset;
    }

    SpirvModule& m_module;
};

} // namespace

uint32_t blockSize(const SpirvModule& module, const SpirvInstruction& structType)
{
    uint32_t end = 0;
    for (uint32_t member = 0; member + 1 < structType.operands.size(); ++member) {
        uint32_t id = structType.operand(0);
        uint32_t offset = module.memberDecoration(id, member, spv::Decoration::Offset).value_or(0);
        uint32_t size = sizeOf(module, structType.operand(member + 1), matrixLayout(module, id, member));
        end = std::max(end, offset + size);
    }
    return end;
}

void packConstantBuffers(SpirvModule& module, const std::set<std::string>& placedByAuthor)
{
    std::vector<uint32_t> blocks;
    for (const SpirvInstruction& one : module.instructions)
        if (one.op == spv::Op::OpDecorate && one.operand(1) == uint32_t(spv::Decoration::Block))
            if (const SpirvInstruction* type = module.find(one.operand(0));
                type && type->op == spv::Op::OpTypeStruct)
                blocks.push_back(one.operand(0));
    Packer packer(module);
    for (uint32_t block : blocks)
        packer.packMembers(block, placedByAuthor.count(module.name(block)) == 0);
}

} // namespace helvantine
