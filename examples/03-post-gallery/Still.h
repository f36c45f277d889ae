// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Paints the gallery's subject: a still life of spheres on a polished floor at dusk, traced ray by ray, in two files.
/// - still.tga: the colours, 1280 by 720.
/// - still-depth.dds: the normals (rgb) and the depth (alpha) of the same view, in view space, as floats, 640 by 360:
///   what the effects read that reckon with depth. Both are as a camera with a field of view of 45 degrees sees them.
/// The folder ends in a separator. False if one can't be written.
bool paintStill(const std::string& folder);
