// SPDX-License-Identifier: MIT
#include "TestPlugin.h"

#include <helvantine/plugin/PluginFactory.h>

#include <utility>

namespace testplugin
{

using namespace helvantine;

namespace
{

std::string s_log;

void note(const Object& object, const std::string& what)
{
    if (!s_log.empty())
        s_log += ' ';
    s_log += object.m_name + ':' + what;
}

void note(const Object& object, const char* hook, const FxContext& context)
{
    note(object, hook + ('@' + std::to_string(context.relativeFrame)));
}

} // namespace

std::string takeLog()
{
    return std::exchange(s_log, {});
}

HELVANTINE_PLUGIN_RECORDS(RecordingEffect, Effect, PluginEffect, "A0F1C6E2-0B3D-4C7E-9A51-7C0D3E5B1A01",
                          "Test/Recording", "Recording", true)
HELVANTINE_PLUGIN_RECORDS(SumNode, LogicNode, PluginNode, "A0F1C6E2-0B3D-4C7E-9A51-7C0D3E5B1A02", "Test/Sum",
                          "Sum", true)
HELVANTINE_PLUGIN_RECORDS(TextNode, LogicNode, PluginNode, "A0F1C6E2-0B3D-4C7E-9A51-7C0D3E5B1A03",
                          "Test/Text", "Text", true)

RecordingEffect::RecordingEffect()
    : m_inputs(new PropertyGroup(this, "Inputs")), m_float(this, KindFloat, "Float"),
      m_int(this, KindInt, "Int"), m_vec2(this, KindVec2, "Vec2"), m_vec3(this, KindVec3, "Vec3"),
      m_vec4(this, KindVec4, "Vec4"), m_rotation(this, KindRotation, "Rotation"),
      m_color(this, KindColor, "Color"), m_bool(this, KindBool, "Bool"), m_string(this, KindString, "String"),
      m_resource(this, KindResource, "Resource"), m_enum(this, KindEnum, "Enum"),
      m_outputs(new PropertyGroup(this, "Outputs")), m_output(this, KindFloat, "Output")
{
    m_enum.m_enumLabels = {{0, "Off"}, {1, "On"}};
    for (PropertyBase* property :
         std::initializer_list<PropertyBase*>{&m_float, &m_int, &m_vec2, &m_vec3, &m_vec4, &m_rotation,
                                              &m_color, &m_bool, &m_string, &m_resource, &m_enum})
    {
        addProperty(property);
        m_inputs->addProperty(property);
    }
    addInputGroup(m_inputs.get());
    addProperty(&m_output);
    m_outputs->addProperty(&m_output);
    addOutputGroup(m_outputs.get());
}

void RecordingEffect::onLoaded()
{
    note(*this, "loaded");
}

void RecordingEffect::onUpdate(FxUpdateContext& context)
{
    m_relativeTime = context.relativeTime;
    note(*this, "update", context);
}

void RecordingEffect::onPreRender(FxRenderContext& context)
{
    note(*this, "pre", context);
}

void RecordingEffect::onRender(FxRenderContext& context)
{
    note(*this, "render", context);
}

void RecordingEffect::onPostRender(FxRenderContext& context)
{
    note(*this, "post", context);
}

void RecordingEffect::onStart(FxUpdateContext& context)
{
    note(*this, "start", context);
}

void RecordingEffect::onStop()
{
    note(*this, "stop");
}

SumNode::SumNode()
    : m_inputs(new PropertyGroup(this, "Inputs")), m_a(this, KindFloat, "A"), m_b(this, KindFloat, "B"),
      m_outputs(new PropertyGroup(this, "Outputs")), m_sum(this, KindFloat, "Sum")
{
    for (FloatProperty* input : {&m_a, &m_b}) {
        addProperty(input);
        m_inputs->addProperty(input);
    }
    addInputGroup(m_inputs.get());
    addProperty(&m_sum);
    m_outputs->addProperty(&m_sum);
    addOutputGroup(m_outputs.get());
}

void SumNode::update(FxUpdateContext&)
{
    ++m_updates;
    m_sum = m_a.m_value + m_b.m_value + 1.0f;
}

TextNode::TextNode() : m_inputs(new PropertyGroup(this, "Inputs")), m_text(this, KindString, "Text")
{
    m_inputs->addProperty(&m_text);
    addInputGroup(m_inputs.get());
}

namespace
{

template <class T>
void* answer(int request)
{
    if (request == PluginRequestInfo)
        return const_cast<PluginInfo*>(&T::s_plugininfo);
    return request == PluginRequestCreate ? static_cast<Plugin*>(new T) : nullptr;
}

} // namespace

HELVANTINE_PLUGIN_EXPORT const PluginFactoryInfo* helvantinePluginFactoryQuery()
{
    static const PluginFactoryInfo s_info = {stringToUniqueId("A0F1C6E2-0B3D-4C7E-9A51-7C0D3E5B1A00"), "Test",
                                             pluginApiVersion};
    return &s_info;
}

HELVANTINE_PLUGIN_EXPORT void* helvantinePluginQuery(int request, int index)
{
    switch (index) {
    case 0:
        return answer<RecordingEffect>(request);
    case 1:
        return answer<SumNode>(request);
    case 2:
        return answer<TextNode>(request);
    default:
        return nullptr;
    }
}

} // namespace testplugin
