// SPDX-License-Identifier: MIT
// Render targets that no device can make, and effects that read what they draw into.
#include "DocumentCheck.h"
#include "ObjectPath.h"
#include "ResourceUse.h"

#include <helvantine/core/Text.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/object/Property.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

namespace helvantine::tool
{

namespace
{

using Findings = std::vector<Finding>;

/// What every device asks of the numbers, whatever more one asks.
struct NumberRule
{
    const char* property;
    int least;
    int most;
};

constexpr NumberRule numberRules[] = {
    {"Width", 1, 16384},
    {"Height", 1, 16384},
    {"Multisample Count", 1, 64},
    {"Multisample Quality", 0, 0},
};

/// `around` is the target that the effect stands in; null for the frame's own.
void checkDraw(const Composition& composition, const Object& effect, const EffectDraw& draw,
               const RenderTargetResource* around, Findings& findings)
{
    const RenderTargetResource* target = draw.target ? findTarget(effect, draw.target) : around;
    for (const char* source : draw.sources) {
        if (!source || !target || findTarget(effect, source) != target)
            continue;
        const std::string where =
            draw.target ? std::string("its \"") + draw.target + '"' : "what it stands in";
        findings.push_back({"target-reads-itself", getPath(composition, effect) + '/' + source,
                            "reads \"" + getPath(*target) + "\" while it draws into that, as " + where,
                            "choose another render target for one of them"});
    }
}

void checkEffect(const Composition& composition, const Object& effect, const RenderTargetResource* around,
                 Findings& findings)
{
    for (const EffectDraw& draw : getEffectDraws(*effect.getTypeInfo()))
        checkDraw(composition, effect, draw, around, findings);
    if (effect.isOfType(&RenderTargetEffect::m_typeInfo)) {
        // One that names nothing leaves the target as it is.
        if (const RenderTargetResource* own = findTarget(effect, "Render Target"))
            around = own;
    }
    for (const SmartRef<Object>& child : effect.m_children)
        checkEffect(composition, *child, around, findings);
}

} // namespace

PropertyBase* findInput(const PropertyContext& owner, const char* name)
{
    for (const SmartRef<PropertyGroup>& group : owner.m_inputGroups) {
        if (PropertyBase* property = group->findProperty(name))
            return property;
    }
    return nullptr;
}

const RenderTargetResource* findTarget(const Object& effect, const char* name)
{
    const PropertyBase* property = findInput(effect, name);
    return property ? findResourceOfType<RenderTargetResource>(property->toString()) : nullptr;
}

void checkTargetNumbers(const Resource& resource, Findings& findings)
{
    const ResourceImporter* importer = resource.getImporter();
    if (!importer || !importer->isOfType(&RenderTargetResourceImporter::m_typeInfo))
        return;
    const PropertyGroup& group = *importer->findGroup("Attributes");
    for (const NumberRule& rule : numberRules) {
        const int value = static_cast<const IntProperty*>(group.findProperty(rule.property))->m_value;
        if (value < rule.least || value > rule.most)
            findings.push_back(
                {"target-impossible", getPath(resource) + '/' + rule.property, formatString("is %d", value),
                 rule.least == rule.most ? formatString("set it to %d", rule.least)
                                         : formatString("set it to %d to %d", rule.least, rule.most)});
    }
}

void checkTargets(const Composition& composition, Findings& findings)
{
    checkEffect(composition, *composition.m_rootEffect, nullptr, findings);
}

} // namespace helvantine::tool
