// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/host/CompositionBuilder.h>

#include <string>

constexpr int galleryRate = 30;       ///< frames per second
constexpr int galleryRoomFrames = 60; ///< for which each effect is shown
extern const int galleryFrames;

/// Paints the still life, the patterns that some effects read, and a label for each effect. The folder ends in a
/// separator; false if a picture can't be written.
bool paintGallery(const std::string& folder);

/// Every 2D effect in turn, on the same still life, each for galleryRoomFrames in a layer of the effect's name.
void addGallery(helvantine::CompositionBuilder& builder, helvantine::Effect& root);
