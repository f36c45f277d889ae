// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Quat.h>

namespace helvantine
{

/// From a to b on the arc between the two as they stand, which is the longer one where their dot product is
/// below 0.
Quat interpolateArc(const Quat& a, const Quat& b, float t);

/// Half the rotation vector (axis times angle) of the rotation that leads from a to b on the shorter arc, in
/// the space of a.
Vec3 getTurn(const Quat& a, const Quat& b);

/// `q`, turned further by half a rotation vector in its own space.
Quat applyTurn(const Quat& q, const Vec3& halfVector);

} // namespace helvantine
