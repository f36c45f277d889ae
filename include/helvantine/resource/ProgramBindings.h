// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>

namespace helvantine
{

/// What a program of the project finds when an effect draws with it. The class that binds it states it, once, and
/// tools and documentation read it there. What isn't listed reads as zero.
struct ProgramBindings
{
    enum Stages : std::uint8_t
    {
        Vertex = 1,
        Pixel = 2,
        Both = 3,
    };

    struct Register
    {
        char letter; ///< b, t or s
        std::uint8_t number;
        std::uint8_t stages; ///< Stages; t and s are bound for both
        const char* holds;   ///< in a few words of HLSL's and of the properties' names
    };

    struct Input
    {
        const char* semantic; ///< of the vertex program, upper case, without its index
        unsigned index;
        const char* holds;
    };

    std::span<const Register> registers;
    std::span<const Input> inputs;
};

} // namespace helvantine
