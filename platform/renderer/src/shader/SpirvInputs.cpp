// SPDX-License-Identifier: MIT
#include "shader/SpirvInputs.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>

namespace helvantine
{

bool isAccessChain(const SpirvInstruction& one)
{
    return one.op == spv::Op::OpAccessChain || one.op == spv::Op::OpInBoundsAccessChain;
}

void SpirvInputs::makePrivateZero(uint32_t id)
{
    uint32_t pointee = m_module.findPointee(*m_module.find(id))->resultId();
    uint32_t pointer = declarePointer(spv::StorageClass::Private, pointee);
    uint32_t zero = m_module.declare(spv::Op::OpConstantNull, pointee, {});
    std::erase_if(m_module.instructions, [id](const auto& one) { return one.resultId() == id; });
    insertGlobal({spv::Op::OpVariable, {pointer, id, uint32_t(spv::StorageClass::Private), zero}});
    m_module.removeDecorations(id);
    removeFromInterface(id);
    retypeChains(id);
}

void SpirvInputs::adaptComponents(const StageVariable& input, uint32_t location, uint32_t writtenCount)
{
    const std::vector<spv::Decoration> kept = interpolationOf(input.id);
    makePrivateZero(input.id);
    const SpirvInstruction* pointee = m_module.findPointee(*m_module.find(input.id));
    const uint32_t wanted = pointee->resultId();
    const uint32_t scalar = input.componentCount > 1 ? pointee->operand(1) : wanted;
    const uint32_t written =
        writtenCount > 1 ? m_module.declare(spv::Op::OpTypeVector, 0, {scalar, writtenCount}) : scalar;
    const uint32_t zero = m_module.declare(spv::Op::OpConstantNull, scalar, {});
    const uint32_t variable = addVariable(written);
    m_module.decorate(variable, spv::Decoration::Location, location);
    for (spv::Decoration decoration : kept)
        m_module.decorate(variable, decoration);

    std::vector<SpirvInstruction> code;
    const uint32_t loaded = load(variable, written, code);
    const uint32_t value = m_module.makeId();
    SpirvInstruction convert{spv::Op::OpCompositeExtract, {wanted, value, loaded, 0}};
    if (input.componentCount > writtenCount) {
        convert = {spv::Op::OpCompositeConstruct, {wanted, value, loaded}};
        convert.operands.insert(convert.operands.end(), input.componentCount - writtenCount, zero);
    } else if (input.componentCount > 1) {
        convert = {spv::Op::OpVectorShuffle, {wanted, value, loaded, loaded}};
        for (uint32_t i = 0; i < input.componentCount; ++i)
            convert.operands.push_back(i);
    }
    code.push_back(std::move(convert));
    code.push_back({spv::Op::OpStore, {input.id, value}});
    insertAtStart(code);
}

uint32_t SpirvInputs::addInput(uint32_t type, uint32_t builtIn)
{
    const uint32_t variable = addVariable(type);
    m_module.decorate(variable, spv::Decoration::BuiltIn, builtIn);
    return variable;
}

uint32_t SpirvInputs::load(uint32_t variable, uint32_t type, std::vector<SpirvInstruction>& code)
{
    const uint32_t value = m_module.makeId();
    code.push_back({spv::Op::OpLoad, {type, value, variable}});
    return value;
}

uint32_t SpirvInputs::addVariable(uint32_t type)
{
    const uint32_t pointer = declarePointer(spv::StorageClass::Input, type);
    const uint32_t variable = m_module.makeId();
    insertGlobal({spv::Op::OpVariable, {pointer, variable, uint32_t(spv::StorageClass::Input)}});
    entryPoint().operands.push_back(variable);
    return variable;
}

void SpirvInputs::insertAtStart(const std::vector<SpirvInstruction>& code)
{
    auto place = m_module.instructions.begin() + std::ptrdiff_t(startOfEntryPoint());
    m_module.instructions.insert(place, code.begin(), code.end());
}

/// Behind the local variables of the entry point's first block.
size_t SpirvInputs::startOfEntryPoint() const
{
    uint32_t function = entryPoint().operand(1);
    size_t i = m_module.firstFunction();
    while (i < m_module.instructions.size() && m_module.instructions[i].resultId() != function)
        ++i;
    while (i < m_module.instructions.size() && m_module.instructions[i].op != spv::Op::OpLabel)
        ++i;
    for (++i; i < m_module.instructions.size() && m_module.instructions[i].op == spv::Op::OpVariable;)
        ++i;
    return std::min(i, m_module.instructions.size());
}

SpirvInstruction& SpirvInputs::entryPoint() const
{
    return *std::find_if(m_module.instructions.begin(), m_module.instructions.end(),
                         [](const auto& one) { return one.op == spv::Op::OpEntryPoint; });
}

void SpirvInputs::removeFromInterface(uint32_t id)
{
    SpirvInstruction& entry = entryPoint();
    auto interface = entry.operands.begin() + std::ptrdiff_t(2 + entry.text(2).size() / 4 + 1);
    entry.operands.erase(std::remove(interface, entry.operands.end(), id), entry.operands.end());
}

std::vector<spv::Decoration> SpirvInputs::interpolationOf(uint32_t id) const
{
    std::vector<spv::Decoration> kept;
    for (spv::Decoration one : {spv::Decoration::Flat, spv::Decoration::NoPerspective,
                                spv::Decoration::Centroid, spv::Decoration::Sample})
        if (m_module.decoration(id, one))
            kept.push_back(one);
    return kept;
}

uint32_t SpirvInputs::declarePointer(spv::StorageClass storage, uint32_t pointee)
{
    return m_module.declare(spv::Op::OpTypePointer, 0, {uint32_t(storage), pointee});
}

void SpirvInputs::insertGlobal(SpirvInstruction one)
{
    auto place = m_module.instructions.begin() + std::ptrdiff_t(m_module.firstFunction());
    m_module.instructions.insert(place, std::move(one));
}

/// Pointers into a variable that has become private point into private storage themselves.
void SpirvInputs::retypeChains(uint32_t variable)
{
    std::set<uint32_t> pointers = {variable};
    for (size_t i = m_module.firstFunction(); i < m_module.instructions.size(); ++i) {
        SpirvInstruction chain = m_module.instructions[i];
        if (!isAccessChain(chain) || !pointers.count(chain.operand(2)))
            continue;
        pointers.insert(chain.resultId());
        const SpirvInstruction* type = m_module.find(chain.typeId());
        if (!type)
            continue;
        size_t before = m_module.instructions.size();
        uint32_t pointer = declarePointer(spv::StorageClass::Private, type->operand(2));
        i += m_module.instructions.size() - before;
        m_module.instructions[i].operands[0] = pointer;
    }
}

} // namespace helvantine
