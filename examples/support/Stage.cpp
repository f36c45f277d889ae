// SPDX-License-Identifier: MIT
#include "Stage.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>
#include <helvantine/resource/RenderTargetResource.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/Schematics.h>

#include <algorithm>

using namespace helvantine;

namespace
{

PropertyBase* findProperty(const std::vector<SmartRef<PropertyGroup>>& groups, const char* name)
{
    for (const SmartRef<PropertyGroup>& group : groups) {
        if (PropertyBase* property = group->findProperty(name))
            return property;
    }
    reportProblem("example", std::string("no property \"") + name + "\"");
    return nullptr;
}

void setNumber(ResourceImporter& importer, const char* name, int value)
{
    if (PropertyBase* property = findProperty(importer.m_inputGroups, name))
        property->fromString(formatString("%d", value).c_str());
}

} // namespace

Stage::Stage(Document& document, Composition& composition, int endFrame)
    : m_document(document), m_composition(composition), m_endFrame(endFrame)
{
}

std::string Stage::addPicture(const std::string& path)
{
    std::string& id = m_pictures[path];
    if (!id.empty())
        return id;
    const SmartRef<TextureResourceImporter> importer(new TextureResourceImporter);
    const ImportResult result = importer->import(path.c_str(), nullptr);
    if (!result.resource) {
        reportProblem("example", path + ": can't be imported");
        return id;
    }
    m_document.getResourceManager()->getRoot()->addResource(result.resource.get());
    return id = uniqueIdToString(result.resource->getId());
}

std::string Stage::addRenderTarget(const char* name, int width, int height, bool floats)
{
    const SmartRef<RenderTargetResourceImporter> importer(new RenderTargetResourceImporter);
    setNumber(*importer, "Width", width);
    setNumber(*importer, "Height", height);
    setNumber(*importer, "Format", floats ? RenderTargetResource::RGBA32F : RenderTargetResource::RGBA8);
    const ImportResult result = importer->import(nullptr, nullptr);
    if (!result.resource) {
        reportProblem("example", std::string(name) + ": " + result.message);
        return {};
    }
    result.resource->setName(name);
    m_document.getResourceManager()->getRoot()->addResource(result.resource.get());
    return uniqueIdToString(result.resource->getId());
}

Layer& Stage::addLayer(Effect& parent, const char* name, int start, int end)
{
    Layer& layer = add<Layer>(parent, name);
    layer.setStart(start);
    layer.setEnd(end);
    return layer;
}

RenderTargetEffect& Stage::addTarget(Effect& parent, const char* name, const std::string& target)
{
    RenderTargetEffect& effect = add<RenderTargetEffect>(parent, name);
    set(effect, "Render Target", target);
    return effect;
}

void Stage::placeQuad(Effect& quad, const std::string& resource, BlendMode blend, const Rect& place)
{
    set(quad, "Texture", resource);
    set(quad, "Blend", formatString("%d", static_cast<int>(blend)));
    set(quad, "Position", formatString("%f, %f, 0", place.x, place.y));
    set(quad, "Size", formatString("%f, %f", place.width, place.height));
}

void Stage::set(Effect& effect, const char* property, const std::string& value)
{
    if (PropertyBase* found = findProperty(effect.m_inputGroups, property))
        found->fromString(value.c_str());
}

void Stage::set(Effect& effect, const char* property, const Vec4& value)
{
    set(effect, property, formatString("%f, %f, %f, %f", value.x, value.y, value.z, value.w));
}

void Stage::animate(Effect& effect, const char* property, unsigned mode, const std::vector<KeyValue>& keys,
                    KeyframeOOR outside)
{
    PropertyBase* found = findProperty(effect.m_inputGroups, property);
    if (!found)
        return;
    found->enableKeyframe(true);
    Keyframe& curve = *found->m_keyframe;
    curve.setPreOOR(outside);
    curve.setPostOOR(outside);
    for (const auto& [time, value] : keys) {
        Key* key = curve.createKey();
        key->time = time;
        key->mode = mode;
        const float components[4] = {value.x, value.y, value.z, value.w};
        std::copy_n(components, curve.getComponentCount(), key->values);
        curve.addKey(key, false);
    }
    curve.sort();
}

void Stage::addNode(SchematicsNode& node, const char* name)
{
    node.setName(name);
    m_composition.m_schematics->addNode(&node);
}

void Stage::link(PropertyBase& source, PropertyBase& target)
{
    Schematics& graph = *m_composition.m_schematics;
    if (graph.canAddLink(&source, &target))
        graph.addLink(new PropertyLink(&source, &target));
    else
        reportProblem("example", "no link from \"" + source.m_name + "\" to \"" + target.m_name + '"');
}

void Stage::link(PropertyBase& source, Effect& target, const char* targetProperty)
{
    enter(target);
    if (PropertyBase* property = findProperty(target.m_inputGroups, targetProperty))
        link(source, *property);
}

void Stage::link(SchematicsNode& source, const char* output, Effect& target, const char* targetProperty)
{
    if (PropertyBase* property = findProperty(source.m_outputGroups, output))
        link(*property, target, targetProperty);
}

void Stage::link(Effect& source, const char* sourceProperty, Effect& target, const char* targetProperty)
{
    enter(source);
    if (PropertyBase* property = findProperty(source.m_inputGroups, sourceProperty))
        link(*property, target, targetProperty);
}

void Stage::enter(Effect& effect)
{
    Schematics& graph = *m_composition.m_schematics;
    if (graph.findNode(effect.m_effectNode->m_id))
        return;
    graph.addNode(effect.m_effectNode.get());
    // Below each other, on the right of whatever leads to them.
    effect.m_effectNode->setPosition({3000, 120 * static_cast<float>(m_entered++)});
}
