// SPDX-License-Identifier: MIT
#pragma once

#include "image/ImageSource.h"

namespace helvantine
{

/// Bytes of a source one after the other, for codes of unknown length. Nobody else may view the source meanwhile.
class SourceReader
{
public:
    SourceReader(ImageSource& source, uint64_t offset) : m_source(source), m_next(offset) {}

    /// 0 behind the end.
    uint8_t next()
    {
        if (m_position == m_bytes.size()) {
            m_bytes = m_source.view(m_next, blockBytes);
            m_next += m_bytes.size();
            m_position = 0;
            m_ended = m_bytes.empty();
        }
        return m_ended ? uint8_t(0) : m_bytes[m_position++];
    }

    void skip(uint64_t count)
    {
        if (count <= m_bytes.size() - m_position) {
            m_position += static_cast<size_t>(count);
            return;
        }
        m_next = getOffset() + count;
        m_bytes = {};
        m_position = 0;
        m_ended = m_ended || m_next > m_source.getSize();
    }

    uint64_t getOffset() const { return m_next - (m_bytes.size() - m_position); }
    bool hasEnded() const { return m_ended; } ///< a byte was wanted that isn't there

private:
    static constexpr size_t blockBytes = 4096;

    ImageSource& m_source;
    std::span<const uint8_t> m_bytes;
    size_t m_position = 0;
    uint64_t m_next; ///< offset behind m_bytes
    bool m_ended = false;
};

} // namespace helvantine
