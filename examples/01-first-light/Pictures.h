// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Paints the pictures of the example into a folder: skies, stars, sun, clouds, ridges, water, title, film.
/// The folder ends in a separator. False if one can't be written.
bool paintPictures(const std::string& folder);
