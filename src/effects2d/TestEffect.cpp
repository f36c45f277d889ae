// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TestEffect.h>

#include <helvantine/object/AddProperties.h>

namespace helvantine
{

TestEffect::TestEffect()
    : m_attributesGroup(new PropertyGroup(this, "Attributes")), m_nameProperty(this, KindString, "Name"),
      m_visible(this, KindBool, "Visible"), m_position(this, KindVec3, "Position"),
      m_rotation(this, KindRotation, "Rotation"), m_scale(this, KindVec3, "Scale"),
      m_color(this, KindColor, "Color"), m_blendMode(this, KindEnum, "Blend Mode")
{
    m_visible.setDefault(true);
    m_position.setDefault(Vec3());
    m_rotation.setDefault(Vec4());
    m_scale.setDefault(Vec3(1.0f, 1.0f, 1.0f));
    m_color.setDefault(Vec4(1.0f, 1.0f, 1.0f, 1.0f));
    m_blendMode.setDefault(0);
    m_blendMode.m_enumLabels = {{0, "Solid"}, {1, "Alpha"}, {2, "Additive"}};
    addProperties(*m_attributesGroup,
                  {&m_nameProperty, &m_visible, &m_position, &m_rotation, &m_scale, &m_color, &m_blendMode});
    addInputGroup(m_attributesGroup.get());
}

TestEffect::~TestEffect() = default;

} // namespace helvantine
