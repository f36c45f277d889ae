// SPDX-License-Identifier: MIT
#include "HlslRows.h"

#include <gtest/gtest.h>
#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <fstream>

namespace helvantine::test
{

namespace
{

std::string trim(const std::string& text)
{
    const size_t start = text.find_first_not_of(' ');
    return start == std::string::npos ? "" : text.substr(start, text.find_last_not_of(' ') + 1 - start);
}

std::vector<std::string> split(const std::string& text, const std::string& mark)
{
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t found; (found = text.find(mark, start)) != std::string::npos; start = found + mark.size())
        parts.push_back(trim(text.substr(start, found - start)));
    parts.push_back(trim(text.substr(start)));
    return parts;
}

/// "a=1.5 b=float2(1, 2)", where blanks in parentheses don't separate.
bool readArguments(const std::string& text, HlslRow& row)
{
    std::vector<std::string> parts(1);
    int depth = 0;
    for (const char letter : text) {
        depth += letter == '(' ? 1 : letter == ')' ? -1 : 0;
        if (letter == ' ' && depth == 0)
            parts.emplace_back();
        else
            parts.back() += letter;
    }
    for (const std::string& part : parts) {
        const size_t equals = part.find('=');
        HlslValue value;
        if (part.empty())
            continue;
        if (equals == std::string::npos || !readHlslValue(part.substr(equals + 1), value))
            return false;
        row.arguments.emplace_back(part.substr(0, equals), value);
    }
    return true;
}

bool readResults(const std::string& text, HlslRow& row)
{
    if (text == "refused")
        return true;
    for (const std::string& part : split(text, " or ")) {
        if (!readHlslValue(part, row.results.emplace_back()))
            return false;
    }
    return true;
}

bool readTolerance(const std::string& text, HlslTolerance& tolerance)
{
    const std::pair<const char*, HlslTolerance::Kind> kinds[] = {
        {"abs ", HlslTolerance::Kind::Absolute},
        {"rel ", HlslTolerance::Kind::Relative},
        {"ulp ", HlslTolerance::Kind::Ulp},
    };
    for (const auto& [name, kind] : kinds) {
        if (!text.starts_with(name))
            continue;
        const std::string number = text.substr(4);
        tolerance.kind = kind;
        tolerance.amount = number.starts_with("2^") ? std::exp2(std::strtod(number.c_str() + 2, nullptr))
                                                    : std::strtod(number.c_str(), nullptr);
        return true;
    }
    return false;
}

/// Reads one file line by line.
class RowReader
{
public:
    RowReader(const std::string& path, std::vector<HlslRow>& rows)
        : m_file(path), m_name(getFilename(path.c_str())), m_rows(rows)
    {
        EXPECT_TRUE(m_file.is_open()) << path;
    }

    void read()
    {
        for (std::string line; std::getline(m_file, line);) {
            ++m_line;
            if (m_inDeclarations && trim(line) != "@rows")
                m_declared += line + "\n";
            else if (!trim(line).empty() && line[0] != '#')
                readLine(trim(line));
        }
    }

private:
    void readLine(const std::string& line)
    {
        if (line.starts_with("@source "))
            m_source = line.substr(8);
        else if (line == "@begin")
            m_inDeclarations = true;
        else if (line == "@rows")
            m_declarations = std::make_shared<const std::string>(m_declared);
        else if (line == "@end")
            m_declarations = nullptr;
        else
            readRow(line);
        if (line == "@rows")
            m_inDeclarations = false;
        if (!m_inDeclarations)
            m_declared.clear();
    }

    void readRow(const std::string& line)
    {
        const std::vector<std::string> parts = split(line, "::");
        HlslRow row;
        row.place = m_name + ":" + std::to_string(m_line);
        row.source = m_source;
        row.expression = parts[0];
        row.declarations = m_declarations;
        const bool readable = (parts.size() == 3 || parts.size() == 4) && !m_source.empty() &&
                              readArguments(parts[1], row) && readResults(parts[2], row) &&
                              (parts.size() == 3 || readTolerance(parts[3], row.tolerance));
        if (readable)
            m_rows.push_back(row);
        else
            ADD_FAILURE() << row.place << ": can't be read: " << line;
    }

    std::ifstream m_file;
    std::string m_name;
    std::vector<HlslRow>& m_rows;
    std::string m_source;
    std::string m_declared;
    std::shared_ptr<const std::string> m_declarations;
    bool m_inDeclarations = false;
    int m_line = 0;
};

/// Numbers of one sign in the order of their values.
int64_t orderOf(uint32_t bits)
{
    const int64_t magnitude = bits & 0x7FFFFFFF;
    return bits >> 31 ? -magnitude : magnitude;
}

} // namespace

std::string HlslRow::describe() const
{
    std::string text = place + ": " + expression;
    for (const auto& [name, value] : arguments)
        text += (&name == &arguments.front().first ? " with " : ", ") + name + " = " + value.show();
    return text;
}

std::vector<HlslRow> readHlslRows(const std::string& path)
{
    std::vector<HlslRow> rows;
    if (path.ends_with(".rows")) {
        RowReader(path, rows).read();
        return rows;
    }
    for (const FileInfo& file : findFiles(path.c_str(), "*.rows", false))
        RowReader(file.path, rows).read();
    return rows;
}

bool isNear(const std::string& scalar, uint32_t actual, uint32_t expected, const HlslTolerance& tolerance)
{
    if (actual == expected)
        return true;
    if (scalar != "float")
        return false;
    const double a = double(std::bit_cast<float>(actual));
    const double e = double(std::bit_cast<float>(expected));
    if (std::isnan(a) || std::isnan(e))
        return std::isnan(a) && std::isnan(e);
    switch (tolerance.kind) {
    case HlslTolerance::Kind::Absolute:
        return std::abs(a - e) <= tolerance.amount;
    case HlslTolerance::Kind::Relative:
        return std::abs(a - e) <= tolerance.amount * std::abs(e);
    case HlslTolerance::Kind::Ulp:
        return std::abs(double(orderOf(actual) - orderOf(expected))) <= tolerance.amount;
    default:
        return false;
    }
}

} // namespace helvantine::test
