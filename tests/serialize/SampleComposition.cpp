// SPDX-License-Identifier: MIT
#include "SampleComposition.h"

#include <helvantine/core/Keyframe.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/timeline/Layer.h>

namespace testplugin
{

using namespace helvantine;

namespace
{

/// Four keys, each of another mode.
void addCurve(PropertyBase& property)
{
    property.enableKeyframe(true);
    Keyframe& curve = *property.m_keyframe;
    curve.setPreOOR(KeyframeOOR::Cycle);
    curve.setPostOOR(KeyframeOOR::Oscillate);
    for (std::uint32_t mode = 0; mode < 4; ++mode) {
        Key* key = curve.createKey();
        const auto number = static_cast<float>(mode);
        key->time = number * 0.3f;
        key->mode = mode;
        key->paramA = number / 7.0f;
        key->paramE = -number;
        key->vectorA = {number, 1.0f, 2.0f, 1e-20f};
        key->tag = static_cast<std::int32_t>(mode) * 17;
        key->values[0] = number;
        curve.addKey(key, false);
    }
    curve.sort();
}

} // namespace

SampleComposition::SampleComposition() : composition(new Composition(true, true))
{
    composition->setName("sample");
    composition->setFov(33.0f);
    outer = addEffect(*composition->m_rootEffect, "outer", 5, 50);
    inner = addEffect(*outer, "inner", -1, 2);
    addEffect(*composition->m_rootEffect, "other", 0, 10)->setEnabled(false);

    outer->m_float = 0.1f;
    outer->m_int = -5;
    outer->m_vec2 = Vec2{1e9f, -1e-7f};
    outer->m_vec3 = Vec3{1, 2, 3};
    outer->m_vec3.m_viewSize = 99;
    outer->m_vec4 = Vec4{4, 3, 2, 1};
    outer->m_color = Vec4{0.333333f, 0.5f, 0, 1};
    outer->m_bool = true;
    outer->m_string = "two\nlines, \"quoted\" and \xC3\xA4";
    outer->m_resource = uniqueIdToString(generateUniqueId());
    outer->m_enum = 7;
    for (PropertyBase* property :
         std::initializer_list<PropertyBase*>{&outer->m_float, &outer->m_int, &outer->m_vec2, &outer->m_vec3,
                                              &outer->m_rotation, &inner->m_color})
        addCurve(*property);

    Schematics& graph = *composition->m_schematics;
    consumer = new SumNode;
    producer = new SumNode;
    graph.addNode(consumer);
    graph.addNode(outer->m_effectNode.get());
    graph.addNode(producer);
    outer->m_effectNode->setPosition({11, -12});
    graph.addLink(new PropertyLink(&consumer->m_sum, &outer->m_output));
    graph.addLink(new PropertyLink(&producer->m_sum, &consumer->m_a));
    graph.addLink(new PropertyLink(&outer->m_string, &inner->m_string));

    for (const char* name : {"child a", "child b"}) {
        auto* child = new Composition(true, true);
        child->setName(name);
        composition->addComposition(child);
    }
    takeLog();
}

} // namespace testplugin
