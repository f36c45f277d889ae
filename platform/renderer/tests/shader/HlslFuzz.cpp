// SPDX-License-Identifier: MIT
// A shader's text, up to where the compiler would get it. What it includes is the text behind its first zero.
#include "shader/HlslScanner.h"
#include "shader/ShaderSource.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

using namespace helvantine;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::string text(bytes.substr(0, bytes.find('\0')));
    const std::string included(bytes.substr(std::min(text.size() + 1, bytes.size())));

    const HlslTokens tokens = scanHlsl(text);
    std::size_t length = 0;
    for (const HlslToken& token : tokens)
        length += token.text.size();
    if (length > text.size())
        std::abort(); // tokens don't overlap
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (endOfDirective(tokens, i) > tokens.size())
            std::abort();
    }

    const ShaderIncluder includer = [&](const std::string&, std::string& out) {
        out = included;
        return true;
    };
    ShaderSource source;
    std::string errors;
    if (loadShaderSource("fuzz", text, {{"COUNT", "4"}}, includer, source, errors))
        findPlacedBuffers(source);
    else if (errors.empty())
        std::abort(); // a refusal has words
    return 0;
}
