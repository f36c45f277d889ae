// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/host/CompositionBuilder.h>

constexpr int sunriseRate = 30; ///< frames per second
constexpr int sunriseFrames = 10 * sunriseRate;

/// A sunrise over water, from the pictures of paintPictures. The landscape is drawn into a render target and
/// shown twice: as it is, and cut into strips that sway, as its reflection.
void addSunrise(helvantine::CompositionBuilder& builder, helvantine::Effect& root);
