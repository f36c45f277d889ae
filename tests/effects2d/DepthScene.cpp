// SPDX-License-Identifier: MIT
#include "DepthScene.h"

#include "EffectTest.h"

#include <helvantine/core/Matrix.h>

#include <cmath>

namespace helvantine::test
{

DepthScene::DepthScene(unsigned width, unsigned height)
{
    constexpr float angle = fov * 3.14159265f / 180;
    const float aspect = static_cast<float>(width) / static_cast<float>(height);
    m_halfHeight = std::tan(angle / 2) * farPlane;
    m_halfWidth = m_halfHeight * aspect;
    m_surface = makeImage(width, height, [&](Vec2 uv) { return look(uv); });
    m_context.fov = fov;
    m_context.farPlane = farPlane;
    MatrixPerspectiveFov(&m_context.projection, angle, aspect, 0.1f, farPlane);
}

Vec4 DepthScene::look(Vec2 uv) const
{
    const Vec3 ray((2 * uv.x - 1) * m_halfWidth / farPlane, (1 - 2 * uv.y) * m_halfHeight / farPlane, 1);
    Vec4 seen(0, 0, -1, 9); // the wall
    if (ray.y < 0 && -1.2f / ray.y < seen.w)
        seen = Vec4(0, 1, 0, -1.2f / ray.y); // the floor
    const Vec3 centre(0.4f, -0.5f, 5);
    const float a = dot(ray, ray), b = dot(ray, centre), c = dot(centre, centre) - 0.9f * 0.9f;
    if (b * b > a * c) {
        const float z = (b - std::sqrt(b * b - a * c)) / a;
        const Vec3 n = normalize(ray * z - centre);
        seen = Vec4(n.x, n.y, n.z, z);
    }
    return seen;
}

} // namespace helvantine::test
