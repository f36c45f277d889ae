// SPDX-License-Identifier: MIT
#include "PictureSamples.h"
#include "WatchedMalloc.h"
#include "image/ImageDecoder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace helvantine::test
{
namespace
{

/// Lets rows go.
class CountingSink final : public ImageSink
{
public:
    bool putRow(unsigned, unsigned mip, unsigned, const uint8_t*) override
    {
        m_rows += mip == 0;
        return true;
    }

    unsigned m_rows = 0;
};

/// Bytes that decoding takes beside what the sink keeps.
size_t measure(const Bytes& file, bool wantsRows, unsigned height)
{
    CountingSink sink;
    startWatching();
    std::string error;
    ImageSource source(file);
    const std::unique_ptr<ImageDecoder> decoder = openImage(source, error);
    EXPECT_TRUE(decoder && decodeImage(*decoder, wantsRows ? &sink : nullptr, error)) << error;
    const size_t peak = getPeakBytes();
    EXPECT_EQ(sink.m_rows, wantsRows ? height : 0);
    return peak;
}

TEST(ImageMemory, StaysSmallHoweverLargeThePicture)
{
    constexpr unsigned width = 16384;
    constexpr unsigned height = 1024;
    constexpr size_t pixels = size_t(width) * height;
    constexpr size_t inRows = 16 << 20;
    constexpr size_t inPasses = inRows + 8 * pixels;
    const struct
    {
        const char* name;
        Bytes file;
        size_t limit;      ///< with the pixels
        size_t checkLimit; ///< without them
    } cases[] = {
        {"png", PngFile{.width = width, .height = height}.write(), inRows, inRows},
        {"png in passes", PngFile{.width = width, .height = height, .interlaced = true}.write(), inPasses,
         inRows},
        {"jpg", JpegFile{.width = width, .height = height}.write(), inRows, inRows},
        {"jpg in scans", JpegFile{.width = width, .height = height, .scans = JpegFile::Progressive}.write(),
         inPasses, inPasses},
        {"bmp", makeRunBmp(width, height), inRows, inRows},
        {"tga", makeRunTga(width, height), inRows, inRows},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const size_t peak = measure(c.file, true, height);
        const size_t checkPeak = measure(c.file, false, height);
        EXPECT_LE(peak, c.limit);
        EXPECT_LE(checkPeak, c.checkLimit);
        RecordProperty(c.name, std::to_string(peak >> 10) + " KiB, check " + std::to_string(checkPeak >> 10) +
                                   " KiB");
    }
}

/// Keeps the rows in memory that held a byte everywhere before.
class FilledSink final : public ImageSink
{
public:
    FilledSink(const ImageHeader& header, uint8_t byte)
    {
        m_image.bytes.assign(
            m_image.layOut(header.format, header.width, header.height, header.mipCount, header.faceCount),
            byte);
    }

    bool putRow(unsigned face, unsigned mip, unsigned y, const uint8_t* row) override
    {
        const size_t rowBytes = m_image.getLevel(face, mip).rowBytes;
        std::memcpy(m_image.getPixels(face, mip) + y * rowBytes, row, rowBytes);
        return true;
    }

    ImageData m_image;
};

/// The pixels, or why there are none.
std::pair<Bytes, std::string> decodeOver(uint8_t byte, const Bytes& file)
{
    fillNewMemory(byte);
    std::string error;
    ImageSource source(file);
    const std::unique_ptr<ImageDecoder> decoder = openImage(source, error);
    if (!decoder)
        return {{}, error};
    FilledSink sink(decoder->getHeader(), byte);
    return {decodeImage(*decoder, &sink, error) ? sink.m_image.bytes : Bytes(), error};
}

TEST(ImageMemory, NothingThatItHeldBeforeGetsIntoAPicture)
{
    constexpr unsigned damagedOfEach = 300;
    unsigned decoded = 0;
    for (const Bytes& sample : makeSamples()) {
        for (unsigned round = 0; round < damagedOfEach; ++round) {
            const Bytes file = round == 0 ? sample : damage(sample, round);
            const auto result = decodeOver(0x00, file);
            EXPECT_EQ(decodeOver(0xa5, file), result);
            decoded += result.second.empty();
        }
    }
    EXPECT_GT(decoded, damagedOfEach) << "or the test says little";
}

} // namespace
} // namespace helvantine::test
