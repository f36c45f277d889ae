// SPDX-License-Identifier: MIT
#include "vulkan/PipelineFile.h"

#include "shader/Hash128.h"
#include "vulkan/VulkanDevice.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Text.h>

#include <cstdio>
#include <cstring>
#include <memory>

namespace helvantine
{

namespace
{

constexpr uint32_t magicWord = 0x50435648; // "HVCP"
constexpr uint64_t largestContent = uint64_t(256) << 20;

struct Header
{
    uint32_t magic = magicWord;
    uint32_t version = 1;
    uint64_t size = 0;
    Hash128 hash;
};

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

} // namespace

void PipelineFile::open(const std::string& folder, const VulkanDevice& device)
{
    const VkPhysicalDeviceProperties& properties = device.getProperties();
    const Hash128 uuid = hashBytes(properties.pipelineCacheUUID, sizeof properties.pipelineCacheUUID);
    m_path = folder.empty() ? std::string()
                            : formatString("%s/pipelines-%08x-%08x-%s", folder.c_str(), properties.vendorID,
                                           properties.deviceID, uuid.toString().c_str());
}

std::vector<uint8_t> PipelineFile::read() const
{
    const File file(m_path.empty() ? nullptr : std::fopen(m_path.c_str(), "rb"));
    Header header;
    if (!file || std::fread(&header, sizeof header, 1, file.get()) != 1 || header.magic != magicWord ||
        header.version != Header().version || header.size > largestContent ||
        header.size + sizeof header != getFileStamp(m_path.c_str()).size)
        return {};
    std::vector<uint8_t> content(header.size);
    const bool whole = std::fread(content.data(), 1, content.size(), file.get()) == content.size();
    if (!whole || hashBytes(content.data(), content.size()) != header.hash)
        return {};
    return content;
}

void PipelineFile::write(const std::vector<uint8_t>& content) const
{
    if (m_path.empty() || content.size() > largestContent)
        return;
    const std::string folder = m_path.substr(0, m_path.rfind('/'));
    const std::string temporary =
        makeFolders(folder.c_str()) ? createTemporaryFile(folder.c_str(), "new-") : "";
    File file(temporary.empty() ? nullptr : std::fopen(temporary.c_str(), "wb"));
    if (!file)
        return;
    Header header;
    header.size = content.size();
    header.hash = hashBytes(content.data(), content.size());
    const bool written = std::fwrite(&header, sizeof header, 1, file.get()) == 1 &&
                         std::fwrite(content.data(), 1, content.size(), file.get()) == content.size();
    const bool closed = std::fclose(file.release()) == 0;
    if (!written || !closed || !replaceFile(temporary.c_str(), m_path.c_str()))
        deleteFile(temporary.c_str());
}

} // namespace helvantine
