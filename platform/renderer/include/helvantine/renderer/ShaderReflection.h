// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/renderer/Api.h>
#include <helvantine/renderer/Shader.h>

#include <string>
#include <vector>

namespace helvantine
{

/// What a program takes from outside: the resources and vertex attributes that its entry points use, in no particular
/// order. What is declared and not used isn't there.
struct HELVANTINE_RENDERER_API ShaderReflection
{
    enum class Kind
    {
        ConstantBuffer,   ///< b registers, which the stages have apart
        Texture,          ///< t registers
        Sampler,          ///< s registers
        StructuredBuffer, ///< t registers; nothing can be bound to it, it reads 0
        VertexInput       ///< an attribute, by its semantic
    };

    /// One declaration. Two on one register are two entries: what is bound there is read by both.
    struct HELVANTINE_RENDERER_API Entry
    {
        Kind kind = Kind::ConstantBuffer;
        unsigned number = 0;        ///< of the register, or the semantic's index
        bool inVertexStage = false; ///< true for both only where one text, in one line, declares it for both
        bool inPixelStage = false;
        std::string
            name; ///< as the text has it; of an attribute the semantic in upper case, without its index
        unsigned line = 1; ///< in the text of its stage; 1 if it is declared in an included text

        std::string getPlace() const; ///< "b3", "t5", "s0", "TEXCOORD1"
    };

    std::vector<Entry> entries;
};

/// Compiles the texts as checkShader does and tells what the program takes. False, with words in errorText, if they don't
/// compile. Needs no renderer.
HELVANTINE_RENDERER_API bool reflectShader(ShaderFromMemoryParams& params, ShaderReflection& reflection);

} // namespace helvantine
