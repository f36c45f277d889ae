// SPDX-License-Identifier: MIT
// What is said of the effects' resource properties, held against what the effects do.
#include "ResourceUse.h"

#include <gtest/gtest.h>

#include <helvantine/host/Application.h>
#include <helvantine/host/Document.h>
#include <helvantine/object/Property.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/resource/MaterialShaderResource.h>
#include <helvantine/resource/RenderTargetResource.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/ShaderResource.h>
#include <helvantine/resource/TextureResource.h>
#include <helvantine/schematics/SchematicsNode.h>
#include <helvantine/timeline/Effect.h>

#include <algorithm>
#include <filesystem>
#include <set>

namespace helvantine::test
{

namespace
{

using tool::ResourceUse;

class ResourceUses : public testing::Test
{
protected:
    ResourceUses() : m_application(std::filesystem::path(HELVANTINE_COMMAND).parent_path().c_str(), false)
    {
        m_application.newDocument(nullptr);
        for (Resource* resource :
             std::initializer_list<Resource*>{new TextureResource, new RenderTargetResource,
                                              new ShaderResource, new MaterialShaderResource})
        {
            m_application.getDocument()->getResourceManager()->getRoot()->addResource(resource);
            m_resources.emplace_back(resource);
        }
        for (const SmartRef<PluginFactory>& factory : m_application.getPluginManager()->m_factories) {
            for (const PluginInfo* info : factory->m_plugins) {
                if (info->kind == PluginEffect)
                    m_objects.emplace_back(createPluginOfType<Effect>(info->id));
                else if (info->kind == PluginNode)
                    m_objects.emplace_back(createPluginOfType<SchematicsNode>(info->id));
            }
        }
    }

    static std::vector<PropertyBase*> getReferences(const Object& object)
    {
        std::vector<PropertyBase*> references;
        for (const SmartRef<PropertyGroup>& group : object.m_inputGroups)
            std::copy_if(group->m_properties.begin(), group->m_properties.end(),
                         std::back_inserter(references),
                         [](const PropertyBase* property) { return property->m_type == KindResource; });
        return references;
    }

    /// Whether the effect holds on to the resource when the property names it.
    static bool takes(PropertyBase& property, const Resource& resource)
    {
        const int before = resource.getRefCount();
        property.fromString(uniqueIdToString(resource.getId()).c_str());
        const bool isTaken = resource.getRefCount() > before;
        property.fromString("");
        return isTaken;
    }

    /// A class may need less than the one it derives from takes, and holds on to that all the same.
    static bool isSaidToTake(const TypeInfo& owner, const std::string& property, const Resource& resource)
    {
        for (const TypeInfo* type = &owner; type; type = type->parent) {
            const ResourceUse* use = tool::findResourceUse(*type, property);
            for (const char* name : use ? std::span(use->takes) : std::span<const char* const>())
                if (name && std::string_view(name) == resource.getTypeInfo()->name)
                    return true;
        }
        return false;
    }

    Application m_application;
    std::vector<SmartRef<Resource>> m_resources;
    std::vector<SmartRef<Object>> m_objects; ///< one of each class of effects and nodes
};

TEST_F(ResourceUses, AreWhatTheEffectsHoldOnTo)
{
    int checked = 0;
    for (const SmartRef<Object>& object : m_objects) {
        if (object->getPluginInfo()->kind != PluginEffect)
            continue;
        const TypeInfo& type = *object->getTypeInfo();
        for (PropertyBase* property : getReferences(*object)) {
            EXPECT_NE(tool::findResourceUse(type, property->m_name), nullptr)
                << type.name << " " << property->m_name;
            for (const SmartRef<Resource>& resource : m_resources) {
                EXPECT_EQ(takes(*property, *resource), isSaidToTake(type, property->m_name, *resource))
                    << type.name << " " << property->m_name << " " << resource->getTypeInfo()->name;
                ++checked;
            }
        }
    }
    EXPECT_GT(checked, 0);
}

TEST_F(ResourceUses, NamePropertiesThatAreThere)
{
    for (const SmartRef<Object>& object : m_objects) {
        const std::string name = object->getTypeInfo()->name;
        const std::vector<PropertyBase*> references = getReferences(*object);
        const auto expectReference = [&](const char* property) {
            EXPECT_TRUE(std::any_of(references.begin(), references.end(),
                                    [&](const PropertyBase* other) { return other->m_name == property; }))
                << name << " has no " << property;
        };
        for (const ResourceUse& use : tool::getResourceUses()) {
            if (name == use.owner)
                expectReference(use.property);
        }
        for (const tool::EffectDraw& draw : tool::getEffectDraws(*object->getTypeInfo())) {
            if (draw.target)
                expectReference(draw.target);
            for (const char* source : draw.sources) {
                if (source)
                    expectReference(source);
            }
        }
    }
}

} // namespace

} // namespace helvantine::test
