// SPDX-License-Identifier: MIT
#include "ObjectPath.h"

#include <helvantine/object/PropertyBase.h>
#include <helvantine/resource/Resource.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

namespace helvantine::tool
{

namespace
{

std::string nameOf(const std::string& name, const TypedObject& object)
{
    return name.empty() ? object.getTypeInfo()->name : name;
}

std::string join(const std::string& outer, const std::string& inner)
{
    return outer.empty() ? inner : outer + "/" + inner;
}

} // namespace

std::string getPath(const Composition& composition)
{
    std::string path;
    for (const Composition* at = &composition; at->m_parent; at = at->m_parent)
        path = path.empty() ? nameOf(at->m_name, *at) : nameOf(at->m_name, *at) + "/" + path;
    return path;
}

std::string getPath(const Composition& composition, const Object& effectOrNode)
{
    std::string path = nameOf(effectOrNode.m_name, effectOrNode);
    for (const Object* at = effectOrNode.m_parent; at && at != composition.m_rootEffect.get();
         at = at->m_parent)
        path = nameOf(at->m_name, *at) + "/" + path;
    return join(getPath(composition), path);
}

std::string getPath(const Resource& resource)
{
    std::string path = nameOf(resource.getName(), resource);
    for (const Resource* at = resource.getParent(); at && at->getParent(); at = at->getParent())
        path = nameOf(at->getName(), *at) + "/" + path;
    return path;
}

const Object* getOwner(const PropertyBase& property)
{
    return dynamic_cast<const Object*>(property.m_context);
}

std::string getPath(const Composition& composition, const PropertyBase& property)
{
    const Object* owner = getOwner(property);
    return join(owner ? getPath(composition, *owner) : getPath(composition), property.m_name);
}

} // namespace helvantine::tool
