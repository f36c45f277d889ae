// SPDX-License-Identifier: MIT
#include "MathSupport.h"

#include <helvantine/core/AxisAlignedBox.h>

#include <limits>

using namespace helvantine;

namespace
{

/// A general transform without shear.
Matrix makeTransform(const Vec3& scale)
{
    const Matrix rotation =
        MatrixMultiply(MatrixRotateX(0.3f), MatrixMultiply(MatrixRotateY(-1.1f), MatrixRotateZ(2.0f)));
    return MatrixMultiply(MatrixScaling(scale), MatrixMultiply(rotation, MatrixTranslation(4, -5, 6)));
}

} // namespace

TEST(Matrix, AppliesTheLeftFactorFirst)
{
    const Matrix m = MatrixMultiply(MatrixScaling(2, 3, 4), MatrixTranslation(10, 20, 30));
    expectNear(MatrixTransformCoord({1, 1, 1}, m), {12, 23, 34});
    expectNear(MatrixTransformNormal({1, 1, 1}, m), {2, 3, 4});
    EXPECT_EQ(MatrixGetTranslation(m), Vec3(10, 20, 30));

    Matrix inPlace = MatrixScaling(2, 3, 4);
    MatrixMultiply(&inPlace, inPlace, MatrixTranslation(10, 20, 30));
    EXPECT_EQ(inPlace, m);
    MatrixTranspose(&inPlace, inPlace);
    EXPECT_EQ(inPlace[0][3], 10.0f);
    EXPECT_EQ(MatrixTranspose(inPlace), m);
}

TEST(Matrix, TurnsEachAxisTowardsTheNext)
{
    const float quarter = s_pi / 2;
    expectNear(MatrixTransformNormal({0, 1, 0}, MatrixRotateX(quarter)), {0, 0, 1});
    expectNear(MatrixTransformNormal({0, 0, 1}, MatrixRotateY(quarter)), {1, 0, 0});
    expectNear(MatrixTransformNormal({1, 0, 0}, MatrixRotateZ(quarter)), {0, 1, 0});

    expectNear(MatrixFromAxisAngle({3, 0, 0}, 0.7f), MatrixRotateX(0.7f));
    expectNear(MatrixFromAxisAngle({0, 0.1f, 0}, 0.7f), MatrixRotateY(0.7f));
    expectNear(MatrixFromAxisAngle({0, 0, -1}, 0.7f), MatrixRotateZ(-0.7f));
    EXPECT_EQ(MatrixFromAxisAngle({0, 0, 0}, 0.7f), Matrix());
    // A third of a turn about the diagonal takes x to y, y to z and z to x.
    expectNear(MatrixTransformNormal({1, 2, 3}, MatrixFromAxisAngle({1, 1, 1}, s_pi * 2 / 3)), {3, 1, 2});
}

TEST(Matrix, IsUndoneByItsInverse)
{
    for (const Vec3& scale : {Vec3(1, 1, 1), Vec3(-2, 3, 0.5f), Vec3(1e-6f, 1e-6f, 1e-6f), Vec3(1e4f, 1, 1)})
    {
        const Matrix m = makeTransform(scale);
        Matrix inverse = m;
        EXPECT_TRUE(MatrixInverse(&inverse, inverse));
        expectNear(MatrixMultiply(inverse, m), Matrix(), 1e-4f);
    }
    const Matrix chain =
        MatrixMultiply(makeTransform({1, 1, 1}), MatrixPerspectiveFov(0.8f, 1.5f, 0.1f, 4096));
    expectNear(MatrixMultiply(MatrixInverse(chain), chain), Matrix(), 2e-3f);
}

TEST(Matrix, GivesIdentityForWhatHasNoInverse)
{
    Matrix equalRows = makeTransform({1, 1, 1});
    for (int column = 0; column < 4; ++column)
        equalRows[2][column] = equalRows[1][column];
    Matrix notANumber;
    notANumber[1][1] = std::numeric_limits<float>::quiet_NaN();
    for (const Matrix& m : {MatrixScaling(1, 0, 1), equalRows, notANumber}) {
        Matrix inverse = MatrixScaling(9, 9, 9);
        EXPECT_FALSE(MatrixInverse(&inverse, m));
        EXPECT_EQ(inverse, Matrix());
    }
}

TEST(Matrix, ComesApartIntoScaleRotationTranslation)
{
    for (const Vec3& scale :
         {Vec3(1, 2, 3), Vec3(-1, 2, 3), Vec3(1, -2, 3), Vec3(-1, -2, -3), Vec3(1e-15f, 1, 1)})
    {
        const Matrix m = makeTransform(scale);
        Vec3 position, parts;
        Quat rotation;
        ASSERT_TRUE(MatrixDecompose(m, position, parts, rotation));
        const bool mirrored = scale.x * scale.y * scale.z < 0;
        EXPECT_EQ(parts.x < 0, mirrored);
        EXPECT_TRUE(parts.y > 0 && parts.z > 0);
        expectNear(position, {4, -5, 6});
        expectNear(MatrixMultiply(MatrixScaling(parts),
                                  MatrixMultiply(MatrixFromQuat(rotation), MatrixTranslation(position))),
                   m);
    }
    Vec3 position, scale;
    Quat rotation(1, 0, 0, 0);
    EXPECT_FALSE(MatrixDecompose(makeTransform({2, 0, 3}), position, scale, rotation));
    EXPECT_EQ(rotation, Quat());
    expectNear(position, {4, -5, 6});
    expectNear(scale, {2, 0, 3});
}

TEST(Matrix, DropsShearWhenItComesApart)
{
    Matrix sheared;
    sheared[1][0] = 1.0f; // y leans towards x
    Vec3 position, scale;
    Quat rotation;
    ASSERT_TRUE(MatrixDecompose(sheared, position, scale, rotation));
    expectSameRotation(rotation, Quat());
}

TEST(Matrix, MirrorsAtAPlane)
{
    expectNear(MatrixTransformCoord({1, 2, 3}, MatrixReflect({0, 1, 0, -5})), {1, 8, 3});
    expectNear(MatrixTransformCoord({1, 2, 3}, MatrixReflect({0, 10, 0, -50})), {1, 8, 3});
    EXPECT_EQ(MatrixReflect({0, 0, 0, 1}), Matrix());
}

TEST(Matrix, PointsForwardAtUnitLength)
{
    expectNear(MatrixGetForward(MatrixMultiply(MatrixScaling(9, 9, 9), MatrixRotateY(s_pi / 2))), {1, 0, 0});
    EXPECT_EQ(MatrixGetForward(MatrixScaling(0, 0, 0)), Vec3(0, 0, 1));
}

TEST(Quat, AgreesWithMatrices)
{
    const Quat a = QuatFromAxisAngle({1, 2, 3}, 1.0f);
    const Quat b = QuatFromAxisAngle({-2, 0.5f, 1}, 2.5f);
    expectNear(MatrixFromQuat(QuatMultiply(a, b)), MatrixMultiply(MatrixFromQuat(a), MatrixFromQuat(b)));
    expectSameRotation(QuatMultiply(a, QuatConjugate(a)), Quat());
    // One for each component that can be the largest.
    for (const Vec3& axis : {Vec3(1, 0.1f, 0.2f), Vec3(0.1f, 1, 0.2f), Vec3(0.1f, 0.2f, -1)}) {
        for (float angle : {0.2f, 3.0f, 6.0f}) {
            const Quat q = QuatFromAxisAngle(axis, angle);
            expectSameRotation(QuatFromMatrix(MatrixFromQuat(q)), q);
        }
    }
}

TEST(Quat, SlerpsAtConstantSpeedOnTheShorterArc)
{
    const Quat end = QuatFromAxisAngle({0, 1, 0}, 2.0f);
    expectSameRotation(QuatSlerp(Quat(), end, 0.25f), QuatFromAxisAngle({0, 1, 0}, 0.5f));
    expectSameRotation(QuatSlerp(Quat(), -end, 0.25f), QuatFromAxisAngle({0, 1, 0}, 0.5f));
    const Quat close = QuatFromAxisAngle({0, 1, 0}, 1e-6f);
    EXPECT_NEAR(QuatSlerp(Quat(), close, 0.5f).y, 2.5e-7f, 1e-9f);
}

TEST(Quat, GivesTheAnglesThatMakeItsRotation)
{
    const float quarter = s_pi / 2;
    for (const Vec3& angles : {Vec3(0.1f, 0.2f, 0.3f), Vec3(-2, 1.5f, 3), Vec3(3, -1, -3),
                               Vec3(0.4f, quarter, 0.9f), Vec3(0.4f, -quarter, 0.9f)})
    {
        const Matrix m = MatrixMultiply(MatrixRotateX(angles.x),
                                        MatrixMultiply(MatrixRotateY(angles.y), MatrixRotateZ(angles.z)));
        const Quat q = QuatFromMatrix(m);
        const Matrix again = MatrixMultiply(
            MatrixRotateX(QuatGetPitch(q, false)),
            MatrixMultiply(MatrixRotateY(QuatGetYaw(q, false)), MatrixRotateZ(QuatGetRoll(q, false))));
        expectNear(again, m, 2e-3f);
    }
    EXPECT_NEAR(QuatGetYaw(QuatFromAxisAngle({0, 1, 0}, 2), false), s_pi - 2, 1e-5f);
    EXPECT_NEAR(QuatGetPitch(QuatFromAxisAngle({1, 0, 0}, 2), true), 2, 1e-5f);
    EXPECT_NEAR(QuatGetYaw(QuatFromAxisAngle({0, 1, 0}, 2), true), 2, 1e-5f);
    EXPECT_NEAR(QuatGetRoll(QuatFromAxisAngle({0, 0, 1}, 2), true), 2, 1e-5f);
}

TEST(AxisAlignedBox, BecomesTheBoundsOfItsTurnedCorners)
{
    AxisAlignedBox box;
    box.setMinMax({-1, -2, -3}, {1, 2, 3});
    box.transform(MatrixMultiply(MatrixRotateZ(s_pi / 4), MatrixTranslation(10, 0, 0)));
    const float reach = 3 * std::sqrt(0.5f);
    expectNear(box.minimum, {10 - reach, -reach, -3});
    expectNear(box.maximum, {10 + reach, reach, 3});
}

TEST(AxisAlignedBox, StaysEmptyUntilSomethingWidensIt)
{
    AxisAlignedBox box;
    EXPECT_FALSE(box.isEmpty());
    box.reset();
    EXPECT_TRUE(box.isEmpty());
    EXPECT_EQ(box.minimum.x, 3.402823466e38f);
    EXPECT_EQ(box.maximum.z, -3.402823466e38f);

    const AxisAlignedBox empty = box;
    box.transform(MatrixTranslation(1, 2, 3));
    EXPECT_EQ(box, empty);
    box.widen(Vec3(1, 2, 3));
    box.widen(empty);
    EXPECT_EQ(box, AxisAlignedBox({1, 2, 3}, {1, 2, 3}));
    box.widen(AxisAlignedBox({0, 5, 0}, {0, 6, 9}));
    EXPECT_EQ(box, AxisAlignedBox({0, 2, 0}, {1, 6, 9}));
}

TEST(AxisAlignedBox, KeepsWhatItHasWhereAnAxisIsInverted)
{
    const AxisAlignedBox inverted({0, 5, 0}, {1, -5, 1});
    EXPECT_FALSE(inverted.isEmpty());
    AxisAlignedBox box = inverted;
    box.widen(Vec3(3, 0, -2));
    EXPECT_EQ(box, AxisAlignedBox({0, 0, -2}, {3, 0, 1}));
    box.widen(inverted);
    EXPECT_EQ(box, AxisAlignedBox({0, 0, -2}, {3, 0, 1}));
    box = inverted;
    box.transform(MatrixTranslation(1, 0, 0));
    EXPECT_EQ(box, AxisAlignedBox({1, -5, 0}, {2, 5, 1}));
}

TEST(Vector, NormalizesWhateverItsSize)
{
    EXPECT_EQ(normalize(Vec3()), Vec3());
    expectNear(normalize(Vec3(0, 3e-30f, 4e-30f)), {0, 0.6f, 0.8f});
    expectNear(normalize(Vec3(3e30f, 0, 4e30f)), {0.6f, 0, 0.8f});
    expectNear(cross({1, 0, 0}, {0, 1, 0}), {0, 0, 1});
}
