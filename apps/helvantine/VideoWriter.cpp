// SPDX-License-Identifier: MIT
#include "FrameWriter.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace helvantine::tool
{

namespace
{

using Arguments = std::vector<std::string>;

/// What makes a file of that type play everywhere.
Arguments getCodec(const std::string& extension)
{
    if (extension == ".gif")
        return {"-filter_complex", "split[a][b];[a]palettegen[p];[b][p]paletteuse"};
    if (extension == ".webm")
        return {"-c:v", "libvpx-vp9", "-crf", "24", "-b:v", "0", "-row-mt", "1", "-pix_fmt", "yuv420p"};
    // The common players take 4:2:0 alone, which wants even sides.
    return {"-c:v",      "libx264",   "-crf",    "16",  "-preset",
            "medium",    "-pix_fmt",  "yuv420p", "-vf", "pad=ceil(iw/2)*2:ceil(ih/2)*2",
            "-movflags", "+faststart"};
}

/// Starts a program with its standard input at the far end of a pipe. Returns the process, or -1.
pid_t spawnReader(const Arguments& arguments, int& writeEnd)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return -1;
    std::vector<char*> raw;
    for (const std::string& argument : arguments)
        raw.push_back(const_cast<char*>(argument.c_str()));
    raw.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
    pid_t process = -1;
    const int error = posix_spawnp(&process, raw[0], &actions, nullptr, raw.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[0]);
    if (error != 0) {
        close(ends[1]);
        errno = error;
        return -1;
    }
    writeEnd = ends[1];
    return process;
}

/// Pipes raw frames into ffmpeg, which writes beside the target; a finished file is put in its place.
class VideoWriter : public FrameWriter
{
public:
    VideoWriter(const std::string& path, FrameSize size, int frameRate) : m_path(path)
    {
        const std::filesystem::path target(path);
        m_partial =
            (target.parent_path() / (target.stem().string() + ".partial" + target.extension().string()))
                .string();
        makeFolders(getPath(path.c_str()).c_str());
        Arguments arguments{"ffmpeg",
                            "-v",
                            "error",
                            "-nostdin",
                            "-y",
                            "-f",
                            "rawvideo",
                            "-pix_fmt",
                            "bgra",
                            "-s",
                            std::to_string(size.width) + "x" + std::to_string(size.height),
                            "-r",
                            std::to_string(frameRate),
                            "-i",
                            "pipe:0"};
        for (const std::string& argument : getCodec(target.extension().string()))
            arguments.push_back(argument);
        arguments.push_back("file:" + m_partial);
        std::signal(SIGPIPE, SIG_IGN);
        m_process = spawnReader(arguments, m_pipe);
    }

    ~VideoWriter() override
    {
        if (m_process > 0) {
            closeAndWait();
            deleteFile(m_partial.c_str());
        }
    }

    bool isStarted() const { return m_process > 0; }

    std::string write(int, const std::vector<uint8_t>& pixels) override
    {
        size_t done = 0;
        while (done < pixels.size()) {
            const ssize_t count = ::write(m_pipe, pixels.data() + done, pixels.size() - done);
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                return m_path + ": ffmpeg gave up, its words are above";
            done += static_cast<size_t>(count);
        }
        return {};
    }

    std::string finish() override
    {
        const int status = closeAndWait();
        if (status == 0 && replaceFile(m_partial.c_str(), m_path.c_str()))
            return {};
        deleteFile(m_partial.c_str());
        return m_path + (status ? ": ffmpeg failed, its words are above" : ": can't be put in place");
    }

private:
    int closeAndWait()
    {
        close(m_pipe);
        int status = 0;
        while (waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
        }
        m_process = -1;
        return status;
    }

    std::string m_path;
    std::string m_partial;
    int m_pipe = -1;
    pid_t m_process = -1;
};

} // namespace

std::unique_ptr<FrameWriter> createVideoWriter(const std::string& path, FrameSize size, int frameRate,
                                               std::string& error)
{
    auto writer = std::make_unique<VideoWriter>(path, size, frameRate);
    if (writer->isStarted())
        return writer;
    error = path + ": a video needs the ffmpeg program, which " +
            (errno == ENOENT ? "isn't installed" : std::string("doesn't start: ") + std::strerror(errno)) +
            "; picture files do without, for example -o frame-%04d.png";
    return nullptr;
}

} // namespace helvantine::tool
