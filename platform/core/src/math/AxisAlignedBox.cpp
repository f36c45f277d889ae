// SPDX-License-Identifier: MIT
#include <helvantine/core/AxisAlignedBox.h>

#include <helvantine/core/Matrix.h>

#include <algorithm>
#include <limits>

namespace helvantine
{

void AxisAlignedBox::setMinMax(const Vec3& min, const Vec3& max)
{
    minimum = min;
    maximum = max;
}

namespace
{

constexpr float s_limit = std::numeric_limits<float>::max();
constexpr AxisAlignedBox s_empty({s_limit, s_limit, s_limit}, {-s_limit, -s_limit, -s_limit});

} // namespace

void AxisAlignedBox::reset()
{
    *this = s_empty;
}

bool AxisAlignedBox::isEmpty() const
{
    return *this == s_empty;
}

void AxisAlignedBox::widen(const Vec3& point)
{
    widen(AxisAlignedBox(point, point));
}

void AxisAlignedBox::widen(const AxisAlignedBox& box)
{
    minimum = {std::min(minimum.x, box.minimum.x), std::min(minimum.y, box.minimum.y),
               std::min(minimum.z, box.minimum.z)};
    maximum = {std::max(maximum.x, box.maximum.x), std::max(maximum.y, box.maximum.y),
               std::max(maximum.z, box.maximum.z)};
}

void AxisAlignedBox::transform(const Matrix& m)
{
    if (isEmpty())
        return;
    AxisAlignedBox bounds;
    bounds.reset();
    for (int corner = 0; corner < 8; ++corner) {
        bounds.widen(
            MatrixTransformCoord({corner & 1 ? maximum.x : minimum.x, corner & 2 ? maximum.y : minimum.y,
                                  corner & 4 ? maximum.z : minimum.z},
                                 m));
    }
    *this = bounds;
}

} // namespace helvantine
