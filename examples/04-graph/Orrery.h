// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/host/CompositionBuilder.h>

constexpr int orreryRate = 30; ///< frames per second
constexpr int orreryFrames = 20 * orreryRate;

/// Four planets and a moon about a sun, from the pictures of paintPictures. One clock turns all of it, through nodes;
/// after the last frame everything stands where it began.
void addOrrery(helvantine::CompositionBuilder& builder, helvantine::Effect& root);
