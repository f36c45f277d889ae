// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace helvantine::tool
{

/// The ffmpeg program at work, in a process group of its own: an interruption from the terminal ends our work and not
/// its, which is to complete the file.
class Ffmpeg
{
public:
    Ffmpeg() = default;
    ~Ffmpeg(); ///< closes its input and waits
    Ffmpeg(const Ffmpeg&) = delete;
    Ffmpeg& operator=(const Ffmpeg&) = delete;

    /// The arguments behind those that keep it quiet. False, with the reason in errno, if it doesn't start.
    bool start(const std::vector<std::string>& arguments);
    /// Feeds its standard input. False once it reads no more.
    bool feed(const uint8_t* bytes, std::size_t size);
    /// Closes its input and waits. True if it ended well and complained of nothing: its exit code alone says little.
    bool finish();

    /// Once it is done: its complaints, on one line.
    std::string getWords() const;
    /// Once it is done: what it wrote to its standard output.
    std::string getOutput() const { return readAll(m_output.get()); }

private:
    using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

    static std::string readAll(std::FILE* file);
    bool spawn(std::vector<std::string> arguments, int input);

    pid_t m_process = -1;
    int m_pipe = -1;
    bool m_good = false;
    File m_output{nullptr, &std::fclose};
    File m_words{nullptr, &std::fclose};
};

/// What a video file holds, as ffmpeg reads it.
struct VideoLength
{
    int frames = 0;
    double seconds = 0.0; ///< good to some frames
    std::string words;    ///< its complaints; empty for a file that is whole
};

VideoLength measureVideo(const std::string& path);

} // namespace helvantine::tool
