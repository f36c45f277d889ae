// SPDX-License-Identifier: MIT
#include "MathSupport.h"

#include <helvantine/core/RotationKeyframe.h>

#include <memory>

using namespace helvantine;

namespace
{

/// A turn about the y axis, written out.
Quat turn(double angle)
{
    return {0, float(std::sin(angle / 2)), 0, float(std::cos(angle / 2))};
}

void addKey(Keyframe& curve, float time, const Quat& rotation, std::uint32_t mode, float easeFrom = 0)
{
    Key* key = curve.createKey();
    key->time = time;
    key->mode = mode;
    key->paramE = easeFrom;
    key->values[0] = rotation.x;
    key->values[1] = rotation.y;
    key->values[2] = rotation.z;
    key->values[3] = rotation.w;
    curve.addKey(key, true);
}

Quat rotationAt(Keyframe& curve, float time)
{
    const float* q = curve.evaluate(time);
    return {q[0], q[1], q[2], q[3]};
}

/// The angle of a curve that turns about y only.
double angleAt(Keyframe& curve, float time)
{
    const Quat q = rotationAt(curve, time);
    return std::remainder(2 * std::atan2(q.y, q.w), 2 * double(s_pi));
}

/// About one axis, squad is three plain interpolations of angles.
double squadAngle(const double (&angles)[4], double u)
{
    const double innerFrom = angles[1] - (angles[0] - angles[1] + angles[2] - angles[1]) / 4;
    const double innerTo = angles[2] - (angles[1] - angles[2] + angles[3] - angles[2]) / 4;
    const double outer = angles[1] + u * (angles[2] - angles[1]);
    const double inner = innerFrom + u * (innerTo - innerFrom);
    return outer + 2 * u * (1 - u) * (inner - outer);
}

} // namespace

TEST(RotationCurve, TurnsOnTheShorterArcAtConstantSpeed)
{
    RotationKeyframe curve;
    addKey(curve, 0, turn(0.2), KeyModeLinear);
    addKey(curve, 2, -turn(1.2), KeyModeHold);
    addKey(curve, 3, Quat(0, 0, 0, -5), KeyModeLinear); // not of unit length
    EXPECT_NEAR(angleAt(curve, 0.5f), 0.45, 1e-5);
    EXPECT_NEAR(angleAt(curve, 1.5f), 0.95, 1e-5);
    EXPECT_NEAR(angleAt(curve, 2.9f), 1.2, 1e-5);
    expectSameRotation(rotationAt(curve, 3), Quat());
    EXPECT_NEAR(dot(rotationAt(curve, 3), rotationAt(curve, 3)), 1, 1e-6);
}

TEST(RotationCurve, TurnsSmoothlyThroughItsNeighbours)
{
    const double angles[4] = {0, 0.5, 1.5, 1.75};
    for (std::uint32_t mode : {KeyModeBezier, KeyModeTcb}) {
        RotationKeyframe curve;
        for (int i = 0; i < 4; ++i)
            addKey(curve, float(i), i == 2 ? -turn(angles[i]) : turn(angles[i]), mode, i == 1 ? 0.5f : 0.0f);
        for (double u : {0.0, 0.25, 0.5, 0.9}) {
            // With an ease from of one half, k is 2/3; Bezier keys don't ease.
            const double eased = mode == KeyModeBezier ? u
                                 : u < 0.5             ? 4.0 / 3 * u * u
                                                       : 2.0 / 3 * (2 * u - 0.5);
            EXPECT_NEAR(angleAt(curve, float(1 + u)), squadAngle(angles, eased), 1e-5) << mode << " at " << u;
        }
    }
}

TEST(RotationCurve, KeepsTurningOutsideItsKeys)
{
    const struct
    {
        KeyframeOOR mode;
        float time;
        double angle;
    } cases[] = {{KeyframeOOR::Constant, 9, 1.0},     {KeyframeOOR::Cycle, 2.5f, 0.4},
                 {KeyframeOOR::Oscillate, 3.5f, 0.4}, {KeyframeOOR::CycleOffset, 4.5f, 2.0},
                 {KeyframeOOR::Linear, 4, 1.8},       {KeyframeOOR::Linear, -1, -0.2},
                 {KeyframeOOR::CycleOffset, -1, -0.2}};
    for (const auto& c : cases) {
        RotationKeyframe curve;
        addKey(curve, 0, turn(0.2), KeyModeLinear);
        addKey(curve, 2, turn(1.0), KeyModeTcb);
        curve.setPreOOR(c.mode);
        curve.setPostOOR(c.mode);
        EXPECT_NEAR(angleAt(curve, c.time), c.angle, 1e-5) << unsigned(c.mode) << " at " << c.time;
    }
}

TEST(RotationCurve, IsACurveToItsUsers)
{
    std::unique_ptr<Keyframe> curve = std::make_unique<RotationKeyframe>();
    EXPECT_EQ(curve->getComponentCount(), 4u);
    EXPECT_EQ(curve->evaluate(0), nullptr);
    curve->addKey(curve->createKey(), true);
    expectSameRotation(rotationAt(*curve, 5), Quat());
    addKey(*curve, 1, turn(2), KeyModeLinear);
    std::unique_ptr<Keyframe> copy(curve->clone());
    curve.reset();
    EXPECT_NEAR(angleAt(*copy, 0.5f), 1, 1e-5);
    EXPECT_EQ(copy->evaluate(std::nanf("")), nullptr);
}
