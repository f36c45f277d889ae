// SPDX-License-Identifier: MIT
// Properties that name resources.
#include "DocumentCheck.h"
#include "ObjectPath.h"
#include "ResourceUse.h"

#include <helvantine/object/Property.h>
#include <helvantine/resource/RenderTargetResource.h>
#include <helvantine/resource/ResourceManager.h>

#include <algorithm>
#include <string_view>

namespace helvantine::tool
{

namespace
{

using Findings = std::vector<Finding>;

std::string quote(const std::string& text)
{
    constexpr std::size_t mostShown = 80;
    return text.size() <= mostShown ? '"' + text + '"' : '"' + text.substr(0, mostShown) + "\"…";
}

/// Looks at the colour format that the recipe of a render target asks for.
bool holdsDepth(const Resource& target)
{
    const PropertyGroup* group =
        target.getImporter() ? target.getImporter()->findGroup("Attributes") : nullptr;
    const PropertyBase* format = group ? group->findProperty("Format") : nullptr;
    return !format || format->toString() == std::to_string(RenderTargetResource::RGBA32F);
}

std::string describe(const Resource& resource)
{
    return std::string("names the ") + (resource.isFolder() ? "folder" : "resource") + " \"" +
           getPath(resource) + "\" of class " + resource.getTypeInfo()->name;
}

void checkUse(const ResourceUse& use, const Resource& resource, const std::string& path, Findings& findings)
{
    std::string taken;
    bool isTaken = false;
    for (const char* type : use.takes) {
        if (!type)
            break;
        isTaken |= isOfClass(resource, type);
        taken += (taken.empty() ? "" : " or ") + std::string(type);
    }
    if (!isTaken)
        findings.push_back({"reference-mistyped", path, describe(resource), "choose a " + taken});
    else if (use.readsDepth && !holdsDepth(resource))
        findings.push_back({"depth-missing", path,
                            "reads distances from the alpha of \"" + getPath(resource) +
                                "\", whose format holds none above 1",
                            "give the render target the format RGBA32F"});
}

void checkReference(const Object& owner, const PropertyBase& property, const std::string& path,
                    Findings& findings)
{
    const std::string text = property.toString();
    if (text.empty())
        return;
    const UniqueId id = stringToUniqueId(text.c_str());
    const Resource* resource = findResourceOfType<Resource>(text);
    if (id == UniqueId() && text != uniqueIdToString(id)) {
        findings.push_back({"reference-unreadable", path, "names " + quote(text) + ", which is no id",
                            "choose a resource, or none"});
    } else if (!resource) {
        findings.push_back({"reference-dangling", path,
                            "names " + quote(text) + ", which is no resource here",
                            "choose a resource, or none"});
    } else if (!resource->getImporter() || isClassKnown(resource->getImporter()->getPluginInfo()->id)) {
        // What an unknown importer would have made is not to be judged.
        if (const ResourceUse* use = findResourceUse(*owner.getTypeInfo(), property.m_name))
            checkUse(*use, *resource, path, findings);
    }
}

} // namespace

void checkReferences(const Object& owner, const std::string& path, Findings& findings)
{
    for (const SmartRef<PropertyGroup>& group : owner.m_inputGroups) {
        for (const PropertyBase* property : group->m_properties) {
            if (property->m_type == KindResource)
                checkReference(owner, *property, path + '/' + property->m_name, findings);
        }
    }
}

} // namespace helvantine::tool
