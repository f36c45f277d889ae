// SPDX-License-Identifier: MIT
#include "Ffmpeg.h"
#include "FileExtension.h"
#include "FrameWriter.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Text.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>

namespace helvantine::tool
{

namespace
{

using Arguments = std::vector<std::string>;

void append(Arguments& to, const Arguments& from)
{
    to.insert(to.end(), from.begin(), from.end());
}

/// Files whose index stands in one place: until they are complete they are written in pieces, each with its own.
bool isIndexed(const std::string& extension)
{
    return extension == ".mp4" || extension == ".m4v" || extension == ".mov";
}

/// What makes a file of that type play everywhere, in the colours of the pictures.
Arguments getCodec(const std::string& extension)
{
    if (extension == ".gif")
        return {"-filter_complex", "split[a][b];[a]palettegen[p];[b][p]paletteuse"};
    const bool even = needsEvenSides(extension);
    Arguments codec{
        "-vf", std::string(even ? "pad=ceil(iw/2)*2:ceil(ih/2)*2," : "") +
                   "scale=out_color_matrix=bt709:out_range=tv:flags=bicubic+accurate_rnd+full_chroma_int,"
                   "format=yuv420p"};
    append(codec, {"-colorspace", "bt709", "-color_primaries", "bt709", "-color_trc", "bt709", "-color_range",
                   "tv"});
    if (extension == ".webm")
        append(codec, {"-c:v", "libvpx-vp9", "-crf", "24", "-b:v", "0", "-row-mt", "1"});
    else
        append(codec, {"-c:v", "libx264", "-crf", "16", "-preset", "medium"});
    if (isIndexed(extension))
        append(codec, {"-movflags", "+empty_moov+default_base_moof", "-frag_duration", "1000000"});
    return codec;
}

/// Pipes raw frames into ffmpeg, which writes beside the target, under the name of a part. A file that was found to
/// hold all frames is put in place.
class VideoWriter : public FrameWriter
{
public:
    VideoWriter(const std::string& path, FrameSize size, int frameRate, int total)
        : m_path(path), m_part(nameBeside("part")), m_extension(getExtension(path)), m_frameRate(frameRate),
          m_total(total)
    {
        makeFolders(getPath(path.c_str()).c_str());
        Arguments arguments{"-f",       "rawvideo",
                            "-pix_fmt", "bgra",
                            "-s",       std::to_string(size.width) + "x" + std::to_string(size.height),
                            "-r",       std::to_string(frameRate),
                            "-i",       "pipe:0"};
        append(arguments, getCodec(m_extension));
        arguments.push_back("file:" + m_part);
        m_started = m_ffmpeg.start(arguments);
    }

    ~VideoWriter() override { abandon(); }

    bool isStarted() const { return m_started; }

    std::string write(int, std::vector<uint8_t>& pixels) override
    {
        if (m_ffmpeg.feed(pixels.data(), pixels.size())) {
            ++m_written;
            return {};
        }
        m_ffmpeg.finish();
        return describe(m_ffmpeg);
    }

    std::string finish() override
    {
        if (!m_ffmpeg.finish())
            return describe(m_ffmpeg);
        const std::string whole = isIndexed(m_extension) ? nameBeside("whole") : m_part;
        std::string error = isIndexed(m_extension) ? putIndex(whole) : std::string();
        if (error.empty())
            error = judge(measureVideo(whole));
        if (error.empty() && !replaceFile(whole.c_str(), m_path.c_str()))
            error = m_path + ": can't be put in place: " + std::strerror(errno);
        if (whole != m_part)
            deleteFile((error.empty() ? m_part : whole).c_str());
        m_done = error.empty();
        return error;
    }

    std::string abandon() override
    {
        if (m_done || !m_started)
            return {};
        m_done = true;
        m_ffmpeg.finish();
        const int frames = measureVideo(m_part).frames;
        if (frames == 0)
            deleteFile(m_part.c_str());
        return frames == 0 ? std::string()
                           : formatString("%d of %d frames are in %s", frames, m_total, m_part.c_str());
    }

private:
    std::string nameBeside(const char* suffix) const
    {
        const std::filesystem::path target(m_path);
        const std::string name = target.stem().string() + "." + suffix + target.extension().string();
        return (target.parent_path() / name).string();
    }

    std::string describe(const Ffmpeg& ffmpeg) const
    {
        const std::string words = ffmpeg.getWords();
        return m_path + ": ffmpeg " + (words.empty() ? "gave up" : "says: " + words);
    }

    /// Copies the pieces into a file with one index in front, which more players seek in.
    std::string putIndex(const std::string& whole) const
    {
        Ffmpeg ffmpeg;
        const bool done = ffmpeg.start({"-i", "file:" + m_part, "-c", "copy", "-movflags", "+faststart",
                                        "file:" + whole}) &&
                          ffmpeg.finish();
        return done ? std::string() : describe(ffmpeg);
    }

    std::string judge(const VideoLength& length) const
    {
        constexpr double slack = 8; // frames: what encoders hold back and containers round
        const double seconds = static_cast<double>(m_written) / m_frameRate;
        if (!length.words.empty())
            return m_path + ": ffmpeg can't read what it wrote: " + length.words;
        if (length.frames != m_written || std::fabs(length.seconds - seconds) > slack / m_frameRate)
            return formatString("%s: the file holds %d of %d frames, %.2f of %.2f s", m_path.c_str(),
                                length.frames, m_written, length.seconds, seconds);
        return {};
    }

    std::string m_path;
    std::string m_part;
    std::string m_extension;
    int m_frameRate;
    int m_total;
    int m_written = 0;
    bool m_started = false;
    bool m_done = false; ///< in place, or given up
    Ffmpeg m_ffmpeg;
};

} // namespace

bool needsEvenSides(const std::string& extension)
{
    // Players of these take 4:2:0 in whole blocks alone.
    return extension != ".gif" && extension != ".webm";
}

std::unique_ptr<FrameWriter> createVideoWriter(const std::string& path, FrameSize size, int frameRate,
                                               int total, std::string& error)
{
    auto writer = std::make_unique<VideoWriter>(path, size, frameRate, total);
    if (writer->isStarted())
        return writer;
    error = path + ": a video needs the ffmpeg program, which " +
            (errno == ENOENT ? "isn't installed" : std::string("doesn't start: ") + std::strerror(errno)) +
            "; picture files do without, for example -o frame-%04d.png";
    return nullptr;
}

} // namespace helvantine::tool
