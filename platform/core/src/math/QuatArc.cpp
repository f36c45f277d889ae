// SPDX-License-Identifier: MIT
#include "math/QuatArc.h"

#include <cmath>

namespace helvantine
{

Quat interpolateArc(const Quat& a, const Quat& b, float t)
{
    const Quat sum(a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w);
    const Quat difference(a.x - b.x, a.y - b.y, a.z - b.z, a.w - b.w);
    // Half the angle, exact for small angles too.
    const float half = std::atan2(std::sqrt(dot(difference, difference)), std::sqrt(dot(sum, sum)));
    const float sine = std::sin(2 * half);
    if (half > 1.0f && sine < 1e-4f)
        return a; // opposite quaternions are one rotation, and no arc between them is better than another
    const float fromA = half < 1e-4f ? 1 - t : std::sin((1 - t) * 2 * half) / sine;
    const float fromB = half < 1e-4f ? t : std::sin(t * 2 * half) / sine;
    return {fromA * a.x + fromB * b.x, fromA * a.y + fromB * b.y, fromA * a.z + fromB * b.z,
            fromA * a.w + fromB * b.w};
}

Vec3 getTurn(const Quat& a, const Quat& b)
{
    const Quat turn = QuatMultiply(b, QuatConjugate(a));
    const Vec3 v = turn.w < 0.0f ? Vec3(-turn.x, -turn.y, -turn.z) : Vec3(turn.x, turn.y, turn.z);
    return normalize(v) * std::atan2(length(v), std::abs(turn.w));
}

Quat applyTurn(const Quat& q, const Vec3& halfVector)
{
    return QuatMultiply(QuatFromAxisAngle(halfVector, 2 * length(halfVector)), q);
}

} // namespace helvantine
