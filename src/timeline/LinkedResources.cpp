// SPDX-License-Identifier: MIT
#include "LinkedResources.h"

#include <helvantine/object/PropertyBase.h>
#include <helvantine/resource/RenderTargetResource.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResource.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/schematics/SchematicsNode.h>

#include <algorithm>
#include <set>
#include <utility>

namespace helvantine
{

namespace
{

/// What the nodes name is all that links can bring, in whichever way they hand it on.
std::set<std::string> findTexts(const Schematics& graph)
{
    std::set<std::string> result;
    for (const auto& [nodeId, node] : graph.m_nodeMap)
        for (const auto& [id, property] : node->m_properties)
            if (property->m_type == KindResource)
                result.insert(property->toString());
    for (const SmartRef<PropertyLink>& link : graph.m_links)
        if (link->m_source->m_type == KindResource)
            result.insert(link->m_source->toString());
    return result;
}

/// Keeps of resources those that may ask for something that none before them does.
class Demands
{
public:
    bool isNew(const std::string& text)
    {
        if (const auto* target = findResourceOfType<RenderTargetResource>(text))
            return isNewTarget(*target);
        if (findResourceOfType<TextureResource>(text))
            return !std::exchange(m_hasPicture, true);
        return findResourceOfType<Resource>(text) != nullptr;
    }

private:
    bool isNewTarget(const RenderTargetResource& target)
    {
        const auto isLike = [&](const RenderTargetResource* known) { return known->isDrawnLike(target); };
        if (std::any_of(m_targets.begin(), m_targets.end(), isLike))
            return false;
        m_targets.push_back(&target);
        return true;
    }

    std::vector<const RenderTargetResource*> m_targets; ///< one of each kind
    bool m_hasPicture = false;
};

} // namespace

LinkedResources::LinkedResources(const Schematics& graph)
{
    for (const SmartRef<PropertyLink>& link : graph.m_links)
        if (link->m_target->m_type == KindResource)
            m_targets.push_back({link->m_target, link->m_target->toString()});
    if (m_targets.empty())
        return;
    m_texts.push_back("");
    Demands demands;
    for (const std::string& text : findTexts(graph))
        if (demands.isNew(text))
            m_texts.push_back(text);
}

LinkedResources::~LinkedResources()
{
    for (const Target& target : m_targets)
        target.property->fromString(target.own.c_str());
}

bool LinkedResources::bringNext()
{
    if (m_next == m_texts.size())
        return false;
    for (const Target& target : m_targets)
        target.property->fromString(m_texts[m_next].c_str());
    ++m_next;
    return true;
}

} // namespace helvantine
