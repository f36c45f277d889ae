// SPDX-License-Identifier: MIT
#pragma once

#include "image/ImageDecoder.h"

/// The decoders of the single formats, and what they share.

namespace helvantine
{

// Each of these takes the file for one of its format, and gives null with the reason in error.
std::unique_ptr<ImageDecoder> openDds(ImageSource& source, std::string& error);
std::unique_ptr<ImageDecoder> openPng(ImageSource& source, std::string& error);
std::unique_ptr<ImageDecoder> openJpeg(ImageSource& source, std::string& error);
std::unique_ptr<ImageDecoder> openBmp(ImageSource& source, std::string& error);
/// Tells the format by the plausibility of its header, since it has no mark at its start.
std::unique_ptr<ImageDecoder> openTga(ImageSource& source, std::string& error);

inline constexpr size_t rgbaBytes = 4;

/// False, with words in error, for sides that no image may have.
bool checkSides(const char* kind, unsigned width, unsigned height, std::string& error);

/// Holds the file's size against a lower bound of what so many pixels take, so that a small file can't ask for much.
bool checkLeastBytes(const ImageHeader& header, ImageSource& source, uint64_t least, std::string& error);

/// Always false, so that it can end a function: the file ends before its picture does.
bool failAtEnd(const ImageHeader& header, const ImageSource& source, std::string& error);

/// Fills in the sides of a picture of 8-bit RGBA.
void describePicture(ImageHeader& header, const char* kind, unsigned width, unsigned height);

} // namespace helvantine
