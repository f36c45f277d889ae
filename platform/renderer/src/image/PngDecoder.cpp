// SPDX-License-Identifier: MIT
#include "image/PictureDecoders.h"

#include <helvantine/core/Text.h>

#include <png.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstring>

namespace helvantine
{

namespace
{

constexpr uint64_t signatureBytes = 8;
constexpr uint64_t headerBytes = 33;        ///< signature and header chunk
constexpr uint64_t bestDeflateRatio = 1032; ///< bytes that one byte of a deflate stream can stand for
constexpr uint32_t longestChunk = 0x7fffffff;
constexpr size_t chunkFrameBytes = 12; ///< length, name and checksum
constexpr size_t feedBytes = 65536;

uint32_t readBigEndian(const uint8_t* bytes)
{
    return uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 | bytes[3];
}

/// What of a file matters here. All other chunks are passed over unread: texts, profiles, gamma.
struct ChunkRule
{
    const char* name;
    uint32_t mostBytes;
};

constexpr ChunkRule chunkRules[] = {
    {"IHDR", 13}, {"PLTE", 3 * 256}, {"tRNS", 256}, {"IDAT", longestChunk}, {"IEND", 0},
};

struct Description
{
    unsigned width = 0;
    unsigned height = 0;
    unsigned bits = 0;
    unsigned colorType = 0;
    bool interlaced = false;

    /// The size of its rows, packed as well as can be.
    uint64_t countLeastBytes() const
    {
        constexpr unsigned channelsOfType[] = {1, 1, 3, 1, 2, 1, 4};
        const uint64_t rowBytes = (uint64_t(width) * bits * channelsOfType[std::min(colorType, 6u)] + 7) / 8;
        return (rowBytes + 1) * height / bestDeflateRatio;
    }
};

/// libpng decodes what it is handed, so that nothing behind the last row is inflated.
class PngDecoder final : public ImageDecoder
{
public:
    PngDecoder(ImageSource& source, const Description& png) : m_source(source), m_description(png)
    {
        describePicture(m_header, "png", png.width, png.height);
    }
    ~PngDecoder() override { png_destroy_read_struct(&m_png, &m_info, nullptr); }

    bool decode(ImageSink* sink, std::string& error) override;

private:
    static PngDecoder& getThis(png_structp png)
    {
        return *static_cast<PngDecoder*>(png_get_progressive_ptr(png));
    }
    [[noreturn]] static void onError(png_structp png, png_const_charp message);
    static void onWarning(png_structp, png_const_charp) {}
    static void onInfo(png_structp png, png_infop) { getThis(png).startRows(); }
    static void onRow(png_structp png, png_bytep row, png_uint_32 y, int) { getThis(png).takeRow(row, y); }

    bool start();
    bool feedFile();
    bool feedChunk(const char* name, uint64_t offset, uint64_t size);
    bool feed(std::span<const uint8_t> bytes);
    void startRows();
    void readPalette();
    void takeRow(const uint8_t* row, unsigned y);
    void putRow(const uint8_t* row, unsigned y);
    bool putPasses();
    bool hasAllRows() const;

    ImageSource& m_source;
    Description m_description;
    ImageSink* m_sink = nullptr;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    std::array<std::array<uint8_t, rgbaBytes>, 256> m_palette{};
    std::vector<uint8_t> m_row;    ///< of a palette's colours
    std::vector<uint8_t> m_passes; ///< all rows of an interlaced picture
    bool m_refused = false;        ///< by the sink
    bool m_cut = false;
    std::string m_problem;
};

bool PngDecoder::decode(ImageSink* sink, std::string& error)
{
    m_sink = sink;
    if (start() && feedFile() && putPasses())
        return true;
    if (m_cut)
        return failAtEnd(m_header, m_source, error);
    if (!m_refused)
        error = "damaged png: " + m_problem;
    return false;
}

bool PngDecoder::start()
{
    m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, onError, onWarning);
    m_info = m_png ? png_create_info_struct(m_png) : nullptr;
    if (!m_info) {
        m_problem = "no memory for its decoder";
        return false;
    }
    png_set_user_limits(m_png, maxImageSide, maxImageSide);
    png_set_progressive_read_fn(m_png, this, onInfo, onRow, nullptr);
    return feed(m_source.view(0, signatureBytes));
}

void PngDecoder::onError(png_structp png, png_const_charp message)
{
    static_cast<PngDecoder*>(png_get_error_ptr(png))->m_problem = message;
    png_longjmp(png, 1);
}

bool PngDecoder::feedFile()
{
    uint64_t offset = signatureBytes;
    for (;;) {
        const std::span<const uint8_t> start = m_source.view(offset, 8);
        m_cut = start.size() < 8;
        if (m_cut)
            return false;
        const uint64_t size = uint64_t(readBigEndian(start.data())) + chunkFrameBytes;
        char name[5] = {};
        std::memcpy(name, start.data() + 4, 4);
        if (!feedChunk(name, offset, size))
            return false;
        offset += size;
        if (std::strcmp(name, "IEND") == 0)
            break;
    }
    if (hasAllRows())
        return true;
    m_problem = "not all of its rows are there";
    return false;
}

bool PngDecoder::feedChunk(const char* name, uint64_t offset, uint64_t size)
{
    const auto* rule =
        std::find_if(std::begin(chunkRules), std::end(chunkRules),
                     [&](const ChunkRule& entry) { return std::strcmp(entry.name, name) == 0; });
    const bool optional = (name[0] & 0x20) != 0;
    const bool usable = rule != std::end(chunkRules) && size - chunkFrameBytes <= rule->mostBytes;
    m_cut = offset + size > m_source.getSize() && size - chunkFrameBytes <= longestChunk;
    if (m_cut || (!usable && optional))
        return !m_cut;
    if (!usable) {
        m_problem = formatString("its chunk at byte %llu is unknown or too long",
                                 static_cast<unsigned long long>(offset));
        return false;
    }
    for (const uint64_t end = offset + size; offset < end;) {
        const size_t wanted = static_cast<size_t>(std::min<uint64_t>(end - offset, feedBytes));
        const std::span<const uint8_t> bytes = m_source.view(offset, wanted);
        m_cut = bytes.size() < wanted;
        if (m_cut || !feed(bytes))
            return false;
        offset += wanted;
    }
    return true;
}

/// The one place that errors of the library jump back to.
bool PngDecoder::feed(std::span<const uint8_t> bytes)
{
    if (setjmp(png_jmpbuf(m_png)))
        return false;
    png_process_data(m_png, m_info, const_cast<png_bytep>(bytes.data()), bytes.size());
    return true;
}

/// Has the library make RGBA of everything but a palette's indices, which may lie behind the palette's end.
void PngDecoder::startRows()
{
    if (m_sink) {
        if (m_description.colorType == PNG_COLOR_TYPE_PALETTE) {
            readPalette();
            png_set_packing(m_png);
        } else {
            const bool alpha = (m_description.colorType & PNG_COLOR_MASK_ALPHA) != 0 ||
                               png_get_valid(m_png, m_info, PNG_INFO_tRNS) != 0;
            png_set_expand(m_png);
            png_set_strip_16(m_png);
            png_set_gray_to_rgb(m_png);
            if (!alpha)
                png_set_add_alpha(m_png, 0xff, PNG_FILLER_AFTER);
        }
        if (m_description.interlaced)
            png_set_interlace_handling(m_png);
    }
    png_read_update_info(m_png, m_info);
    if (m_sink && m_description.interlaced)
        m_passes.resize(png_get_rowbytes(m_png, m_info) * m_header.height);
}

void PngDecoder::readPalette()
{
    png_colorp colors = nullptr;
    int colorCount = 0;
    png_bytep alphas = nullptr;
    int alphaCount = 0;
    png_get_PLTE(m_png, m_info, &colors, &colorCount);
    png_get_tRNS(m_png, m_info, &alphas, &alphaCount, nullptr);
    for (int i = 0; i < std::min(colorCount, 256); ++i)
        m_palette[static_cast<size_t>(i)] = {colors[i].red, colors[i].green, colors[i].blue,
                                             i < alphaCount ? alphas[i] : uint8_t(255)};
    m_row.resize(m_header.width * rgbaBytes);
}

void PngDecoder::takeRow(const uint8_t* row, unsigned y)
{
    if (!m_sink || !row || y >= m_header.height)
        return;
    if (m_passes.empty())
        putRow(row, y);
    else
        png_progressive_combine_row(m_png, m_passes.data() + m_passes.size() / m_header.height * y, row);
    if (m_refused)
        png_error(m_png, "");
}

void PngDecoder::putRow(const uint8_t* row, unsigned y)
{
    for (unsigned x = 0; x < m_row.size() / rgbaBytes; ++x)
        std::memcpy(m_row.data() + x * rgbaBytes, m_palette[row[x]].data(), rgbaBytes);
    m_refused = !m_sink->putRow(0, 0, y, m_row.empty() ? row : m_row.data());
}

bool PngDecoder::putPasses()
{
    for (unsigned y = 0; !m_passes.empty() && y < m_header.height && !m_refused; ++y)
        putRow(m_passes.data() + m_passes.size() / m_header.height * y, y);
    return !m_refused;
}

bool PngDecoder::hasAllRows() const
{
    constexpr int passes = 7;
    return m_description.interlaced ? png_get_current_pass_number(m_png) >= passes
                                    : png_get_current_row_number(m_png) >= m_header.height;
}

} // namespace

std::unique_ptr<ImageDecoder> openPng(ImageSource& source, std::string& error)
{
    const std::span<const uint8_t> header = source.view(0, headerBytes);
    if (header.size() < headerBytes || std::memcmp(header.data() + 12, "IHDR", 4) != 0) {
        error = "png with a damaged header";
        return nullptr;
    }
    const Description png{readBigEndian(&header[16]), readBigEndian(&header[20]), header[24], header[25],
                          header[28] != 0};
    if (!checkSides("png", png.width, png.height, error))
        return nullptr;
    auto decoder = std::make_unique<PngDecoder>(source, png);
    const bool whole = checkLeastBytes(decoder->getHeader(), source, png.countLeastBytes(), error);
    return whole ? std::move(decoder) : nullptr;
}

} // namespace helvantine
