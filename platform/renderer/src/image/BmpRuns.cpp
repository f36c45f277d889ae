// SPDX-License-Identifier: MIT
#include "image/BmpRuns.h"

#include <algorithm>
#include <cstring>

namespace helvantine
{

BmpRuns::BmpRuns(ImageSource& source, uint64_t offset, unsigned width, unsigned height, unsigned bits)
    : m_source(source), m_offset(offset), m_width(width), m_height(height), m_bits(bits), m_rows(height)
{
}

BmpRuns::Code BmpRuns::readCode(SourceReader& reader)
{
    const unsigned first = reader.next();
    const unsigned second = reader.next();
    if (first > 0)
        return {Code::Run, first, second};
    if (second == 0)
        return {Code::EndOfRow};
    if (second == 1)
        return {Code::EndOfPicture};
    if (second > 2)
        return {Code::Literal, second};
    const unsigned right = reader.next();
    return {Code::Move, right, reader.next()};
}

unsigned BmpRuns::countLiteralBytes(unsigned pixels) const
{
    return (pixels * m_bits + 15) / 16 * 2;
}

unsigned BmpRuns::getIndex(unsigned byte, unsigned pixel) const
{
    if (m_bits == 8)
        return byte;
    return pixel % 2 == 0 ? byte >> 4 : byte & 15;
}

bool BmpRuns::findRows()
{
    SourceReader reader(m_source, m_offset);
    unsigned x = 0;
    unsigned y = 0;
    m_rows[0] = {m_offset, 0};
    for (;;) {
        const Code code = readCode(reader);
        if (code.kind == Code::Literal)
            reader.skip(countLiteralBytes(code.count));
        if (reader.hasEnded())
            return false;
        if (code.kind == Code::EndOfPicture)
            return true;
        const bool ends = code.kind == Code::EndOfRow;
        const unsigned up = code.kind == Code::Move ? code.value : ends ? 1 : 0;
        x = ends ? 0 : std::min(x + code.count, m_width);
        y = std::min(y + up, m_height);
        if (up > 0 && y < m_height)
            m_rows[y] = {reader.getOffset(), x};
    }
}

void BmpRuns::decodeRow(unsigned row, const BmpPalette& palette, uint8_t* rgba)
{
    std::memset(rgba, 0, size_t(m_width) * 4);
    if (m_rows[row].offset == 0)
        return;
    SourceReader reader(m_source, m_rows[row].offset);
    unsigned x = m_rows[row].x;
    for (;;) {
        const Code code = readCode(reader);
        const bool leaves = code.kind == Code::EndOfRow || code.kind == Code::EndOfPicture ||
                            (code.kind == Code::Move && code.value > 0);
        if (leaves || reader.hasEnded())
            return;
        const unsigned end = std::min(x + code.count, m_width);
        if (code.kind == Code::Move) {
            x = end;
            continue;
        }
        const uint64_t behind = reader.getOffset() + countLiteralBytes(code.count);
        unsigned byte = code.value;
        for (unsigned pixel = 0; x < end; ++x, ++pixel) {
            if (code.kind == Code::Literal && (m_bits == 8 || pixel % 2 == 0))
                byte = reader.next();
            std::memcpy(rgba + size_t(x) * 4, palette[getIndex(byte, pixel)].data(), 4);
        }
        if (code.kind == Code::Literal)
            reader.skip(behind - reader.getOffset());
    }
}

} // namespace helvantine
