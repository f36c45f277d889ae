// SPDX-License-Identifier: MIT
#pragma once

#include <spirv/unified1/spirv.hpp11>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace helvantine
{

struct SpirvInstruction
{
    spv::Op op = spv::Op::OpNop;
    std::vector<uint32_t>
        operands; ///< what follows the first word: type and result first, where there are any

    /// 0 past the end, so that a short instruction of a broken module does no harm.
    uint32_t operand(size_t i) const { return i < operands.size() ? operands[i] : 0; }

    uint32_t typeId() const;   ///< 0 without
    uint32_t resultId() const; ///< 0 without

    /// The text that starts at an operand.
    std::string text(size_t i) const;
};

/// A SPIR-V module taken apart into instructions, to be read and patched.
///
/// Looking up is linear: modules are small and this happens once for each program.
class SpirvModule
{
public:
    std::vector<SpirvInstruction> instructions;

    /// False if the words aren't a sequence of whole instructions.
    bool parse(const std::vector<uint32_t>& words);
    std::vector<uint32_t> write() const;

    uint32_t makeId() { return m_bound++; }

    /// The instruction whose result is `id`; null if there is none.
    const SpirvInstruction* find(uint32_t id) const;
    SpirvInstruction* find(uint32_t id);

    /// What a pointer's variable holds: the pointee of the variable's type.
    const SpirvInstruction* findPointee(const SpirvInstruction& variable) const;

    /// The value of an integer constant; 0 if it is none.
    uint32_t constantValue(uint32_t id) const;

    std::string name(uint32_t id) const; ///< empty without
    std::string memberName(uint32_t id, uint32_t member) const;

    /// First operand of a decoration, 0 if it has none; nothing if the id doesn't bear it.
    std::optional<uint32_t> decoration(uint32_t id, spv::Decoration kind) const;
    std::optional<uint32_t> memberDecoration(uint32_t id, uint32_t member, spv::Decoration kind) const;
    std::string semantic(uint32_t id) const; ///< as the author wrote it, in upper case; empty without

    /// Replaces the value of a decoration that has one, adds it otherwise.
    void decorate(uint32_t id, spv::Decoration kind, uint32_t value);
    void decorate(uint32_t id, spv::Decoration kind); ///< one that has none

    /// Takes away every decoration of an id.
    void removeDecorations(uint32_t id);

    /// Index of the first function: what is inserted here is a type, a constant or a variable.
    size_t firstFunction() const;

    /// Id of an equal type or constant, made if need be. `operands` leave out the result.
    uint32_t declare(spv::Op op, uint32_t type, std::vector<uint32_t> operands);

private:
    uint32_t m_version = 0;
    uint32_t m_generator = 0;
    uint32_t m_bound = 0;
};

} // namespace helvantine
