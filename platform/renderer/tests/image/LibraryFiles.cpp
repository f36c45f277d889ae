// SPDX-License-Identifier: MIT
#include "LibraryFiles.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

// After what they need and don't include.
#include <jpeglib.h>
#include <png.h>

namespace helvantine::test
{

namespace
{

std::vector<jpeg_scan_info> listScans(JpegFile::Scans scans, int components)
{
    std::vector<jpeg_scan_info> list;
    for (int i = 0; scans == JpegFile::OneForEachComponent && i < components; ++i)
        list.push_back({1, {i}, 0, 63, 0, 0});
    if (scans == JpegFile::Many) {
        list.push_back({1, {0}, 0, 0, 0, 1});
        list.push_back({1, {0}, 0, 0, 1, 0});
        for (int band = 1; band < 64; ++band)
            list.push_back({1, {0}, band, band, 0, band == 63 ? 1 : 0});
        list.push_back({1, {0}, 63, 63, 1, 0});
    }
    return list;
}

} // namespace

Bytes PngFile::write() const
{
    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp writer, png_bytep data, size_t size) {
            auto& bytes = *static_cast<Bytes*>(png_get_io_ptr(writer));
            bytes.insert(bytes.end(), data, data + size);
        },
        nullptr);
    png_set_IHDR(png, info, width, height, bits, colorType, interlaced ? PNG_INTERLACE_ADAM7 : 0, 0, 0);
    if (!palette.empty())
        png_set_PLTE(png, info, reinterpret_cast<png_const_colorp>(palette.data()),
                     static_cast<int>(palette.size() / 3));
    png_color_16 transparent{};
    const auto getShort = [&](size_t i) {
        return static_cast<png_uint_16>(alphas.size() > i * 2 + 1 ? alphas[i * 2] << 8 | alphas[i * 2 + 1]
                                                                  : 0);
    };
    transparent.gray = transparent.red = getShort(0);
    transparent.green = getShort(1);
    transparent.blue = getShort(2);
    if (!alphas.empty())
        png_set_tRNS(png, info, alphas.data(), static_cast<int>(alphas.size()), &transparent);
    png_set_check_for_invalid_index(png, 0); // they are what some tests are about
    png_write_info(png, info);
    const size_t rowBytes = png_get_rowbytes(png, info);
    Bytes samples = rows;
    samples.resize(rowBytes * height);
    std::vector<png_bytep> pointers;
    for (size_t y = 0; y < height; ++y)
        pointers.push_back(samples.data() + y * rowBytes);
    png_write_image(png, pointers.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

Bytes JpegFile::write() const
{
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = width;
    info.image_height = height;
    info.input_components = components;
    info.in_color_space = components == 1 ? JCS_GRAYSCALE : components == 3 ? JCS_RGB : JCS_CMYK;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 100, TRUE);
    const std::vector<jpeg_scan_info> list = listScans(scans, components);
    if (scans == Progressive)
        jpeg_simple_progression(&info);
    if (!list.empty()) {
        info.scan_info = list.data();
        info.num_scans = static_cast<int>(list.size());
    }
    jpeg_start_compress(&info, TRUE);
    Bytes samples = pixels;
    const size_t rowBytes = size_t(width) * static_cast<size_t>(components);
    samples.resize(rowBytes * height);
    while (info.next_scanline < height) {
        JSAMPROW row = samples.data() + info.next_scanline * rowBytes;
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const std::unique_ptr<unsigned char, decltype(&std::free)> owner(bytes, &std::free);
    return Bytes(bytes, bytes + size);
}

} // namespace helvantine::test
