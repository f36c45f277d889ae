// SPDX-License-Identifier: MIT
#include "shader/SpirvPasses.h"

#include "shader/SpirvInputs.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>

namespace helvantine
{

namespace
{

bool isTexture(const SpirvModule& module, const SpirvInstruction& one)
{
    if (one.op != spv::Op::OpVariable || one.operand(2) != uint32_t(spv::StorageClass::UniformConstant))
        return false;
    const SpirvInstruction* type = module.findPointee(one);
    return type && type->op == spv::Op::OpTypeImage;
}

bool isConstant(const SpirvInstruction* one)
{
    return one && (one->op == spv::Op::OpConstantComposite || one->op == spv::Op::OpConstantNull ||
                   one->op == spv::Op::OpConstant);
}

/// How a local variable is used, as far as it tells whether it only ever holds one constant.
class TableUse
{
public:
    TableUse(const SpirvModule& module, uint32_t variable) : m_pointers{variable}
    {
        uint32_t initial = module.find(variable)->operand(3);
        m_constant = initial;
        for (size_t i = module.firstFunction(); i < module.instructions.size() && m_isTable; ++i)
            look(module, module.instructions[i], variable);
    }

    /// Id of the constant; 0 if the variable isn't such a table.
    uint32_t constant() const { return m_isTable && m_hasStore ? m_constant : 0; }

private:
    void look(const SpirvModule& module, const SpirvInstruction& one, uint32_t variable)
    {
        if (one.op == spv::Op::OpVariable)
            return;
        if (one.op == spv::Op::OpStore && one.operand(0) == variable) {
            uint32_t stored = one.operand(1);
            m_isTable = (m_constant == 0 || m_constant == stored) && isConstant(module.find(stored));
            m_constant = stored;
            m_hasStore = true;
            return;
        }
        bool reads = one.op == spv::Op::OpLoad || isAccessChain(one);
        for (size_t i = 0; i < one.operands.size(); ++i)
            if (m_pointers.count(one.operands[i]) && !(reads && i == 2))
                m_isTable =
                    false; // a literal of that value may be mistaken for the pointer: then nothing is gained
        if (isAccessChain(one) && m_pointers.count(one.operand(2)))
            m_pointers.insert(one.resultId());
    }

    std::set<uint32_t> m_pointers; ///< the variable and what points into it
    uint32_t m_constant = 0;
    bool m_isTable = true;
    bool m_hasStore = false;
};

/// The place of a semantic among the locations between the stages.
struct VaryingRow
{
    uint32_t location = 0;
    ShaderComponentType component = ShaderComponentType::Float;
    uint32_t componentCount = 0;
};

using VaryingRows = std::map<std::pair<std::string, uint32_t>, VaryingRow>;

VaryingRows collectRows(const std::vector<StageVariable>& outputs)
{
    VaryingRows rows;
    for (const StageVariable& output : outputs)
        for (uint32_t row = 0; row < output.rows; ++row) {
            VaryingRow place{output.location + row, output.component, output.componentCount};
            auto key = std::make_pair(output.semantic, output.index + row);
            if (row == 0)
                rows[key] = place; // a variable of that very semantic beats a row of a matrix before it
            else
                rows.emplace(key, place);
        }
    return rows;
}

const char* componentName(ShaderComponentType type)
{
    switch (type) {
    case ShaderComponentType::Int:
        return "int";
    case ShaderComponentType::Uint:
        return "uint";
    default:
        return "float";
    }
}

/// Do all rows of a matrix stand behind each other, with as many components as the pixel stage reads?
bool rowsFit(const VaryingRows& rows, const StageVariable& input, const VaryingRow& first)
{
    for (uint32_t row = 0; row < input.rows; ++row) {
        auto found = rows.find({input.semantic, input.index + row});
        if (found == rows.end() || found->second.location != first.location + row ||
            found->second.component != input.component ||
            found->second.componentCount != input.componentCount)
            return false;
    }
    return true;
}

} // namespace

void repairComparedTextures(SpirvModule& module)
{
    std::map<std::string, uint32_t> bindings;
    std::vector<std::pair<std::string, uint32_t>> strays;
    for (const SpirvInstruction& one : module.instructions) {
        if (!isTexture(module, one))
            continue;
        uint32_t id = one.resultId();
        uint32_t binding = module.decoration(id, spv::Decoration::Binding).value_or(0);
        if (binding < textureBindingBase)
            strays.emplace_back(module.name(id), id);
        else
            bindings[module.name(id)] = binding;
    }
    for (const auto& [name, id] : strays)
        if (auto twin = bindings.find(name); twin != bindings.end())
            module.decorate(id, spv::Decoration::Binding, twin->second);
}

void keepConstantTables(SpirvModule& module)
{
    std::map<uint32_t, uint32_t> tables;
    for (const SpirvInstruction& one : module.instructions)
        if (one.op == spv::Op::OpVariable && one.operand(2) == uint32_t(spv::StorageClass::Function))
            if (uint32_t constant = TableUse(module, one.resultId()).constant())
                tables[one.resultId()] = constant;
    for (const auto& [variable, constant] : tables) {
        std::vector<uint32_t>& operands = module.find(variable)->operands;
        operands.resize(4);
        operands[3] = constant;
    }
    std::erase_if(module.instructions, [&tables](const SpirvInstruction& one) {
        return one.op == spv::Op::OpStore && tables.count(one.operand(0));
    });
}

void linkPixelStage(const std::vector<StageVariable>& vertexOutputs, SpirvModule& pixel, std::string& errors)
{
    VaryingRows rows = collectRows(vertexOutputs);
    SpirvInputs inputs(pixel);
    std::set<std::pair<std::string, uint32_t>> seen;
    for (const StageVariable& input : readStageVariables(pixel, spv::StorageClass::Input, errors)) {
        if (!seen.insert({input.semantic, input.index}).second) {
            errors += "'" + input.describe() + "' is an input of the pixel stage twice\n";
            continue;
        }
        auto found = rows.find({input.semantic, input.index});
        if (found == rows.end()) {
            inputs.makePrivateZero(input.id);
            continue;
        }
        const VaryingRow& row = found->second;
        if (row.component != input.component)
            errors += "'" + input.describe() + "' is " + componentName(row.component) +
                      " in the vertex stage and " + componentName(input.component) + " in the pixel stage\n";
        else if (input.rows > 1 && !rowsFit(rows, input, row))
            errors += "'" + input.describe() + "' has another shape in the vertex stage than its " +
                      std::to_string(input.rows) + " rows of " + std::to_string(input.componentCount) +
                      " in the pixel stage\n";
        else if (input.rows == 1 && row.componentCount != input.componentCount)
            inputs.adaptComponents(input, row.location, row.componentCount);
        else
            pixel.decorate(input.id, spv::Decoration::Location, row.location);
    }
}

std::vector<ShaderPixelOutput> placePixelOutputs(SpirvModule& pixel, std::string& errors)
{
    constexpr uint32_t targetCount = 8;
    std::vector<ShaderPixelOutput> outputs;
    for (const StageVariable& output : readStageVariables(pixel, spv::StorageClass::Output, errors)) {
        bool isTarget = output.semantic == "SV_TARGET" || output.semantic == "COLOR";
        if (!isTarget || output.index >= targetCount || output.rows != 1) {
            errors += "pixel output '" + output.describe() + "' is none of SV_Target0 to SV_Target7\n";
            continue;
        }
        pixel.decorate(output.id, spv::Decoration::Location, output.index);
        outputs.push_back({output.index, output.component, output.componentCount});
    }
    std::sort(outputs.begin(), outputs.end(),
              [](const auto& a, const auto& b) { return a.target < b.target; });
    return outputs;
}

void stripSemantics(SpirvModule& module)
{
    std::erase_if(module.instructions, [](const SpirvInstruction& one) {
        switch (one.op) {
        case spv::Op::OpDecorateString:
        case spv::Op::OpMemberDecorateString:
        case spv::Op::OpSource:
        case spv::Op::OpSourceContinued:
        case spv::Op::OpSourceExtension:
            return true;
        case spv::Op::OpExtension:
            return one.text(0).rfind("SPV_GOOGLE_", 0) == 0;
        default:
            return false;
        }
    });
}

} // namespace helvantine
