// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Property.h>
#include <helvantine/timeline/Effect.h>

namespace helvantine
{

/// A test bed for editors: properties of many kinds, and nothing to see.
class HELVANTINE_FX_API TestEffect : public Effect
{
    HELVANTINE_PLUGIN_CLASS(TestEffect)

    TestEffect();
    ~TestEffect() override;

private:
    SmartRef<PropertyGroup> m_attributesGroup;
    StringProperty m_nameProperty;
    BoolProperty m_visible;
    Vec3Property m_position;
    Vec4Property m_rotation;
    Vec3Property m_scale;
    Vec4Property m_color;
    IntProperty m_blendMode;
};

} // namespace helvantine
