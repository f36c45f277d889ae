// SPDX-License-Identifier: MIT
#define SPV_ENABLE_UTILITY_CODE
#include "shader/SpirvModule.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace helvantine
{

namespace
{

constexpr size_t headerWords = 5;

} // namespace

uint32_t SpirvInstruction::typeId() const
{
    bool hasResult = false;
    bool hasType = false;
    spv::HasResultAndType(op, &hasResult, &hasType);
    return hasType ? operand(0) : 0;
}

uint32_t SpirvInstruction::resultId() const
{
    bool hasResult = false;
    bool hasType = false;
    spv::HasResultAndType(op, &hasResult, &hasType);
    return hasResult ? operand(hasType ? 1 : 0) : 0;
}

std::string SpirvInstruction::text(size_t i) const
{
    std::string text;
    for (; i < operands.size(); ++i)
        for (int shift = 0; shift < 32; shift += 8) {
            char letter = char(operands[i] >> shift & 255);
            if (letter == 0)
                return text;
            text += letter;
        }
    return text;
}

bool SpirvModule::parse(const std::vector<uint32_t>& words)
{
    instructions.clear();
    if (words.size() < headerWords || words[0] != spv::MagicNumber)
        return false;
    m_version = words[1];
    m_generator = words[2];
    m_bound = words[3];
    for (size_t at = headerWords; at < words.size();) {
        uint32_t count = words[at] >> 16;
        if (count == 0 || count > words.size() - at)
            return false;
        SpirvInstruction& instruction = instructions.emplace_back();
        instruction.op = spv::Op(words[at] & 0xffff);
        instruction.operands.assign(words.begin() + std::ptrdiff_t(at + 1),
                                    words.begin() + std::ptrdiff_t(at + count));
        at += count;
    }
    return true;
}

std::vector<uint32_t> SpirvModule::write() const
{
    std::vector<uint32_t> words = {spv::MagicNumber, m_version, m_generator, m_bound, 0};
    for (const SpirvInstruction& instruction : instructions) {
        words.push_back(uint32_t(instruction.operands.size() + 1) << 16 | uint32_t(instruction.op));
        words.insert(words.end(), instruction.operands.begin(), instruction.operands.end());
    }
    return words;
}

const SpirvInstruction* SpirvModule::find(uint32_t id) const
{
    auto found = std::find_if(instructions.begin(), instructions.end(),
                              [id](const auto& one) { return id != 0 && one.resultId() == id; });
    return found == instructions.end() ? nullptr : &*found;
}

SpirvInstruction* SpirvModule::find(uint32_t id)
{
    return const_cast<SpirvInstruction*>(std::as_const(*this).find(id));
}

const SpirvInstruction* SpirvModule::findPointee(const SpirvInstruction& variable) const
{
    const SpirvInstruction* pointer = find(variable.typeId());
    return pointer && pointer->op == spv::Op::OpTypePointer ? find(pointer->operand(2)) : nullptr;
}

uint32_t SpirvModule::constantValue(uint32_t id) const
{
    const SpirvInstruction* constant = find(id);
    return constant && constant->op == spv::Op::OpConstant ? constant->operand(2) : 0;
}

std::string SpirvModule::name(uint32_t id) const
{
    for (const SpirvInstruction& one : instructions)
        if (one.op == spv::Op::OpName && one.operand(0) == id)
            return one.text(1);
    return {};
}

std::string SpirvModule::memberName(uint32_t id, uint32_t member) const
{
    for (const SpirvInstruction& one : instructions)
        if (one.op == spv::Op::OpMemberName && one.operand(0) == id && one.operand(1) == member)
            return one.text(2);
    return {};
}

std::optional<uint32_t> SpirvModule::decoration(uint32_t id, spv::Decoration kind) const
{
    for (const SpirvInstruction& one : instructions)
        if (one.op == spv::Op::OpDecorate && one.operand(0) == id && one.operand(1) == uint32_t(kind))
            return one.operand(2);
    return {};
}

std::optional<uint32_t> SpirvModule::memberDecoration(uint32_t id, uint32_t member,
                                                      spv::Decoration kind) const
{
    for (const SpirvInstruction& one : instructions)
        if (one.op == spv::Op::OpMemberDecorate && one.operand(0) == id && one.operand(1) == member &&
            one.operand(2) == uint32_t(kind))
            return one.operand(3);
    return {};
}

std::string SpirvModule::semantic(uint32_t id) const
{
    for (const SpirvInstruction& one : instructions)
        if (one.op == spv::Op::OpDecorateString && one.operand(0) == id &&
            one.operand(1) == uint32_t(spv::Decoration::UserSemantic))
            return one.text(2);
    return {};
}

void SpirvModule::decorate(uint32_t id, spv::Decoration kind, uint32_t value)
{
    size_t firstDecoration = instructions.size();
    for (size_t i = 0; i < instructions.size(); ++i) {
        SpirvInstruction& one = instructions[i];
        if (one.op != spv::Op::OpDecorate)
            continue;
        firstDecoration = std::min(firstDecoration, i);
        if (one.operand(0) == id && one.operand(1) == uint32_t(kind)) {
            one.operands = {id, uint32_t(kind), value};
            return;
        }
    }
    auto place = instructions.begin() + std::ptrdiff_t(firstDecoration);
    instructions.insert(place, {spv::Op::OpDecorate, {id, uint32_t(kind), value}});
}

void SpirvModule::decorate(uint32_t id, spv::Decoration kind)
{
    decorate(id, kind, 0);
    for (SpirvInstruction& one : instructions)
        if (one.op == spv::Op::OpDecorate && one.operand(0) == id && one.operand(1) == uint32_t(kind))
            one.operands.resize(2);
}

void SpirvModule::removeDecorations(uint32_t id)
{
    std::erase_if(instructions, [id](const SpirvInstruction& one) {
        return (one.op == spv::Op::OpDecorate || one.op == spv::Op::OpDecorateString) && one.operand(0) == id;
    });
}

size_t SpirvModule::firstFunction() const
{
    auto found = std::find_if(instructions.begin(), instructions.end(),
                              [](const auto& one) { return one.op == spv::Op::OpFunction; });
    return size_t(found - instructions.begin());
}

uint32_t SpirvModule::declare(spv::Op op, uint32_t type, std::vector<uint32_t> operands)
{
    size_t head = type ? 2 : 1;
    for (const SpirvInstruction& one : instructions)
        if (one.op == op && one.typeId() == type && one.operands.size() == head + operands.size() &&
            std::equal(operands.begin(), operands.end(), one.operands.begin() + std::ptrdiff_t(head)))
            return one.resultId();
    uint32_t id = makeId();
    operands.insert(operands.begin(), id);
    if (type)
        operands.insert(operands.begin(), type);
    instructions.insert(instructions.begin() + std::ptrdiff_t(firstFunction()), {op, std::move(operands)});
    return id;
}

} // namespace helvantine
