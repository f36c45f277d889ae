// SPDX-License-Identifier: MIT
#include "Ffmpeg.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace helvantine::tool
{

namespace
{

/// The number behind the last "key=" of ffmpeg's report of its progress.
double findLast(const std::string& report, const std::string& key)
{
    const std::size_t place = report.rfind("\n" + key + "=");
    return place == std::string::npos ? 0.0 : std::atof(report.c_str() + place + key.size() + 2);
}

} // namespace

Ffmpeg::~Ffmpeg()
{
    finish();
}

bool Ffmpeg::start(const std::vector<std::string>& arguments)
{
    std::vector<std::string> all{"ffmpeg", "-v", "error", "-nostdin", "-y"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    m_output.reset(std::tmpfile());
    m_words.reset(std::tmpfile());
    int ends[2];
    if (!m_output || !m_words || pipe2(ends, O_CLOEXEC) != 0)
        return false;
    const bool started = spawn(std::move(all), ends[0]);
    const int reason = errno;
    close(ends[0]);
    m_pipe = ends[1];
    if (!started) {
        close(m_pipe);
        m_pipe = -1;
    }
    errno = reason;
    return started;
}

bool Ffmpeg::spawn(std::vector<std::string> arguments, int input)
{
    std::vector<char*> raw;
    for (std::string& argument : arguments)
        raw.push_back(argument.data());
    raw.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fileno(m_output.get()), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fileno(m_words.get()), STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attributes, 0);
    errno = posix_spawnp(&m_process, raw[0], &actions, &attributes, raw.data(), environ);
    const int reason = errno;
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (reason != 0)
        m_process = -1;
    errno = reason;
    return reason == 0;
}

bool Ffmpeg::feed(const uint8_t* bytes, std::size_t size)
{
    while (size > 0) {
        const ssize_t count = write(m_pipe, bytes, size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

bool Ffmpeg::finish()
{
    if (m_process < 0)
        return m_good;
    close(m_pipe);
    int status = 0;
    while (waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
    }
    m_process = -1;
    m_good = status == 0 && getWords().empty();
    return m_good;
}

std::string Ffmpeg::getWords() const
{
    constexpr std::size_t most = 300;
    std::string words = readAll(m_words.get());
    while (!words.empty() && words.back() == '\n')
        words.pop_back();
    for (std::size_t place = 0; (place = words.find('\n', place)) != std::string::npos;)
        words.replace(place, 1, "; ");
    return words.size() > most ? words.substr(0, most) + " …" : words;
}

std::string Ffmpeg::readAll(std::FILE* file)
{
    std::string text;
    if (!file)
        return text;
    std::rewind(file);
    char bytes[4096];
    while (const std::size_t count = std::fread(bytes, 1, sizeof(bytes), file))
        text.append(bytes, count);
    return text;
}

VideoLength measureVideo(const std::string& path)
{
    Ffmpeg ffmpeg;
    VideoLength length;
    if (!ffmpeg.start(
            {"-i", "file:" + path, "-map", "0:v:0", "-c", "copy", "-f", "null", "-progress", "pipe:1", "-"}))
    {
        length.words = "ffmpeg doesn't start again";
        return length;
    }
    if (!ffmpeg.finish())
        length.words = ffmpeg.getWords();
    const std::string report = "\n" + ffmpeg.getOutput();
    length.frames = static_cast<int>(findLast(report, "frame"));
    length.seconds = findLast(report, "out_time_us") / 1e6;
    return length;
}

} // namespace helvantine::tool
