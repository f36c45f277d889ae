// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

namespace helvantine::test
{

namespace
{

class BlendTest : public DeviceTest
{
};

/// What a mode makes of a source colour over a destination.
Vec4 blend(BlendMode mode, const Vec4& s, const Vec4& d)
{
    switch (mode) {
    case BlendMode::Additive:
        return {s.x * s.w + d.x, s.y * s.w + d.y, s.z * s.w + d.z, s.w + d.w};
    case BlendMode::Alpha:
        return {s.x * s.w + d.x * (1 - s.w), s.y * s.w + d.y * (1 - s.w), s.z * s.w + d.z * (1 - s.w),
                s.w + d.w * (1 - s.w)};
    case BlendMode::Multiply:
        return {s.x * d.x, s.y * d.y, s.z * d.z, d.w};
    case BlendMode::Premultiplied:
        return s + d * (1 - s.w);
    default:
        return s;
    }
}

TEST_F(BlendTest, EveryModeFollowsItsFormula)
{
    const Vec4 source(0.8f, 0.4f, 0.2f, 0.6f);
    const Vec4 destination(0.2f, 0.5f, 0.6f, 0.3f);
    for (const int number : {0, 1, 2, 3, 4, 17}) {
        const BlendMode mode = static_cast<BlendMode>(number);
        const Image image = draw([&] {
            bindDefaults();
            renderer().clear(Renderer::ClearColor, destination, 1.0f, 0);
            setBlend(mode);
            drawQuad(*m_colorShader, makeQuad(source));
        });
        const Vec4 expected = blend(mode, source, destination);
        EXPECT_TRUE(matches(image, Image(37, 23, expected), rasterTolerance)) << getBlendName(mode) << number;
    }
}

} // namespace

} // namespace helvantine::test
