// SPDX-License-Identifier: MIT
#pragma once

#include "shader/SpirvInterface.h"
#include "shader/SpirvModule.h"

#include <vector>

namespace helvantine
{

/// Changes what a stage's inputs give: an input becomes a private variable, which is filled at the start of the entry
/// point, and all that read it read that.
class SpirvInputs
{
public:
    explicit SpirvInputs(SpirvModule& module) : m_module(module) {}

    /// The variable becomes a private one that is zero until it is written.
    void makePrivateZero(uint32_t id);

    /// The stage reads another number of components than the stage before it writes to that location: it gets those,
    /// and zeros.
    void adaptComponents(const StageVariable& input, uint32_t location, uint32_t writtenCount);

    /// What `fill` needs to write the code that computes an input from the system value it was.
    struct Derived
    {
        uint32_t type = 0;  ///< of both
        uint32_t value = 0; ///< the system value, loaded
        uint32_t result = 0;
        std::vector<SpirvInstruction>& code; ///< has to make the result
    };

    /// Reads the system value into a variable of its own and stores what `fill` makes of it where the old one was.
    template <typename Fill>
    void derive(uint32_t id, const Fill& fill)
    {
        const uint32_t type = m_module.findPointee(*m_module.find(id))->resultId();
        const uint32_t source = addInput(type, *m_module.decoration(id, spv::Decoration::BuiltIn));
        makePrivateZero(id);
        std::vector<SpirvInstruction> code;
        const uint32_t value = load(source, type, code);
        const uint32_t result = m_module.makeId();
        fill(Derived{type, value, result, code});
        code.push_back({spv::Op::OpStore, {id, result}});
        insertAtStart(code);
    }

    /// A new input that holds a system value.
    uint32_t addInput(uint32_t type, uint32_t builtIn);
    uint32_t load(uint32_t variable, uint32_t type, std::vector<SpirvInstruction>& code);

private:
    uint32_t addVariable(uint32_t type);
    void insertAtStart(const std::vector<SpirvInstruction>& code);
    size_t startOfEntryPoint() const;
    SpirvInstruction& entryPoint() const;
    void removeFromInterface(uint32_t id);
    std::vector<spv::Decoration> interpolationOf(uint32_t id) const;
    uint32_t declarePointer(spv::StorageClass storage, uint32_t pointee);
    void insertGlobal(SpirvInstruction one);
    void retypeChains(uint32_t variable);

    SpirvModule& m_module;
};

bool isAccessChain(const SpirvInstruction& one);

} // namespace helvantine
