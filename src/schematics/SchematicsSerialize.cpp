// SPDX-License-Identifier: MIT
#include <helvantine/schematics/Schematics.h>

#include <helvantine/object/PropertyBase.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <algorithm>
#include <utility>

namespace helvantine
{

namespace
{

// The least that each takes in the stream.
constexpr std::uint32_t s_minNodeBytes = 67;
constexpr std::uint32_t s_linkBytes = 32;

// Stored values have settled: a link passes on what is there already, and from there each link at most goes on
// once. Only what no save writes takes more steps than these, beside those of the whole document.
constexpr std::int64_t s_stepsPerLink = 8;

template <class T>
T* find(const std::map<UniqueId, T*>& index, const UniqueId& id)
{
    const auto found = index.find(id);
    return found != index.end() ? found->second : nullptr;
}

using EffectIndex = std::map<UniqueId, Effect*>;

/// Adds to an index; what it has counts. The smaller one moves, so that an effect is moved a few times at most,
/// however deep it lies.
void append(EffectIndex& index, EffectIndex further)
{
    if (index.size() >= further.size()) {
        index.merge(further);
        return;
    }
    for (const auto& [id, effect] : index)
        further.insert_or_assign(id, effect);
    index.swap(further);
}

/// What Composition::findObject finds among effects, for many look-ups: the first of an id counts. Uses up the
/// indices of the compositions within.
EffectIndex takeEffectIndex(FxSerializer& serializer, const Composition& composition)
{
    if (auto made = serializer.m_effectIndices.extract(&composition))
        return std::move(made.mapped());
    EffectIndex index;
    for (const SmartRef<Composition>& child : composition.m_compositions)
        append(index, takeEffectIndex(serializer, *child));
    for (const SmartRef<Object>& object : composition.m_rootEffect->getAllObjects())
        index.emplace(object->m_id, static_cast<Effect*>(object.get()));
    return index;
}

/// The owners of a composition's properties, by the ids of these.
using OwnerIndex = std::map<UniqueId, PropertyContext*>;

void indexOwner(PropertyContext& owner, OwnerIndex& index)
{
    for (const auto& [id, property] : owner.m_properties)
        index.emplace(id, &owner);
}

OwnerIndex indexOwners(const Composition& composition)
{
    OwnerIndex index;
    for (const SmartRef<Object>& object : composition.m_rootEffect->getAllObjects())
        indexOwner(*object, index);
    for (const SmartRef<SchematicsNode>& node : composition.m_schematics->m_nodes) {
        if (node)
            indexOwner(*node, index);
    }
    return index;
}

/// What Composition::findProperty finds, for many look-ups. The owner is asked each time: a value that comes
/// over a link can make it drop a property.
PropertyBase* findOwned(const OwnerIndex& owners, const UniqueId& id)
{
    const PropertyContext* owner = find(owners, id);
    return owner ? owner->findProperty(id) : nullptr;
}

std::string describeEnd(const PropertyBase* property, const UniqueId& id)
{
    return property ? '"' + property->m_name + '"' : "nothing of id " + uniqueIdToString(id);
}

void noteLostLink(FxSerializer& serializer, const std::string& source, const std::string& target)
{
    serializer.note("link from " + source + " to " + target, "two properties that hold values alike",
                    LoadProblem::Kind::LostLink);
}

Effect* getEffect(SchematicsNode& node)
{
    const auto* effectNode = castTo<EffectNode>(&node);
    return effectNode ? effectNode->m_effect : nullptr;
}

} // namespace

void Schematics::serialize(FxSerializer& serializer, Composition* composition)
{
    m_suspended = true;
    if (serializer.m_writing) {
        writeNodes(serializer);
        writeLinks(serializer);
        m_suspended = false;
        return;
    }
    readNodes(serializer, *composition);
    readLinks(serializer, *composition);
    m_suspended = false;
    rebuildOrder();
}

void Schematics::writeNodes(FxSerializer& serializer)
{
    // moveNodeToBack may have left null entries; they are no nodes.
    const auto nulls = std::count(m_nodes.begin(), m_nodes.end(), SmartRef<SchematicsNode>());
    serializer.m_out.writeUInt(static_cast<std::uint32_t>(m_nodes.size() - static_cast<std::size_t>(nulls)));
    for (const SmartRef<SchematicsNode>& node : m_nodes) {
        if (!node)
            continue;
        const Effect* effect = getEffect(*node);
        serializer.m_out.writeBool(effect != nullptr);
        if (effect)
            serializer.m_out.writeUniqueId(effect->m_id);
        node->serialize(serializer);
    }
}

void Schematics::writeLinks(FxSerializer& serializer)
{
    serializer.m_out.writeUInt(static_cast<std::uint32_t>(m_links.size()));
    for (const SmartRef<PropertyLink>& link : m_links) {
        serializer.m_out.writeUniqueId(link->m_source->m_id);
        serializer.m_out.writeUniqueId(link->m_target->m_id);
    }
}

void Schematics::readNodes(FxSerializer& serializer, const Composition& composition)
{
    std::uint32_t count = 0;
    if (!serializer.readCount(count, s_minNodeBytes, "nodes") || count == 0)
        return;
    const EffectIndex& effects = serializer.m_effectIndices[&composition] =
        takeEffectIndex(serializer, composition);
    for (std::uint32_t i = 0; i < count && !serializer.failed(); ++i)
        readNode(serializer, effects);
}

void Schematics::readNode(FxSerializer& serializer, const std::map<UniqueId, Effect*>& effects)
{
    InStream& in = serializer.m_in;
    bool isOfEffect = false;
    UniqueId effectId, classId;
    in.readBool(isOfEffect);
    if (isOfEffect)
        in.readUniqueId(effectId);
    in.readUniqueId(classId);
    if (serializer.failed())
        return;

    SmartRef<SchematicsNode> node;
    const Effect* effect = isOfEffect ? find(effects, effectId) : nullptr;
    if (effect)
        node = effect->m_effectNode.get();
    if (!node)
        node = createPluginOfType<SchematicsNode>(classId);
    if (!node) {
        // Nobody knows how long its record is: everything behind it is lost.
        serializer.fail("node of unknown class " + uniqueIdToString(classId),
                        "class of a node that is loaded", LoadProblem::Kind::UnknownClass);
        return;
    }
    const UniqueId formerId = node->m_id;
    node->serialize(serializer);
    // Dropped: the node of an effect that isn't there, one whose record ended before its id, and a second
    // mention.
    const bool isKept = isOfEffect ? effect != nullptr : node->m_id != formerId;
    if (isKept && findNode(node->m_id) != node.get())
        addNode(node.get());
}

void Schematics::readLinks(FxSerializer& serializer, const Composition& composition)
{
    std::uint32_t count = 0;
    if (!serializer.readCount(count, s_linkBytes, "links") || count == 0)
        return;
    const OwnerIndex owners = indexOwners(composition);
    const PropertyLinkLimit limit(serializer.m_linkSteps + s_stepsPerLink * count);
    for (std::uint32_t i = 0; i < count; ++i) {
        UniqueId sourceId, targetId;
        serializer.m_in.readUniqueId(sourceId);
        serializer.m_in.readUniqueId(targetId);
        PropertyBase* source = findOwned(owners, sourceId);
        PropertyBase* target = findOwned(owners, targetId);
        // A link that lost an end goes without a word. Values are copied blindly, so the storage must be
        // alike; nothing else that the editor would refuse is refused here.
        if (!source || !target || !isSameStorage(source->m_type, target->m_type)) {
            noteLostLink(serializer, describeEnd(source, sourceId), describeEnd(target, targetId));
            continue;
        }
        auto* link = new PropertyLink(source, target);
        if (PropertyLinkLimit::take(PropertyLinkLimit::countSteps(*source)))
            addLink(link);
        else
            appendLink(link); // the target keeps its stored value
    }
    serializer.m_linkSteps = limit.getStepsLeft();
}

} // namespace helvantine
