// SPDX-License-Identifier: MIT
// Painting by formula: a picture is a function of u (left to right) and v (top to bottom), both from 0 to 1.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>

struct Color
{
    float r, g, b, a;
};

float clamp01(float x);
/// 0 up to `from`, 1 beyond `to`, smooth between.
float smooth(float from, float to, float x);
Color mix(const Color& a, const Color& b, float t);
/// The colour at t, from 0 to 1, between stops at equal distances; two stops at least.
Color gradient(float t, std::initializer_list<Color> stops);

/// A number from 0 to 1 for each lattice point.
float hash(int x, int y, int seed);
/// Smooth noise, periodic in x after `period` lattice cells.
float noise(float x, float y, int period, int seed);
/// Octaves of noise over u from 0 to 1, from 0 to about 1.
float fractal(float u, float y, int period, int octaves, int seed);

/// A TGA file of 32 bits a pixel, dithered, so that broad gradients show no bands. False if it can't be written.
bool writePicture(const std::string& path, int width, int height,
                  const std::function<Color(float u, float v)>& paint);
