// SPDX-License-Identifier: MIT
#pragma once

#include <string>

constexpr int moonPhases = 8; ///< from the new moon on, in phase-1.tga and so on

/// Paints the pictures of the example into a folder: the sun, planets, their shadows, the moon's phases, the title.
/// The folder ends in a separator. False if one can't be written.
bool paintPictures(const std::string& folder);
