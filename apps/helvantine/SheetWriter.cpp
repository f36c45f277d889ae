// SPDX-License-Identifier: MIT
#include "FrameWriter.h"

#include <algorithm>

namespace helvantine::tool
{

namespace
{

class SheetWriter : public FrameWriter
{
public:
    SheetWriter(const std::string& path, FrameSize frame, int columns, int count)
        : m_path(path), m_frame(frame), m_columns(static_cast<unsigned>(std::min(columns, count)))
    {
        const unsigned rows = (static_cast<unsigned>(count) + m_columns - 1) / m_columns;
        m_sheet = {m_columns * frame.width, rows * frame.height};
        m_pixels.resize(size_t{4} * m_sheet.width * m_sheet.height);
    }

    std::string write(int, std::vector<uint8_t>& pixels) override
    {
        const size_t left = m_written % m_columns * m_frame.width;
        const size_t top = m_written / m_columns * m_frame.height;
        for (size_t y = 0; y < m_frame.height; ++y)
            std::copy_n(&pixels[4 * y * m_frame.width], size_t{4} * m_frame.width,
                        &m_pixels[4 * ((top + y) * m_sheet.width + left)]);
        ++m_written;
        return {};
    }

    std::string finish() override { return writePng(m_path, m_sheet, m_pixels); }

private:
    std::string m_path;
    FrameSize m_frame;
    FrameSize m_sheet;
    unsigned m_columns;
    unsigned m_written = 0;
    std::vector<uint8_t> m_pixels;
};

} // namespace

std::unique_ptr<FrameWriter> createSheetWriter(const std::string& path, FrameSize size, int columns,
                                               int count)
{
    return std::make_unique<SheetWriter>(path, size, columns, count);
}

} // namespace helvantine::tool
