// SPDX-License-Identifier: MIT
#pragma once

#include "FramePattern.h"
#include "FrameRange.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace helvantine::tool
{

/// Where rendered frames go. Errors are sentences for the user, empty for success.
class FrameWriter
{
public:
    virtual ~FrameWriter() = default;

    /// pixels: rows from the top, four bytes each in the order blue, green, red, alpha.
    virtual std::string write(int frame, const std::vector<uint8_t>& pixels) = 0;
    /// Completes what was begun. Without it nothing half done is left under the final name.
    virtual std::string finish() { return {}; }
};

/// True for the file types that the video writer makes.
bool isVideo(const std::string& path);

/// PNG files by pattern.
std::unique_ptr<FrameWriter> createPngWriter(const FramePattern& pattern, FrameSize size);

/// One PNG file with the frames side by side, `columns` to a row, in the order in which they come. `count` is their
/// number, at least 1.
std::unique_ptr<FrameWriter> createSheetWriter(const std::string& path, FrameSize size, int columns,
                                               int count);

/// A video file, made by the ffmpeg program. Null, with the reason in `error`, if that isn't installed or
/// doesn't start.
std::unique_ptr<FrameWriter> createVideoWriter(const std::string& path, FrameSize size, int frameRate,
                                               std::string& error);

/// Writes pixels as `FrameWriter::write` takes them, without their alpha. The folder is made.
std::string writePng(const std::string& path, FrameSize size, const std::vector<uint8_t>& pixels);

} // namespace helvantine::tool
