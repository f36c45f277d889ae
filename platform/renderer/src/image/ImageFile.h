// SPDX-License-Identifier: MIT
#pragma once

#include "image/ImageDecoder.h"

#include <memory>
#include <optional>
#include <string>

namespace helvantine
{

class Buffer;

/// What changes when a file changes.
struct FileVersion
{
    uint64_t size = 0;
    int64_t changeTime = 0;   ///< of a file on disk, else 0
    uint64_t contentHash = 0; ///< of a file that isn't on disk, else 0: names in archives tell nothing apart

    bool operator==(const FileVersion&) const = default;
};

/// An image file that is open: which version it is, and its pixels if they are wanted. A file on disk is read while it
/// is decoded.
class ImageFile
{
public:
    ImageFile();
    ~ImageFile();
    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    /// Opens through g_fileSystem, or the plain path without one. False with `path: reason` in error.
    bool open(const char* path, std::string& error);

    const FileVersion& getVersion() const { return m_version; }

    /// Reads the headers. Null on failure, with `path: reason` in error; borrowed.
    ImageDecoder* openImage(std::string& error);

    /// The function of that name, with `path: reason` in error.
    bool decode(ImageSink* sink, std::string& error);

    /// The whole image in memory. Nothing on failure, with `path: reason` in error.
    std::optional<ImageData> decode(std::string& error);

private:
    bool readVersion(std::string& error);

    std::string m_path;
    std::unique_ptr<Buffer> m_buffer;
    FileVersion m_version;
    std::optional<ImageSource> m_source;
    std::unique_ptr<ImageDecoder> m_decoder;
};

} // namespace helvantine
