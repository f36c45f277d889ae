// SPDX-License-Identifier: MIT
#include "ShaderReview.h"

#include "ObjectPath.h"
#include "ResourceUse.h"

#include <helvantine/core/Text.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/object/PropertyBase.h>
#include <helvantine/renderer/ShaderReflection.h>
#include <helvantine/resource/ProgramBindings.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/schematics/ShaderNode.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <algorithm>
#include <set>

namespace helvantine::tool
{

namespace
{

using Entry = ShaderReflection::Entry;
using Kind = ShaderReflection::Kind;

unsigned getStages(const Entry& entry)
{
    unsigned stages = 0;
    if (entry.inVertexStage)
        stages |= ProgramBindings::Vertex;
    if (entry.inPixelStage)
        stages |= ProgramBindings::Pixel;
    return stages;
}

/// Of the stages that read it, those in which it isn't bound.
unsigned findUnboundStages(const Entry& entry, const ProgramBindings& bindings)
{
    unsigned stages = getStages(entry);
    if (entry.kind == Kind::StructuredBuffer)
        return stages;
    const std::string place = entry.getPlace();
    for (const ProgramBindings::Register& bound : bindings.registers) {
        if (bound.letter + std::to_string(bound.number) == place)
            stages &= ~unsigned(bound.stages);
    }
    for (const ProgramBindings::Input& bound : bindings.inputs) {
        if (bound.semantic + std::to_string(bound.index) == place)
            stages = 0;
    }
    return stages;
}

std::string describeRead(const Entry& entry, unsigned stages)
{
    if (entry.kind == Kind::VertexInput)
        return "input " + entry.getPlace() + " is read";
    const char* const names[] = {"", "the vertex stage", "the pixel stage", "both stages"};
    return '"' + entry.name + "\" is read from " + entry.getPlace() + " of " + names[stages];
}

std::string describeBound(const char* className, const ProgramBindings& bindings)
{
    std::string text;
    for (const ProgramBindings::Register& bound : bindings.registers)
        text += (text.empty() ? "" : ", ") + std::string(1, bound.letter) + std::to_string(bound.number);
    for (const ProgramBindings::Input& bound : bindings.inputs)
        text += (text.empty() ? "" : ", ") + std::string(bound.semantic) + std::to_string(bound.index);
    return std::string(className) + " binds " + text;
}

} // namespace

ShaderReview::ShaderReview(const Document& document)
{
    const Composition& root = *document.getCompositionManager()->getRoot();
    addNodes(root);
    addUsers(root);
}

void ShaderReview::addNodes(const Composition& composition)
{
    for (const SmartRef<SchematicsNode>& node : composition.m_schematics->m_nodes) {
        if (!node || !node->isOfType(&ShaderNode::m_typeInfo))
            continue;
        const auto* maker = static_cast<const ShaderNode*>(node.get());
        m_makers[maker->getResource()] = maker;
    }
    for (const SmartRef<Composition>& child : composition.m_compositions)
        addNodes(*child);
}

void ShaderReview::addUsers(const Composition& composition)
{
    Links links;
    for (const SmartRef<PropertyLink>& link : composition.m_schematics->m_links)
        links.emplace(link->m_target, link->m_source);
    for (const SmartRef<Object>& effect : composition.m_rootEffect->getAllObjects()) {
        const TypeInfo& type = *effect->getTypeInfo();
        for (const auto& [id, property] : effect->m_properties) {
            const ResourceUse* use =
                property->m_type == KindResource ? findResourceUse(type, property->m_name) : nullptr;
            if (use && use->bindings)
                addUser(links, *property, {getPath(composition, *effect), type.name, use->bindings});
        }
    }
    for (const SmartRef<Composition>& child : composition.m_compositions)
        addUsers(*child);
}

/// Goes back along the links: a node that doesn't make a shader may hand on whatever its properties name.
void ShaderReview::addUser(const Links& links, const PropertyBase& property, const User& user)
{
    constexpr std::size_t farthest = 1000; ///< properties; what shaders come from lies near
    std::vector<const PropertyBase*> way = {&property};
    std::set<const PropertyBase*> seen = {&property};
    std::set<const ShaderNode*> makers;
    const decltype(PropertyContext::m_properties) none;
    const auto visit = [&](const PropertyBase* next) {
        if (next->m_type == KindResource && way.size() < farthest && seen.insert(next).second)
            way.push_back(next);
    };
    for (std::size_t at = 0; at < way.size(); ++at) {
        if (const ShaderNode* maker = findMaker(*way[at])) {
            makers.insert(maker);
            continue;
        }
        const auto [first, last] = links.equal_range(way[at]);
        for (auto link = first; link != last; ++link) {
            visit(link->second);
            const Object* owner = getOwner(*link->second);
            for (const auto& [id, other] : owner ? owner->m_properties : none)
                visit(other);
        }
    }
    for (const ShaderNode* maker : makers)
        m_users[maker].push_back(user);
}

/// The node that has the property, or that makes what the property names; null for none.
const ShaderNode* ShaderReview::findMaker(const PropertyBase& property) const
{
    const Object* owner = getOwner(property);
    if (owner && owner->isOfType(&ShaderNode::m_typeInfo))
        return static_cast<const ShaderNode*>(owner);
    const auto named = m_makers.find(findResourceOfType<ShaderResource>(property.toString()));
    return named != m_makers.end() ? named->second : nullptr;
}

std::vector<ShaderReview::Remark> ShaderReview::review(const ShaderNode& node) const
{
    std::vector<Remark> remarks;
    ShaderReflection reflection;
    ShaderFromMemoryParams params = node.makeParams(node.getText().c_str());
    if (!reflectShader(params, reflection))
        return remarks;
    const auto byLine = [](const Entry& a, const Entry& b) { return a.line < b.line; };
    std::ranges::stable_sort(reflection.entries, byLine);
    addShared(reflection, remarks);
    if (const auto users = m_users.find(&node); users != m_users.end()) {
        for (const User& user : users->second)
            addUnbound(reflection, user, remarks);
    }
    return remarks;
}

/// The stages have their textures in the same slots.
void ShaderReview::addShared(const ShaderReflection& reflection, std::vector<Remark>& remarks)
{
    std::map<std::string, std::string> names; ///< of the first texture in each place
    for (const Entry& entry : reflection.entries) {
        if (entry.kind != Kind::Texture)
            continue;
        const std::string& first = names.emplace(entry.getPlace(), entry.name).first->second;
        if (first != entry.name)
            remarks.push_back(
                {"shader-ambiguous", entry.line,
                 formatString("\"%s\" lies on %s, as \"%s\" does: both read what is bound there",
                              entry.name.c_str(), entry.getPlace().c_str(), first.c_str()),
                 "give each texture a register of its own"});
    }
}

void ShaderReview::addUnbound(const ShaderReflection& reflection, const User& user,
                              std::vector<Remark>& remarks)
{
    for (const Entry& entry : reflection.entries) {
        if (const unsigned stages = findUnboundStages(entry, *user.bindings))
            remarks.push_back({"shader-unbound", entry.line,
                               describeRead(entry, stages) + ", where " + user.path + " binds nothing",
                               describeBound(user.className, *user.bindings)});
    }
}

std::string ShaderReview::getCompilerWarnings(const ShaderNode& node)
{
    ShaderFromMemoryParams params = node.makeParams(node.getText().c_str());
    checkShader(params);
    return params.warningText;
}

std::string ShaderReview::getWarnings(const ShaderNode& node) const
{
    std::string lines = getCompilerWarnings(node);
    for (const Remark& remark : review(node))
        lines += formatString("shader:%u: warning: %s; %s\n", remark.line, remark.found.c_str(),
                              remark.advice.c_str());
    return lines;
}

} // namespace helvantine::tool
