// SPDX-License-Identifier: MIT
#include "HlslProgram.h"

#include <helvantine/core/Text.h>

namespace helvantine::test
{

namespace
{

constexpr const char* entryPoints = R"(
struct Pixel { float4 position : SV_Position; nointerpolation uint4 result : RESULT; };
#ifdef IN_VERTEX_STAGE
Pixel VS(uint index : SV_VertexID)
{
    Pixel p;
    float2 place = float2(index % WIDTH, index / WIDTH) + 0.5;
    p.position = float4(place.x / WIDTH * 2.0 - 1.0, 1.0 - place.y / HEIGHT * 2.0, 0.5, 1.0);
    p.result = evaluate(index);
    return p;
}
float4 PS(Pixel p) : SV_Target { return asfloat(p.result); }
#else
Pixel VS(uint index : SV_VertexID)
{
    Pixel p;
    p.position = float4(index & 1 ? 3.0 : -1.0, index & 2 ? -3.0 : 1.0, 0.5, 1.0);
    p.result = uint4(0, 0, 0, 0);
    return p;
}
float4 PS(Pixel p) : SV_Target
{
    return asfloat(evaluate(uint(p.position.x) + WIDTH * uint(p.position.y)));
}
#endif
)";

/// Writes the text of one program.
class ProgramWriter
{
public:
    ProgramWriter(std::span<const HlslRow> rows, const HlslMode& mode) : m_rows(rows), m_mode(mode) {}

    HlslProgram write()
    {
        std::string functions;
        std::string cases;
        for (const HlslRow& row : m_rows) {
            functions += writeFunction(row);
            cases += writeCases(row);
            ++m_index;
        }
        const unsigned height = (m_program.pixelCount + hlslProgramWidth - 1) / hlslProgramWidth;
        const std::string size = std::to_string(m_program.constants.size() / 4 + 1);
        const HlslRow* first = m_rows.empty() ? nullptr : &m_rows.front();
        m_program.text =
            formatString("#define WIDTH %u\n#define HEIGHT %u\n", hlslProgramWidth, height) +
            (m_mode.inVertexStage ? "#define IN_VERTEX_STAGE\n" : "") +
            "cbuffer Values : register(b0) { uint4 values[" + size + "]; };\n" +
            (first && first->declarations ? *first->declarations : "") + functions +
            "uint4 evaluate(uint index)\n{\n    uint4 result = uint4(0, 0, 0, 0);\n    switch (index) {\n" +
            cases + "    default: break;\n    }\n    return result;\n}\n" + entryPoints;
        m_program.constants.resize(m_program.constants.size() + 4);
        return m_program;
    }

private:
    std::string writeFunction(const HlslRow& row)
    {
        const std::string type = row.results.empty() ? "float4" : row.results.front().type();
        std::string text = formatString("%s row%u()\n{\n", type.c_str(), m_index);
        for (const auto& [name, value] : row.arguments)
            text += (m_mode.asConstants ? "    const " : "    ") + value.type() + " " + name + " = " +
                    (m_mode.asConstants ? value.literal() : load(value)) + ";\n";
        const bool isBody = row.expression.find("return") != std::string::npos;
        return text + "    " + (isBody ? row.expression : "return " + row.expression + ";") + "\n}\n";
    }

    /// Out of the constant buffer, a register for each row.
    std::string load(const HlslValue& value)
    {
        std::string components;
        for (size_t i = 0; i < value.bits.size(); ++i) {
            const size_t column = i % value.columns;
            if (column == 0)
                m_program.constants.resize((m_program.constants.size() + 3) / 4 * 4);
            const std::string place =
                formatString("values[%zu].%c", m_program.constants.size() / 4, "xyzw"[column]);
            components += (i ? ", " : "") + (value.scalar == "float"  ? "asfloat(" + place + ")"
                                             : value.scalar == "int"  ? "asint(" + place + ")"
                                             : value.scalar == "bool" ? "(" + place + " != 0u)"
                                                                      : place);
            m_program.constants.push_back(value.bits[i]);
        }
        m_program.constants.resize((m_program.constants.size() + 3) / 4 * 4);
        return value.bits.size() == 1 && !value.isMatrix ? components : value.type() + "(" + components + ")";
    }

    std::string writeCases(const HlslRow& row)
    {
        if (row.results.empty())
            return formatString("    case %u: result = asuint(row%u()); break;\n", m_program.pixelCount++,
                                m_index);
        const HlslValue& result = row.results.front();
        std::string text;
        for (unsigned line = 0; line < result.rows; ++line) {
            text += formatString("    case %u: { %s r = row%u(); result = uint4(", m_program.pixelCount++,
                                 result.type().c_str(), m_index);
            for (unsigned column = 0; column < 4; ++column)
                text += (column ? ", " : "") + writeComponent(result, line, column);
            text += "); break; }\n";
        }
        return text;
    }

    static std::string writeComponent(const HlslValue& result, unsigned line, unsigned column)
    {
        if (column >= result.columns)
            return "0u";
        const std::string value = result.isMatrix       ? formatString("r[%u][%u]", line, column)
                                  : result.columns == 1 ? std::string("r")
                                                        : formatString("r.%c", "xyzw"[column]);
        return result.scalar == "bool" ? "(" + value + " ? 1u : 0u)" : "asuint(" + value + ")";
    }

    std::span<const HlslRow> m_rows;
    const HlslMode& m_mode;
    HlslProgram m_program;
    unsigned m_index = 0;
};

} // namespace

HlslProgram makeHlslProgram(std::span<const HlslRow> rows, const HlslMode& mode)
{
    return ProgramWriter(rows, mode).write();
}

unsigned countPixels(const HlslRow& row)
{
    return row.results.empty() ? 1 : row.results.front().rows;
}

} // namespace helvantine::test
