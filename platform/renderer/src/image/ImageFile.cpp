// SPDX-License-Identifier: MIT
#include "image/ImageFile.h"
#include "image/ImageDecoder.h"

#include <helvantine/core/FileSystem.h>
#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Text.h>
#include <helvantine/core/WinFile.h>

#include <string_view>

namespace helvantine
{

namespace
{

constexpr uint64_t maxFileSize = uint64_t(1) << 31;

uint64_t hashBytes(const std::vector<uint8_t>& bytes)
{
    return std::hash<std::string_view>{}({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

} // namespace

ImageFile::ImageFile() = default;

ImageFile::~ImageFile() = default;

bool ImageFile::open(const char* path, std::string& error)
{
    m_path = path;
    m_bytes.clear();
    m_version = {};
    m_buffer.reset(openFile(path));
    if (!m_buffer) {
        error = m_path + ": no such file";
        return false;
    }
    m_version.size = m_buffer->getSize();
    if (dynamic_cast<const WinFile*>(m_buffer.get())) {
        m_version.changeTime = getFileStamp(m_buffer->getName()).changeTime;
        return true;
    }
    if (!readBytes(error))
        return false;
    m_version.contentHash = hashBytes(m_bytes);
    return true;
}

bool ImageFile::readBytes(std::string& error)
{
    if (readRemaining(*m_buffer, m_bytes, maxFileSize))
        return true;
    error = formatString("%s: can't be read whole, %llu bytes", m_path.c_str(),
                         static_cast<unsigned long long>(m_version.size));
    return false;
}

std::optional<ImageData> ImageFile::decode(std::string& error)
{
    if (m_bytes.empty() && !readBytes(error))
        return std::nullopt;
    std::optional<ImageData> image = decodeImage(m_bytes, error);
    if (!image)
        error = m_path + ": " + error;
    return image;
}

} // namespace helvantine
