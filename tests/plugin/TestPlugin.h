// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Property.h>
#include <helvantine/schematics/SchematicsNode.h>
#include <helvantine/timeline/Effect.h>

#include <string>
#include <vector>

/// Classes of a plugin library outside the runtime, with which tests watch what the runtime does.
namespace testplugin
{

#if defined(_WIN32)
#define TESTPLUGIN_API
#else
#define TESTPLUGIN_API __attribute__((visibility("default")))
#endif

/// What recording classes have noted since the last call, in one line, and forgets it.
TESTPLUGIN_API std::string takeLog();

/// Notes its hooks as "name hook@relativeFrame". Has a property of each kind.
class TESTPLUGIN_API RecordingEffect : public helvantine::Effect
{
    HELVANTINE_PLUGIN_CLASS(RecordingEffect)

    RecordingEffect();

    void onLoaded() override;
    void onUpdate(helvantine::FxUpdateContext& context) override;
    void onPreRender(helvantine::FxRenderContext& context) override;
    void onRender(helvantine::FxRenderContext& context) override;
    void onPostRender(helvantine::FxRenderContext& context) override;
    void onStart(helvantine::FxUpdateContext& context) override;
    void onStop() override;

    helvantine::SmartRef<helvantine::PropertyGroup> m_inputs;
    helvantine::FloatProperty m_float;
    helvantine::IntProperty m_int;
    helvantine::Vec2Property m_vec2;
    helvantine::Vec3Property m_vec3;
    helvantine::Vec4Property m_vec4;
    helvantine::Vec4Property m_rotation;
    helvantine::Vec4Property m_color;
    helvantine::BoolProperty m_bool;
    helvantine::StringProperty m_string;
    helvantine::StringProperty m_resource;
    helvantine::IntProperty m_enum;
    helvantine::SmartRef<helvantine::PropertyGroup> m_outputs;
    helvantine::FloatProperty m_output;

    float m_relativeTime = -1.0f; ///< of the last onUpdate
};

/// Adds two numbers and one more.
class TESTPLUGIN_API SumNode : public helvantine::SchematicsNode
{
    HELVANTINE_PLUGIN_CLASS(SumNode)

    SumNode();

    void update(helvantine::FxUpdateContext& context) override;

    helvantine::SmartRef<helvantine::PropertyGroup> m_inputs;
    helvantine::FloatProperty m_a;
    helvantine::FloatProperty m_b;
    helvantine::SmartRef<helvantine::PropertyGroup> m_outputs;
    helvantine::FloatProperty m_sum;
    int m_updates = 0;
};

/// Takes a text.
class TESTPLUGIN_API TextNode : public helvantine::SchematicsNode
{
    HELVANTINE_PLUGIN_CLASS(TextNode)

    TextNode();

    helvantine::SmartRef<helvantine::PropertyGroup> m_inputs;
    helvantine::StringProperty m_text;
};

} // namespace testplugin
