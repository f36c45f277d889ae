// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/renderer/TextureSampler.h>

#include <array>
#include <cstdint>
#include <vector>

namespace helvantine::test
{

/// What the rows of the table read: b1 and b2 hold at each float its own number; t0 is 4 by 2 with texels
/// (x, y, x + 10 y, 1) and a mip of 2 by 1 with texels (100 + x, 0, 0, 1); s0 is of points and clamps, s1 linear and
/// wraps, s2 compares less of points.
class HlslInputs
{
public:
    explicit HlslInputs(Renderer& renderer);

    /// Binds it all, and in b0 the arguments, for both stages.
    void bind(const std::vector<uint32_t>& arguments);

private:
    SmartRef<Texture> m_texture;
    std::array<SmartRef<TextureSampler>, 3> m_samplers;
};

} // namespace helvantine::test
