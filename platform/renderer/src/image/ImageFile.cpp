// SPDX-License-Identifier: MIT
#include "image/ImageFile.h"

#include <helvantine/core/FileSystem.h>
#include <helvantine/core/FileUtil.h>
#include <helvantine/core/MemoryBuffer.h>
#include <helvantine/core/Text.h>
#include <helvantine/core/WinFile.h>

#include <string_view>

namespace helvantine
{

namespace
{

constexpr uint64_t maxFileSize = uint64_t(1) << 31;

/// Null if the buffer yields less than its size promises.
std::unique_ptr<Buffer> copyToMemory(Buffer& buffer)
{
    std::vector<unsigned char> bytes;
    return readRemaining(buffer, bytes) ? std::make_unique<MemoryBuffer>(std::move(bytes)) : nullptr;
}

uint64_t hashContent(Buffer& buffer)
{
    constexpr uint64_t multiplier = 0x100000001b3;
    char block[4096];
    uint64_t hash = 0;
    while (const size_t count = buffer.read(block, sizeof block))
        hash = hash * multiplier ^ std::hash<std::string_view>{}({block, count});
    return hash;
}

} // namespace

ImageFile::ImageFile() = default;

ImageFile::~ImageFile() = default;

bool ImageFile::open(const char* path, std::string& error)
{
    m_path = path;
    m_decoder.reset();
    m_source.reset();
    m_version = {};
    m_buffer.reset(openFile(path));
    if (!m_buffer) {
        error = m_path + ": no such file";
        return false;
    }
    m_version.size = m_buffer->getSize();
    if (m_version.size > maxFileSize) {
        error = formatString("%s: %llu bytes, at most %llu can be read", path,
                             static_cast<unsigned long long>(m_version.size),
                             static_cast<unsigned long long>(maxFileSize));
        return false;
    }
    return readVersion(error);
}

/// What isn't on disk is brought into memory first: it may be decoded on another thread than its owner's.
bool ImageFile::readVersion(std::string& error)
{
    if (dynamic_cast<const WinFile*>(m_buffer.get())) {
        m_version.changeTime = getFileStamp(m_buffer->getName()).changeTime;
        return true;
    }
    if (!dynamic_cast<const MemoryBuffer*>(m_buffer.get()))
        m_buffer = copyToMemory(*m_buffer);
    if (!m_buffer) {
        error = formatString("%s: can't be read whole, %llu bytes", m_path.c_str(),
                             static_cast<unsigned long long>(m_version.size));
        return false;
    }
    m_version.contentHash = hashContent(*m_buffer);
    return true;
}

ImageDecoder* ImageFile::openImage(std::string& error)
{
    if (!m_decoder) {
        m_source.emplace(*m_buffer);
        m_decoder = helvantine::openImage(*m_source, error);
        if (!m_decoder)
            error = m_path + ": " + error;
    }
    return m_decoder.get();
}

bool ImageFile::decode(ImageSink* sink, std::string& error)
{
    if (!openImage(error))
        return false;
    const bool decoded = decodeImage(*m_decoder, sink, error);
    if (!decoded && !error.empty())
        error = m_path + ": " + error;
    m_decoder.reset(); // it can't start again
    return decoded;
}

std::optional<ImageData> ImageFile::decode(std::string& error)
{
    ImageDecoder* decoder = openImage(error);
    if (!decoder)
        return std::nullopt;
    std::optional<ImageData> image = decodeImage(*decoder, error);
    if (!image)
        error = m_path + ": " + error;
    m_decoder.reset();
    return image;
}

} // namespace helvantine
