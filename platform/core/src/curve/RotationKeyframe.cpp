// SPDX-License-Identifier: MIT
#include <helvantine/core/RotationKeyframe.h>

#include "math/QuatArc.h"

#include <cmath>

namespace helvantine
{

RotationKeyframe::RotationKeyframe() : Keyframe(4) {}

const float* RotationKeyframe::evaluate(float time)
{
    float u;
    if (!enterPiece(time, u))
        return nullptr;
    const Quat rotation = normalize(interpolate(u));
    m_result[0] = rotation.x;
    m_result[1] = rotation.y;
    m_result[2] = rotation.z;
    m_result[3] = rotation.w;
    return m_result;
}

RotationKeyframe* RotationKeyframe::clone() const
{
    return new RotationKeyframe(*this);
}

Key* RotationKeyframe::createKey() const
{
    Key* key = Keyframe::createKey();
    key->values[3] = 1.0f;
    return key;
}

Quat RotationKeyframe::interpolate(float u) const
{
    switch (m_motion) {
    case Motion::Arc:
        return interpolateArc(m_from, m_to, u);
    case Motion::Smooth:
        return interpolateArc(interpolateArc(m_from, m_to, u), interpolateArc(m_innerFrom, m_innerTo, u),
                              2 * u * (1 - u));
    case Motion::Spin:
        return applyTurn(m_from, m_velocity * u);
    case Motion::Hold:
        break;
    }
    return m_from;
}

void RotationKeyframe::prepare(const Piece& piece)
{
    m_ease = Ease();
    m_motion = Motion::Hold;
    m_from = rotationAt(piece.key);
    if (piece.kind == Piece::Segment)
        prepareSegment(piece.key);
    else if (piece.kind == Piece::Extrapolate)
        prepareSpin(piece);
    if (piece.turns != 0.0)
        applyTurns(piece.turns);
}

void RotationKeyframe::prepareSegment(std::size_t key)
{
    const std::uint32_t mode = keyAt(key).mode;
    if (mode == KeyModeHold)
        return;
    m_ease = getEase(key);
    m_to = rotationAt(key + 1);
    m_innerTo = innerAt(key + 1);
    if (dot(m_from, m_to) < 0.0f) {
        m_to = -m_to;
        m_innerTo = -m_innerTo;
    }
    m_innerFrom = innerAt(key);
    m_motion = mode == KeyModeBezier || mode == KeyModeTcb ? Motion::Smooth : Motion::Arc;
}

/// A smooth segment has at an end of the curve the speed of the plain arc, so one formula serves all modes.
void RotationKeyframe::prepareSpin(const Piece& piece)
{
    if (keyAt(piece.slopeKey).mode == KeyModeHold)
        return;
    const Ease ease = getEase(piece.slopeKey);
    const double slope = piece.key == 0 ? ease.getSlopeAtStart() : ease.getSlopeAtEnd();
    m_velocity = getTurn(rotationAt(piece.slopeKey), rotationAt(piece.slopeKey + 1)) *
                 static_cast<float>(slope / getSpan(piece.slopeKey));
    m_motion = Motion::Spin;
}

void RotationKeyframe::applyTurns(double turns)
{
    const Quat last = rotationAt(getSortedCount() - 1);
    const Quat oneTurn = QuatMultiply(QuatConjugate(rotationAt(0)), last);
    const Vec3 half = getTurn(Quat(), oneTurn);
    // Whole circles are taken out first: after many turns a float would lose the angle.
    const double size = length(half);
    const double angle = std::remainder(2.0 * turns * size, 2.0 * 3.14159265358979323846);
    const Quat offset = QuatFromAxisAngle(half, static_cast<float>(angle));
    for (Quat* rotation : {&m_from, &m_to, &m_innerFrom, &m_innerTo})
        *rotation = QuatMultiply(*rotation, offset);
}

Quat RotationKeyframe::rotationAt(std::size_t key) const
{
    const float* values = keyAt(key).values;
    return normalize(Quat(values[0], values[1], values[2], values[3]));
}

/// The inner quaternion of a smooth curve at a key; the key itself at an end of the curve.
Quat RotationKeyframe::innerAt(std::size_t key) const
{
    const Quat rotation = rotationAt(key);
    if (key == 0 || key + 1 == getSortedCount())
        return rotation;
    const Vec3 turns = getTurn(rotation, rotationAt(key - 1)) + getTurn(rotation, rotationAt(key + 1));
    return applyTurn(rotation, turns * -0.25f);
}

} // namespace helvantine
