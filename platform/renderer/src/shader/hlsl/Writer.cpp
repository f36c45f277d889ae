// SPDX-License-Identifier: MIT
#include "shader/hlsl/Writer.h"

#include "shader/hlsl/Folding.h"
#include "shader/hlsl/Names.h"

#include <algorithm>

namespace helvantine::hlsl
{

namespace
{

constexpr uint32_t farLine = 8; ///< lines that are skipped by a mark, not by empty ones

class Writer
{
public:
    Writer(const Program& program, const Reach& reach, size_t limit, std::string& text)
        : m_program(program), m_reach(reach), m_limit(limit), m_text(text)
    {
    }

    bool write()
    {
        for (const Type* type : m_reach.rowsMatrices)
            writeRowsMatrix(*type);
        for (const Structure* structure : m_reach.structures)
            writeStructure(*structure);
        startLine();
        for (const Helper* helper : m_reach.helpers)
            m_text += helper->text;
        m_isPlaced = false;
        for (size_t index : m_reach.globals)
            write(m_program.globals[index]);
        for (const Function* function : m_reach.functions)
            write(*function);
        m_text += "\n";
        return m_text.size() <= m_limit;
    }

private:
    void startLine()
    {
        if (!m_text.empty() && m_text.back() != '\n')
            m_text += "\n";
        m_isPlaced = false;
    }

    /// What follows counts as standing on that line of the author's.
    void moveTo(Position at)
    {
        const bool isAhead = m_isPlaced && at.file == m_at.file && at.line >= m_at.line;
        if (isAhead && at.line - m_at.line <= farLine) {
            m_text.append(at.line - m_at.line, '\n');
        } else {
            startLine();
            m_text += "#line " + std::to_string(at.line) + " \"" + m_program.files[at.file] + "\"\n";
        }
        m_at = at;
        m_isPlaced = true;
    }

    bool isTooLong() const { return m_text.size() > m_limit; }

    void writeRowsMatrix(const Type& type)
    {
        static constexpr const char* bases[] = {"bool", "int", "uint", "float"};
        const std::string row =
            bases[size_t(type.base)] + (type.columns > 1 ? std::to_string(type.columns) : "");
        m_text += "struct " + type.spelling() + " { " + row + " r[" + std::to_string(type.rows) + "]; };\n";
    }

    static const char* order(const Type* type, bool packsRows)
    {
        while (type->isArray())
            type = type->element;
        return packsRows && type->isMatrix() ? "row_major " : "";
    }

    void writeStructure(const Structure& structure)
    {
        moveTo(structure.at);
        m_text += "struct " + structure.spelling + " {";
        for (const Field& field : structure.fields) {
            moveTo(field.at);
            m_text += order(field.type, field.packsRows) + field.modifiers + field.type->spelling() + " " +
                      spell(field.name) + field.type->dimensions() + field.semantic + "; ";
        }
        m_text += "};";
    }

    void write(const Global& global)
    {
        moveTo(global.at);
        if (global.kind == Global::Kind::Buffer) {
            m_text += global.head + " {";
            for (const Global::Member& member : global.members) {
                const Symbol& symbol = *member.symbol;
                moveTo(symbol.at);
                m_text += order(symbol.type, member.packsRows) + symbol.type->spelling() + " " +
                          symbol.spelling + symbol.type->dimensions() + member.place + "; ";
            }
            m_text += "};";
            return;
        }
        const Symbol& symbol = *global.symbol;
        if (global.kind == Global::Kind::Resource && symbol.type->isArray())
            return writeResources(symbol, global.tail);
        m_text += global.head + symbol.type->spelling() + " " + symbol.spelling + symbol.type->dimensions() +
                  global.tail;
        if (symbol.initializer) {
            m_text += " = ";
            write(symbol.initializer);
        }
        m_text += ";";
    }

    /// Arrays of textures and samplers are as many single ones, on registers that follow each other.
    void writeResources(const Symbol& symbol, const std::string& tail)
    {
        size_t digits = tail.find("register(");
        digits = digits == tail.npos ? tail.npos : tail.find_first_of("0123456789", digits);
        for (uint32_t i = 0; i < countElements(*symbol.type) && !isTooLong(); ++i) {
            std::string place = tail;
            if (digits != tail.npos) {
                const size_t end = std::min(tail.find_first_not_of("0123456789", digits), tail.size());
                const unsigned long first =
                    std::stoul(tail.substr(digits, std::min<size_t>(end - digits, 6)));
                place = tail.substr(0, digits) + std::to_string(first + i) + tail.substr(end);
            }
            m_text += symbol.type->spelling() + " " + spellElement(symbol.name, i) + place + "; ";
        }
    }

    static uint32_t countElements(const Type& type)
    {
        return type.isArray() ? type.count * countElements(*type.element) : 1;
    }

    void write(const Function& function)
    {
        moveTo(function.at);
        m_text += function.modifiers + function.result->spelling() + " " + function.spelling + "(";
        for (size_t i = 0; i < function.parameters.size(); ++i) {
            const Parameter& parameter = function.parameters[i];
            const Type* type = parameter.symbol->type;
            m_text += i ? ", " : "";
            m_text += !parameter.isOut ? "" : parameter.isIn ? "inout " : "out ";
            m_text += parameter.modifiers + type->spelling() + " " + parameter.symbol->spelling +
                      type->dimensions() + parameter.semantic;
        }
        m_text += ")" + function.semantic + " ";
        write(*function.body);
    }

    void writeAll(const std::vector<Statement*>& statements)
    {
        for (const Statement* statement : statements)
            if (!isTooLong())
                write(*statement);
    }

    void writeIf(const char* before, const Expression* expression, const char* after)
    {
        m_text += before;
        if (expression)
            write(expression);
        m_text += after;
    }

    /// What stands under an if or a loop; braces keep what belongs together so.
    void writeUnder(const Statement& statement)
    {
        if (statement.kind == Statement::Kind::Block)
            return write(statement);
        m_text += "{ ";
        write(statement);
        m_text += "} ";
    }

    void write(const Statement& statement)
    {
        moveTo(statement.at);
        m_text += statement.attribute;
        using Kind = Statement::Kind;
        switch (statement.kind) {
        case Kind::Empty:
            m_text += "; ";
            break;
        case Kind::Block:
            m_text += "{ ";
            writeAll(statement.body);
            m_text += "} ";
            break;
        case Kind::Declaration:
            writeVariables(statement);
            break;
        case Kind::Expression:
            writeIf("", statement.expression, "; ");
            break;
        case Kind::If:
            writeIf("if (", statement.expression, ") ");
            writeUnder(*statement.body[0]);
            if (statement.body.size() > 1) {
                m_text += "else ";
                writeUnder(*statement.body[1]);
            }
            break;
        case Kind::For:
            writeFor(statement);
            break;
        case Kind::While:
            writeIf("while (", statement.expression, ") ");
            writeUnder(*statement.body[0]);
            break;
        case Kind::Do:
            m_text += "do ";
            writeUnder(*statement.body[0]);
            writeIf("while (", statement.expression, "); ");
            break;
        case Kind::Switch:
            writeIf("switch (", statement.expression, ") ");
            write(*statement.body[0]);
            break;
        case Kind::Case:
            if (statement.expression)
                writeIf("case ", statement.expression, ": ");
            else
                m_text += "default: ";
            break;
        case Kind::Break:
            m_text += "break; ";
            break;
        case Kind::Continue:
            m_text += "continue; ";
            break;
        case Kind::Return:
            writeIf(statement.expression ? "return " : "return", statement.expression, "; ");
            break;
        case Kind::Discard:
            m_text += "discard; ";
            break;
        }
    }

    void writeFor(const Statement& statement)
    {
        // The first statement stands before the loop: it may be several declarations.
        m_text.resize(m_text.size() - statement.attribute.size());
        m_text += "{ ";
        if (statement.first)
            write(*statement.first);
        m_text += statement.attribute;
        writeIf("for (; ", statement.expression, "; ");
        writeIf("", statement.step, ") ");
        writeUnder(*statement.body[0]);
        m_text += "} ";
    }

    void writeVariables(const Statement& statement)
    {
        for (const Variable& variable : statement.variables) {
            const Symbol& symbol = *variable.symbol;
            moveTo(symbol.at);
            m_text += variable.modifiers + symbol.type->spelling() + " " + symbol.spelling +
                      symbol.type->dimensions();
            if (variable.initializer) {
                m_text += " = ";
                write(variable.initializer);
            }
            m_text += "; ";
        }
    }

    void writeConstant(const Expression& expression)
    {
        const Type& type = *expression.type;
        const uint32_t count = type.components();
        if (count > 1 || type.isMatrix())
            m_text += (expression.helper ? expression.helper->name : type.spelling()) + "(";
        for (uint32_t i = 0; i < count; ++i)
            m_text += (i ? ", " : "") + spellComponent((*expression.value)[i], type.base);
        if (count > 1 || type.isMatrix())
            m_text += ")";
    }

    void writePattern(const Expression& expression)
    {
        const std::string& pattern = expression.text;
        for (size_t i = 0; i < pattern.size(); ++i)
            if (pattern[i] == '$')
                write(expression.operands[size_t(pattern[++i] - '0')]);
            else
                m_text += pattern[i];
    }

    void writeArguments(const std::vector<Expression*>& operands)
    {
        m_text += "(";
        for (size_t i = 0; i < operands.size(); ++i) {
            m_text += i ? ", " : "";
            write(operands[i]);
        }
        m_text += ")";
    }

    void writeMatrixElement(const Expression& expression)
    {
        const Type& matrix = *expression.operands[0]->type;
        write(expression.operands[0]);
        m_text += matrix.isRowsMatrix() ? ".r[" : "[";
        m_text += std::to_string(expression.components[0] / 4) + "]";
        if (matrix.columns > 1)
            m_text += "[" + std::to_string(expression.components[0] % 4) + "]";
    }

    void writeIndex(const Expression& expression)
    {
        const Expression& object = *expression.operands[0];
        const Expression& place = *expression.operands[1];
        if (object.type->isArray() && object.type->isResource() && object.symbol && place.value) {
            m_text += spellElement(object.symbol->name, (*place.value)[0]);
            return;
        }
        write(&object);
        m_text += object.type->isRowsMatrix() ? ".r[" : "[";
        write(&place);
        m_text += "]";
    }

    void write(const Expression* expression)
    {
        if (isTooLong())
            return;
        using Kind = Expression::Kind;
        switch (expression->kind) {
        case Kind::Constant:
            return writeConstant(*expression);
        case Kind::Variable:
            m_text += expression->symbol->spelling;
            return;
        case Kind::Spelled:
            return writePattern(*expression);
        case Kind::Call:
            m_text += expression->function->spelling;
            return writeArguments(expression->operands);
        case Kind::Member:
            write(expression->operands[0]);
            m_text += "." + spell(expression->text);
            return;
        case Kind::Swizzle:
            write(expression->operands[0]);
            m_text += ".";
            for (uint32_t i = 0; i < expression->count; ++i)
                m_text += "xyzw"[expression->components[i]];
            return;
        case Kind::MatrixSwizzle:
            if (expression->count == 1)
                return writeMatrixElement(*expression);
            m_text += expression->helper->name;
            return writeArguments(expression->operands);
        case Kind::Index:
            return writeIndex(*expression);
        case Kind::Assign:
            m_text += "(";
            write(expression->operands[0]);
            m_text += " = ";
            write(expression->operands[1]);
            m_text += ")";
            return;
        case Kind::List:
            m_text += "{ ";
            for (size_t i = 0; i < expression->operands.size(); ++i) {
                m_text += i ? ", " : "";
                write(expression->operands[i]);
            }
            m_text += " }";
            return;
        case Kind::Error:
            return;
        }
    }

    const Program& m_program;
    const Reach& m_reach;
    const size_t m_limit;
    std::string& m_text;
    Position m_at;
    bool m_isPlaced = false;
};

} // namespace

bool write(const Program& program, const Reach& reach, size_t limit, std::string& text)
{
    return Writer(program, reach, limit, text).write();
}

} // namespace helvantine::hlsl
