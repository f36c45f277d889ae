// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Keyframe.h>
#include <helvantine/core/Quat.h>

namespace helvantine
{

/// A curve of rotations: unit quaternions x, y, z, w, whatever the length of those in the keys.
///
/// Linear keys turn at constant speed on the shorter arc. Bezier and TCB keys turn smoothly through their
/// neighbours, TCB with its ease; tangents, tension, continuity and bias aren't read. The offset of a cycle is
/// the rotation from the first key to the last, applied once more each turn.
class HELVANTINE_CORE_API RotationKeyframe : public Keyframe
{
public:
    RotationKeyframe();

    const float* evaluate(float time) override;
    RotationKeyframe* clone() const override;
    Key* createKey() const override; ///< identity

private:
    enum class Motion
    {
        Hold,
        Arc,    ///< slerp from m_from to m_to
        Smooth, ///< squad with m_innerFrom and m_innerTo
        Spin,   ///< from m_from with m_velocity
    };

    RotationKeyframe(const RotationKeyframe& other) = default;

    Quat interpolate(float u) const;
    void prepare(const Piece& piece) override;
    void prepareSegment(std::size_t key);
    void prepareSpin(const Piece& piece);
    void applyTurns(double turns);
    Quat rotationAt(std::size_t key) const;
    Quat innerAt(std::size_t key) const;

    Motion m_motion = Motion::Hold;
    Quat m_from;
    Quat m_to;
    Quat m_innerFrom;
    Quat m_innerTo;
    Vec3 m_velocity; ///< half the rotation vector per second, in the space of m_from
};

} // namespace helvantine
