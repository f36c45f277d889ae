// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgramCache.h"
#include "shader/SpirvModule.h"
#include "shader/helper/ShaderHelper.h"

#include <gtest/gtest.h>

#include <string>

namespace helvantine
{

inline const std::string plainVertex =
    "float4 VS(float4 position : POSITION) : SV_Position { return position; }\n";
inline const std::string plainPixel = "float4 PS() : SV_Target { return 1; }\n";

/// Compiles, but not in anyone's lifetime: each function calls the one before it twice.
inline std::string endlessText()
{
    std::string text = plainVertex + "float f0(float x) { return sin(x); }\n";
    for (int i = 1; i < 30; ++i) {
        const std::string before = "f" + std::to_string(i - 1);
        text += "float f" + std::to_string(i) + "(float x) { return " + before + "(x) + " + before +
                "(x + 1); }\n";
    }
    return text + "float4 PS(float4 p : SV_Position) : SV_Target { return f29(p.x); }\n";
}

/// A request for the entry points "VS" and "PS" of one text.
inline ShaderRequest requestOf(const std::string& text)
{
    ShaderRequest request;
    request.name = "test.hlsl";
    request.vertexSource = text;
    request.vertexEntry = "VS";
    request.pixelSource = text;
    request.pixelEntry = "PS";
    return request;
}

/// Compiles without files and in this process, shared by all tests of a process since the first compile costs most.
class ShaderTest : public ::testing::Test
{
protected:
    ShaderProgramPtr compile(const std::string& text)
    {
        std::string errors;
        ShaderProgramPtr program = cache().get(requestOf(text), errors);
        EXPECT_TRUE(program) << errors;
        return program ? program : std::make_shared<ShaderProgram>();
    }

    /// The words about a text that doesn't compile.
    std::string failure(const ShaderRequest& request)
    {
        std::string errors;
        EXPECT_FALSE(cache().get(request, errors));
        return errors;
    }
    std::string failure(const std::string& text) { return failure(requestOf(text)); }

    static ShaderProgramCache& cache()
    {
        static ShaderProgramCache cache("", ShaderHelperOptions{});
        return cache;
    }
};

/// A module that answers by the names of its variables.
class NamedModule : public SpirvModule
{
public:
    explicit NamedModule(const std::vector<uint32_t>& words) { EXPECT_TRUE(parse(words)); }

    uint32_t idOf(const std::string& wanted) const
    {
        for (const SpirvInstruction& one : instructions)
            if (one.op == spv::Op::OpName && one.text(1) == wanted)
                return one.operand(0);
        return 0;
    }

    /// -1 if there is no such variable or it has no location.
    int locationOf(const std::string& wanted) const
    {
        auto location = decoration(idOf(wanted), spv::Decoration::Location);
        return location ? int(*location) : -1;
    }

    spv::StorageClass storageOf(const std::string& wanted) const
    {
        const SpirvInstruction* variable = find(idOf(wanted));
        return variable ? spv::StorageClass(variable->operand(2)) : spv::StorageClass::Max;
    }

    size_t count(spv::Op op) const
    {
        size_t found = 0;
        for (const SpirvInstruction& one : instructions)
            found += one.op == op;
        return found;
    }
};

} // namespace helvantine
