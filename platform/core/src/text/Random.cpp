// SPDX-License-Identifier: MIT
#include <helvantine/core/Random.h>

#include <random>

namespace helvantine
{

namespace
{

std::mt19937& getGenerator()
{
    static std::mt19937 generator{std::random_device{}()};
    return generator;
}

} // namespace

float randomFloat(float min, float max)
{
    if (!(max > min))
        return min;
    // 24 bits fill a float; the standard distributions differ between libraries.
    const float part = static_cast<float>(getGenerator()() >> 8) * (1.0f / 16777216.0f);
    const float value = static_cast<float>(min + (static_cast<double>(max) - min) * part);
    return value < max ? value : min; // rounding may reach the excluded end
}

void seedRandom(std::uint32_t seed)
{
    getGenerator().seed(seed);
}

} // namespace helvantine
