// SPDX-License-Identifier: MIT
#include "image/PictureDecoders.h"

#include <helvantine/core/Text.h>

#include <algorithm>
#include <csetjmp>
#include <cstdio>

// After what it needs and doesn't include.
#include <jpeglib.h>

#include <jerror.h>

namespace helvantine
{

namespace
{

constexpr int mostScans = 64; ///< each costs a pass over the picture; encoders write about ten
constexpr size_t readBytes = 65536;
constexpr unsigned checkScale = 8; ///< when nobody wants the pixels, blocks become single ones

/// Warnings of the library that mean lost pixels; the others are about harmless oddities.
constexpr int fatalWarnings[] = {JWRN_HIT_MARKER, JWRN_HUFF_BAD_CODE, JWRN_ARITH_BAD_CODE, JWRN_MUST_RESYNC};

/// A code has at least one bit, and each block of 8 by 8 pixels at least one code.
uint64_t countLeastBytes(const jpeg_decompress_struct& info)
{
    uint64_t blocks = 0;
    for (int i = 0; i < info.num_components; ++i)
        blocks += uint64_t(info.comp_info[i].width_in_blocks) * info.comp_info[i].height_in_blocks;
    return info.arith_code ? 0 : blocks / 8;
}

class JpegDecoder final : public ImageDecoder
{
public:
    explicit JpegDecoder(ImageSource& source);
    ~JpegDecoder() override { jpeg_destroy_decompress(&m_info); }

    bool open(std::string& error);
    bool decode(ImageSink* sink, std::string& error) override;

private:
    static JpegDecoder& getThis(void* info)
    {
        return *static_cast<JpegDecoder*>(static_cast<j_common_ptr>(info)->client_data);
    }
    [[noreturn]] static void onError(j_common_ptr info);
    static void onMessage(j_common_ptr info, int level);
    static boolean onMoreWanted(j_decompress_ptr info) { return getThis(info).readMore(); }
    static void onSkip(j_decompress_ptr info, long count) { getThis(info).skip(count); }
    static void doNothing(j_decompress_ptr) {}
    static void printNothing(j_common_ptr) {}

    boolean readMore();
    void skip(long count);
    bool describe(std::string& error);
    bool fail(std::string& error) const;

    // What follows is left by a jump when the library meets an error.
    bool readHeader();
    bool readPicture();
    void chooseOutput();
    void readScans();
    void noteScan();
    void readRows();
    bool putRow();

    ImageSource& m_source;
    uint64_t m_offset = 0; ///< behind what the library was given
    ImageSink* m_sink = nullptr;
    jpeg_decompress_struct m_info{};
    jpeg_error_mgr m_errors{};
    jpeg_source_mgr m_input{};
    std::jmp_buf m_jump{};
    std::vector<uint8_t> m_row;
    std::vector<uint8_t> m_scanned; ///< of each component: its first scan was there
    bool m_refused = false;         ///< by the sink
    bool m_cut = false;
    std::string m_problem;
};

JpegDecoder::JpegDecoder(ImageSource& source) : m_source(source)
{
    m_info.err = jpeg_std_error(&m_errors);
    m_info.client_data = this;
    m_errors.error_exit = onError;
    m_errors.emit_message = onMessage;
    m_errors.output_message = printNothing;
    m_input.init_source = doNothing;
    m_input.fill_input_buffer = onMoreWanted;
    m_input.skip_input_data = onSkip;
    m_input.resync_to_restart = jpeg_resync_to_restart;
    m_input.term_source = doNothing;
}

void JpegDecoder::onError(j_common_ptr info)
{
    JpegDecoder& decoder = getThis(info);
    if (decoder.m_problem.empty()) {
        char text[JMSG_LENGTH_MAX];
        info->err->format_message(info, text);
        decoder.m_problem = text;
    }
    std::longjmp(decoder.m_jump, 1);
}

void JpegDecoder::onMessage(j_common_ptr info, int level)
{
    const int* fatal = std::find(std::begin(fatalWarnings), std::end(fatalWarnings), info->err->msg_code);
    if (level < 0 && fatal != std::end(fatalWarnings))
        onError(info);
}

boolean JpegDecoder::readMore()
{
    const std::span<const uint8_t> bytes = m_source.view(m_offset, readBytes);
    m_cut = bytes.empty();
    if (m_cut)
        onError(reinterpret_cast<j_common_ptr>(&m_info));
    m_offset += bytes.size();
    m_input.next_input_byte = bytes.data();
    m_input.bytes_in_buffer = bytes.size();
    return TRUE;
}

void JpegDecoder::skip(long count)
{
    const size_t here = std::min(static_cast<size_t>(std::max(count, 0L)), m_input.bytes_in_buffer);
    m_offset += static_cast<uint64_t>(std::max(count, 0L)) - here;
    m_input.next_input_byte += here;
    m_input.bytes_in_buffer -= here;
}

bool JpegDecoder::open(std::string& error)
{
    return readHeader() ? describe(error) : fail(error);
}

bool JpegDecoder::describe(std::string& error)
{
    if (!checkSides("jpg", m_info.image_width, m_info.image_height, error))
        return false;
    describePicture(m_header, "jpg", m_info.image_width, m_info.image_height);
    const int components = m_info.num_components;
    if (components == 1 || components == 3 || components == 4)
        return checkLeastBytes(m_header, m_source, countLeastBytes(m_info), error);
    error = formatString("jpg of %d components, 1, 3 and 4 are read", components);
    return false;
}

bool JpegDecoder::fail(std::string& error) const
{
    if (m_cut) {
        const ImageHeader header{.kind = "jpg"}; // the own one may not be there yet
        return failAtEnd(header, m_source, error);
    }
    if (!m_refused)
        error = "damaged jpg: " + m_problem;
    return false;
}

bool JpegDecoder::decode(ImageSink* sink, std::string& error)
{
    m_sink = sink;
    m_row.resize(m_header.width * rgbaBytes);
    m_scanned.resize(static_cast<size_t>(m_info.num_components));
    return readPicture() || fail(error);
}

bool JpegDecoder::readHeader()
{
    if (setjmp(m_jump))
        return false;
    jpeg_create_decompress(&m_info);
    m_info.src = &m_input;
    jpeg_read_header(&m_info, TRUE);
    return true;
}

bool JpegDecoder::readPicture()
{
    if (setjmp(m_jump))
        return false;
    chooseOutput();
    const bool scans = jpeg_has_multiple_scans(&m_info) != FALSE;
    m_info.buffered_image = scans;
    jpeg_start_decompress(&m_info);
    if (scans)
        readScans();
    if (!scans || m_sink)
        readRows();
    if (!scans && !m_refused)
        jpeg_finish_decompress(&m_info); // the end mark has to be there
    return !m_refused;
}

void JpegDecoder::chooseOutput()
{
    m_info.do_block_smoothing = FALSE; // it makes up what the file doesn't say
    m_info.out_color_space = m_info.num_components == 4 ? JCS_CMYK : JCS_EXT_RGBA;
    if (m_sink)
        return;
    m_info.out_color_space = m_info.jpeg_color_space;
    m_info.do_fancy_upsampling = FALSE;
    m_info.scale_num = 1;
    m_info.scale_denom = checkScale;
}

/// Takes in the coefficients of all scans.
void JpegDecoder::readScans()
{
    noteScan();
    int state = JPEG_REACHED_SOS;
    while (state != JPEG_REACHED_EOI) {
        state = jpeg_consume_input(&m_info);
        if (state == JPEG_REACHED_SOS)
            noteScan();
    }
    const auto missing = std::find(m_scanned.begin(), m_scanned.end(), uint8_t(0));
    if (missing != m_scanned.end()) {
        m_problem = formatString("component %d has no first scan", int(missing - m_scanned.begin()) + 1);
        onError(reinterpret_cast<j_common_ptr>(&m_info));
    }
    if (m_sink)
        jpeg_start_output(&m_info, m_info.input_scan_number);
}

void JpegDecoder::noteScan()
{
    if (m_info.input_scan_number > mostScans) {
        m_problem = formatString("it has more than %d scans", mostScans);
        onError(reinterpret_cast<j_common_ptr>(&m_info));
    }
    const bool first = !m_info.progressive_mode || (m_info.Ss == 0 && m_info.Ah == 0);
    for (int i = 0; first && i < m_info.comps_in_scan; ++i)
        m_scanned[static_cast<size_t>(m_info.cur_comp_info[i]->component_index)] = 1;
}

void JpegDecoder::readRows()
{
    JSAMPROW row = m_row.data();
    while (m_info.output_scanline < m_info.output_height && !m_refused) {
        jpeg_read_scanlines(&m_info, &row, 1);
        m_refused = m_sink && !putRow();
    }
}

/// Ink to light: each colour times black. Adobe's programs store both inverted.
bool JpegDecoder::putRow()
{
    const uint8_t flip = m_info.saw_Adobe_marker ? 0 : 255;
    if (m_info.out_color_space == JCS_CMYK) {
        for (size_t at = 0; at < m_row.size(); at += rgbaBytes) {
            const unsigned black = m_row[at + 3] ^ flip;
            for (size_t i = 0; i < 3; ++i)
                m_row[at + i] = static_cast<uint8_t>(((m_row[at + i] ^ flip) * black + 127) / 255);
            m_row[at + 3] = 255;
        }
    }
    return m_sink->putRow(0, 0, m_info.output_scanline - 1, m_row.data());
}

} // namespace

std::unique_ptr<ImageDecoder> openJpeg(ImageSource& source, std::string& error)
{
    auto decoder = std::make_unique<JpegDecoder>(source);
    return decoder->open(error) ? std::move(decoder) : nullptr;
}

} // namespace helvantine
