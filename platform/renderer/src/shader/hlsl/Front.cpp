// SPDX-License-Identifier: MIT
#include "shader/hlsl/Front.h"

#include "shader/hlsl/Parser.h"
#include "shader/hlsl/Writer.h"

namespace helvantine::hlsl
{

namespace
{

std::string locate(const Program& program, const Message& message)
{
    return program.files[message.at.file] + ":" + std::to_string(message.at.line) +
           ": error: " + message.text + "\n";
}

void checkInterface(Program& program, const Function& entry)
{
    const auto check = [&](Position at, const Type* type) {
        if (holdsRowsMatrix(*type))
            program.errors.push_back({at, "'" + entry.name + "': '" + type->name() +
                                              "' can't be handed between stages; use vectors"});
    };
    check(entry.at, entry.result);
    for (const Parameter& parameter : entry.parameters)
        check(parameter.symbol->at, parameter.symbol->type);
}

/// What would be a constant without a buffer that the host could fill.
void refuseLooseConstants(Program& program, const Reach& reach, const Function& entry)
{
    const auto refuse = [&program](const Symbol& symbol) {
        program.errors.push_back({symbol.at, "'" + symbol.name +
                                                 "' is a global variable or uniform parameter outside a "
                                                 "cbuffer; put it into one"});
    };
    for (size_t index : reach.globals) {
        const Global& global = program.globals[index];
        if (global.kind == Global::Kind::Variable && global.head.empty())
            refuse(*global.symbol);
    }
    for (const Parameter& parameter : entry.parameters)
        if (parameter.modifiers.find("uniform") != std::string::npos)
            refuse(*parameter.symbol);
}

/// What only shows in what the entry point uses.
void checkReach(Program& program, const Reach& reach, ShaderStage stage)
{
    if (reach.recursion)
        program.errors.push_back({reach.recursion->at, "'" + reach.recursion->name + "' calls itself"});
    if (reach.pixelOnly && stage == ShaderStage::Vertex)
        program.errors.push_back(
            {reach.pixelOnly->at,
             "a vertex program has no derivatives, and can't discard; use SampleLevel or "
             "SampleGrad to read a texture"});
}

} // namespace

Result normalise(std::string_view text, const std::string& name, const std::string& entry, ShaderStage stage)
{
    Result result;
    Program program;
    const Tokens tokens = scan(text, name);
    Parser parser(tokens, program);
    parser.parse();
    const std::vector<Function*>* functions = parser.findFunctions(entry);
    const Function* chosen = nullptr;
    if (functions)
        for (const Function* function : *functions)
            chosen = function->body ? function : chosen;
    result.hasEntry = chosen != nullptr;
    Reach reach;
    if (chosen && program.errors.empty()) {
        reach = findReach(program, *chosen);
        checkReach(program, reach, stage);
        checkInterface(program, *chosen);
        refuseLooseConstants(program, reach, *chosen);
        for (const Function* function : reach.functions)
            if (!function->body)
                program.errors.push_back(
                    {function->at, "'" + function->name + "' is declared and never defined"});
    }
    if (chosen && program.errors.empty() && !write(program, reach, maxNormalisedSize, result.text))
        program.errors.push_back({chosen->at, "the text becomes longer than " +
                                                  std::to_string(maxNormalisedSize) +
                                                  " bytes once all is written out"});
    for (const Message& error : program.errors)
        result.errors += locate(program, error);
    for (const Message& warning : program.warnings)
        result.warnings.push_back(
            {warning.at.file == 0 ? "" : program.files[warning.at.file], warning.at.line, warning.text});
    if (!result.errors.empty())
        result.text.clear();
    return result;
}

} // namespace helvantine::hlsl
