// SPDX-License-Identifier: MIT
#include "DocumentInfo.h"

#include "ObjectPath.h"

#include <helvantine/core/Keyframe.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/object/PropertyBase.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <cstdlib>
#include <iterator>

namespace helvantine::tool
{

namespace
{

const char* nameKind(std::uint32_t kind)
{
    constexpr const char* names[] = {"float", "int",  "vec2",   "vec3",     "vec4", "rotation",
                                     "color", "bool", "string", "resource", "enum"};
    return kind < std::size(names) ? names[kind] : "unknown";
}

Json describeProperty(const PropertyGroup& group, const PropertyBase& property)
{
    Json json = {{"group", group.m_name},
                 {"name", property.m_name},
                 {"id", uniqueIdToString(property.m_id)},
                 {"kind", nameKind(property.m_type)},
                 {"value", property.toString()}};
    const auto label = property.m_enumLabels.find(std::atoi(property.toString().c_str()));
    if (property.m_type == KindEnum && label != property.m_enumLabels.end())
        json["label"] = label->second;
    if (property.m_keyframe && !property.m_keyframe->getKeys().empty()) {
        const auto& keys = property.m_keyframe->getKeys();
        json["keys"] = {{"count", keys.size()}, {"first", keys.front()->time}, {"last", keys.back()->time}};
    }
    return json;
}

Json describeProperties(const Object& object)
{
    Json list = Json::array();
    for (const auto* groups : {&object.m_inputGroups, &object.m_outputGroups}) {
        for (const SmartRef<PropertyGroup>& group : *groups) {
            for (const PropertyBase* property : group->m_properties)
                list.push_back(describeProperty(*group, *property));
        }
    }
    return list;
}

Json describeEffects(const Object& parent, int depth)
{
    Json list = Json::array();
    for (const SmartRef<Object>& effect : parent.m_children)
        list.push_back({{"name", effect->m_name},
                        {"id", uniqueIdToString(effect->m_id)},
                        {"class", effect->getTypeInfo()->name},
                        {"enabled", effect->m_enabled},
                        {"start", effect->m_start},
                        {"end", effect->m_end},
                        {"depth", depth},
                        {"properties", describeProperties(*effect)},
                        {"effects", describeEffects(*effect, depth + 1)}});
    return list;
}

/// Those that stand for themselves: an effect's node says nothing that the effect doesn't.
Json describeNodes(const Composition& composition)
{
    Json list = Json::array();
    for (const SmartRef<SchematicsNode>& node : composition.m_schematics->m_nodes) {
        if (!node || castTo<EffectNode>(node.get()))
            continue;
        list.push_back({{"path", getPath(composition, *node)},
                        {"id", uniqueIdToString(node->m_id)},
                        {"class", node->getTypeInfo()->name},
                        {"properties", describeProperties(*node)}});
    }
    return list;
}

Json describeLinks(const Composition& composition)
{
    Json list = Json::array();
    for (const SmartRef<PropertyLink>& link : composition.m_schematics->m_links)
        list.push_back(
            {{"from", getPath(composition, *link->m_source)}, {"to", getPath(composition, *link->m_target)}});
    return list;
}

Json describeComposition(const Composition& composition)
{
    Json children = Json::array();
    for (const SmartRef<Composition>& child : composition.m_compositions)
        children.push_back(describeComposition(*child));
    return {{"name", composition.m_name},
            {"id", uniqueIdToString(composition.m_id)},
            {"folder", composition.m_isFolder},
            {"startFrame", composition.getStartFrame()},
            {"endFrame", composition.getEndFrame()},
            {"effects", describeEffects(*composition.m_rootEffect, 0)},
            {"nodes", describeNodes(composition)},
            {"links", describeLinks(composition)},
            {"compositions", std::move(children)}};
}

Json describeResources(const Resource& parent)
{
    Json list = Json::array();
    for (const SmartRef<Resource>& resource : parent.getChildren()) {
        const ResourceImporter* importer = resource->getImporter();
        Json json = {{"name", resource->getName()},
                     {"id", uniqueIdToString(resource->getId())},
                     {"class", resource->getTypeInfo()->name},
                     {"folder", resource->isFolder()},
                     {"importer", importer ? Json(importer->getPluginInfo()->name) : Json()},
                     {"files", resource->getFiles()},
                     {"children", describeResources(*resource)}};
        list.push_back(std::move(json));
    }
    return list;
}

} // namespace

Json describeDocument(const std::string& path, const Document& document)
{
    const ProjectSettings& settings = *document.getProjectSettings();
    return {{"document", path},
            {"version", document.getVersion()},
            {"settings",
             {{"title", settings.getTitle()},
              {"frameRate", settings.getFrameRate()},
              {"width", settings.getWidth()},
              {"height", settings.getHeight()}}},
            {"resources", describeResources(*document.getResourceManager()->getRoot())},
            {"root", describeComposition(*document.getCompositionManager()->getRoot())}};
}

} // namespace helvantine::tool
