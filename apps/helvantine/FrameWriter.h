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

    /// pixels: rows from the top, four bytes each in the order blue, green, red, alpha. May take them, so that no copy
    /// is needed, and leave other bytes in their place. An error may be that of the frame before.
    virtual std::string write(int frame, std::vector<uint8_t>& pixels) = 0;
    /// Completes what was begun. Without it nothing half done is left under the final name.
    virtual std::string finish() { return {}; }
    /// Ends early. Returns where the frames are that were written so far, as "12 of 90 frames are in …", and nothing
    /// where the files tell it by themselves.
    virtual std::string abandon() { return {}; }
};

/// True for the file types that the video writer makes.
bool isVideo(const std::string& path);
/// Their names, for a message: ".mp4, .mkv, …".
std::string listVideoTypes();

/// PNG files by pattern.
std::unique_ptr<FrameWriter> createPngWriter(const FramePattern& pattern, FrameSize size);

/// One PNG file with the frames side by side, `columns` to a row, in the order in which they come. `count` is their
/// number, at least 1.
std::unique_ptr<FrameWriter> createSheetWriter(const std::string& path, FrameSize size, int columns,
                                               int count);

/// A video file of `total` frames, made by the ffmpeg program. Null, with the reason in `error`, if that isn't installed or
/// doesn't start.
std::unique_ptr<FrameWriter> createVideoWriter(const std::string& path, FrameSize size, int frameRate,
                                               int total, std::string& error);
/// Whether videos of that type are rounded up to even sides.
bool needsEvenSides(const std::string& extension);

/// Writes pixels as `FrameWriter::write` takes them, without their alpha, and overwrites them meanwhile. The folder is
/// made.
std::string writePng(const std::string& path, FrameSize size, std::vector<uint8_t>& pixels);

} // namespace helvantine::tool
