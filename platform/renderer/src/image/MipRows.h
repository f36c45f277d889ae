// SPDX-License-Identifier: MIT
#pragma once

#include "image/ImageDecoder.h"

namespace helvantine
{

/// Makes the mips of a picture of four bytes a pixel while its rows pass through to the sink.
///
/// Every pixel is the average of the area that it covers in the level above, also where a side is odd; the bytes are
/// averaged as they are. Of each level the last three rows are kept, since more are never needed.
class MipRows final : public ImageSink
{
public:
    MipRows(ImageSink& sink, unsigned width, unsigned height);

    /// Of the first level; each row after the one above it.
    bool putRow(unsigned face, unsigned mip, unsigned y, const uint8_t* row) override;

private:
    static constexpr unsigned keptRows = 3;

    struct Level
    {
        unsigned width = 0;
        unsigned height = 0;
        unsigned rowsDone = 0;
        std::vector<uint8_t> rows; ///< the last of them, one beside the other

        uint8_t* getRow(unsigned y) { return rows.data() + size_t(y % keptRows) * width * 4; }
    };

    bool makeRows(unsigned mip);

    ImageSink& m_sink;
    std::vector<Level> m_levels;
};

} // namespace helvantine
