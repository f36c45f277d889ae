// SPDX-License-Identifier: MIT
#include <helvantine/editor/Gizmo2D.h>

namespace helvantine
{

Gizmo2D::Gizmo2D() = default;

Gizmo2D::~Gizmo2D() = default;

void Gizmo2D::set(const GizmoInfo& info)
{
    m_info = info;
}

} // namespace helvantine
