// SPDX-License-Identifier: MIT
#include "FrameWriter.h"
#include "PngEncoder.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>

#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <thread>

namespace helvantine::tool
{

namespace
{

/// False, with the reason in errno and nothing left behind, unless every byte has arrived.
bool writeFile(const std::string& path, std::span<const uint8_t> bytes)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    errno = 0;
    bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    int reason = errno;
    if (std::fclose(file) != 0 && written) {
        written = false;
        reason = errno;
    }
    if (!written)
        deleteFile(path.c_str());
    errno = reason;
    return written;
}

std::string writePng(PngEncoder& encoder, const std::string& path, FrameSize size,
                     std::vector<uint8_t>& pixels)
{
    const std::span<const uint8_t> file = encoder.encode(pixels, size);
    if (file.empty())
        return path + ": can't be written: no memory for a picture of this size";
    makeFolders(getPath(path.c_str()).c_str());
    if (writeFile(path, file))
        return {};
    return path + ": can't be written: " + std::strerror(errno);
}

/// Writes on a thread of its own, while the next frame is drawn.
class PngWriter : public FrameWriter
{
public:
    PngWriter(const FramePattern& pattern, FrameSize size)
        : m_pattern(pattern), m_size(size), m_thread([this] { work(); })
    {
    }

    ~PngWriter() override
    {
        {
            const std::lock_guard lock(m_mutex);
            m_ending = true;
        }
        m_changed.notify_all();
        m_thread.join();
    }

    std::string write(int frame, std::vector<uint8_t>& pixels) override
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_frame < 0; });
        if (!m_error.empty())
            return m_error;
        m_frame = frame;
        m_pixels.swap(pixels);
        m_changed.notify_all();
        return {};
    }

    std::string finish() override
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_frame < 0; });
        return m_error;
    }

private:
    void work()
    {
        std::unique_lock lock(m_mutex);
        while (true) {
            m_changed.wait(lock, [this] { return m_frame >= 0 || m_ending; });
            if (m_frame < 0)
                return;
            lock.unlock();
            std::string error = writePng(m_encoder, m_pattern.getPath(m_frame), m_size, m_pixels);
            lock.lock();
            m_error = std::move(error);
            m_frame = -1;
            m_changed.notify_all();
        }
    }

    FramePattern m_pattern;
    FrameSize m_size;
    PngEncoder m_encoder; ///< the thread's, as are the pixels while there is a frame
    std::vector<uint8_t> m_pixels;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_frame = -1; ///< to be written; -1: none
    bool m_ending = false;
    std::string m_error; ///< of the frame written last
    std::thread m_thread;
};

} // namespace

std::string writePng(const std::string& path, FrameSize size, std::vector<uint8_t>& pixels)
{
    PngEncoder encoder;
    return writePng(encoder, path, size, pixels);
}

std::unique_ptr<FrameWriter> createPngWriter(const FramePattern& pattern, FrameSize size)
{
    return std::make_unique<PngWriter>(pattern, size);
}

} // namespace helvantine::tool
