// SPDX-License-Identifier: MIT
#include <helvantine/object/Object.h>

#include <helvantine/core/Keyframe.h>
#include <helvantine/object/PropertyBase.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/timeline/Effect.h>

#include <cstddef>
#include <limits>
#include <type_traits>

namespace helvantine
{

namespace
{

// The least that a record of each sort takes in the stream.
constexpr std::uint32_t s_minObjectBytes = 58;
constexpr std::uint32_t s_minGroupBytes = 26;
constexpr std::uint32_t s_minPropertyBytes = 34;
constexpr std::uint32_t s_keyBytes = 64; ///< without its components

// What a property and a group take in memory, with their places in the lists and their share of an object's size.
constexpr std::uint64_t s_propertyCost = 288;
constexpr std::uint64_t s_groupCost = 176;

// A key lies in memory as it lies in the stream, field by field: it goes as one block.
static_assert(offsetof(Key, values) == s_keyBytes && std::is_trivially_copyable_v<Key>);

void writeKey(OutStream& out, const Key& key, unsigned components)
{
    out.writeBytes(&key, s_keyBytes + components * sizeof(float));
}

void readKey(InStream& in, Key& key, unsigned components)
{
    in.readBytes(&key, s_keyBytes + components * sizeof(float));
}

/// The record doesn't tell how many components a key has, the property's kind does: a foreign curve is cut
/// or filled up to that.
void writeCurve(FxSerializer& serializer, const Keyframe& curve, unsigned components)
{
    OutStream& out = serializer.m_out;
    const auto& keys = curve.getKeys();
    out.writeUInt(static_cast<std::uint32_t>(keys.size()));
    out.writeUInt(static_cast<std::uint32_t>(curve.getPreOOR()));
    out.writeUInt(static_cast<std::uint32_t>(curve.getPostOOR()));
    for (const auto& key : keys)
        writeKey(out, *key, components);
}

/// Reads the record of a curve whose keys have that many components; null steps over it.
void readCurve(FxSerializer& serializer, Keyframe* curve, unsigned components)
{
    InStream& in = serializer.m_in;
    std::uint32_t count = 0, pre = 0, post = 0;
    in.readUInt(count);
    in.readUInt(pre);
    in.readUInt(post);
    const auto keyBytes = static_cast<std::uint32_t>(s_keyBytes + components * sizeof(float));
    if (!serializer.checkCount(count, keyBytes, "keys"))
        return;
    if (!curve) {
        Key dropped;
        while (count-- > 0)
            readKey(in, dropped, components);
        return;
    }
    curve->setPreOOR(static_cast<KeyframeOOR>(pre));
    curve->setPostOOR(static_cast<KeyframeOOR>(post));
    bool ordered = true;
    float previous = -std::numeric_limits<float>::infinity();
    while (count-- > 0) {
        Key* key = curve->createKey();
        readKey(in, *key, components);
        curve->addKey(key, false);
        ordered &= !(key->time < previous);
        previous = key->time;
    }
    if (!ordered)
        serializer.note("keys out of order in time", "keys from the first to the last",
                        LoadProblem::Kind::UnorderedKeys);
    curve->sort();
}

/// A new effect of the class. For a class that nobody knows, or that is no effect's, a plain effect, which
/// takes the record in so that it can be dropped; `known` is then false.
SmartRef<Effect> createChild(FxSerializer& serializer, const UniqueId& classId, bool& known)
{
    SmartRef<Effect> effect(createPluginOfType<Effect>(classId));
    known = effect.get() != nullptr;
    if (!known) {
        serializer.warn("effect of unknown class " + uniqueIdToString(classId) + " left out",
                        "class of an effect that is loaded", LoadProblem::Kind::UnknownClass);
        effect = new Effect;
    }
    return effect;
}

/// How much further the one reaches than the other.
std::uint64_t countMissing(std::size_t made, std::size_t stored)
{
    return made > stored ? made - stored : 0;
}

} // namespace

/// What a record has held so far, whether the object has a place for it or not.
struct Object::Stored
{
    std::size_t groups = 0;
    std::size_t properties = 0;
    std::size_t values = 0; ///< that the object has taken in
};

void Object::serialize(FxSerializer& serializer)
{
    const FxSerializer::Record record(serializer, getTypeInfo()->name, &m_name);
    serializer.tick();
    if (serializer.m_writing)
        write(serializer);
    else
        read(serializer);
}

void Object::write(FxSerializer& serializer)
{
    OutStream& out = serializer.m_out;
    out.writeUniqueId(getPluginInfo()->id);
    out.writeUniqueId(m_id);
    out.writeString(m_name);
    out.writeBool(m_enabled);
    out.writeBool(m_expanded);
    out.writeInt(m_start);
    out.writeInt(m_end);
    for (const auto* groups : {&m_inputGroups, &m_outputGroups}) {
        out.writeUInt(static_cast<std::uint32_t>(groups->size()));
        for (const SmartRef<PropertyGroup>& group : *groups)
            writeGroup(serializer, *group);
    }
    out.writeUInt(static_cast<std::uint32_t>(m_children.size()));
    for (const SmartRef<Object>& child : m_children)
        child->serialize(serializer);
}

void Object::read(FxSerializer& serializer)
{
    if (!readHeader(serializer))
        return;
    Stored stored;
    for (const char* what : {"input groups", "output groups"}) {
        std::uint32_t count = 0;
        serializer.readCount(count, s_minGroupBytes, what);
        for (std::uint32_t i = 0; i < count && !serializer.failed(); ++i)
            readGroup(serializer, stored);
    }
    chargeMissing(serializer, stored);
    readChildren(serializer);
}

/// As many as a record holds; one that stands in two groups counts twice.
std::size_t Object::countGroupedProperties() const
{
    std::size_t count = 0;
    for (const auto* groups : {&m_inputGroups, &m_outputGroups}) {
        for (const SmartRef<PropertyGroup>& group : *groups)
            count += group->m_properties.size();
    }
    return count;
}

/// A record of few bytes can name a class with dozens of properties.
void Object::chargeMissing(FxSerializer& serializer, const Stored& stored) const
{
    const std::size_t groups = m_inputGroups.size() + m_outputGroups.size();
    serializer.chargeMissing(m_id,
                             s_propertyCost * countMissing(countGroupedProperties(), stored.properties) +
                                 s_groupCost * countMissing(groups, stored.groups));
}

bool Object::readHeader(FxSerializer& serializer)
{
    InStream& in = serializer.m_in;
    UniqueId id;
    std::string name;
    bool enabled = false, expanded = false;
    std::int32_t start = 0, end = 0;
    in.readUniqueId(id);
    in.readString(name);
    in.readBool(enabled);
    in.readBool(expanded);
    in.readInt(start);
    in.readInt(end);
    if (serializer.failed())
        return false;
    m_id = id;
    m_name = std::move(name);
    m_enabled = enabled;
    m_expanded = expanded;
    setStart(start);
    setEnd(end);
    return true;
}

void Object::readChildren(FxSerializer& serializer)
{
    std::uint32_t count = 0;
    serializer.readCount(count, s_minObjectBytes, "children");
    for (std::uint32_t i = 0; i < count && !serializer.failed(); ++i) {
        UniqueId classId;
        serializer.m_in.readUniqueId(classId);
        if (serializer.failed())
            return;
        bool known = false;
        const SmartRef<Effect> child = createChild(serializer, classId, known);
        const UniqueId freshId = child->m_id;
        child->serialize(serializer);
        // Without even an id the record has ended too early to be kept.
        if (known && child->m_id != freshId)
            addObject(child.get(), -1);
    }
}

void Object::writeGroup(FxSerializer& serializer, PropertyGroup& group)
{
    OutStream& out = serializer.m_out;
    out.writeUniqueId(group.m_id);
    out.writeString(group.m_name);
    out.writeBool(group.m_viewFlagA);
    out.writeBool(group.m_viewFlagB);
    out.writeUInt(static_cast<std::uint32_t>(group.m_properties.size()));
    for (PropertyBase* property : group.m_properties)
        writeProperty(serializer, *property);
}

void Object::readGroup(FxSerializer& serializer, Stored& stored)
{
    ++stored.groups;
    std::string name;
    const FxSerializer::Record record(serializer, "group", &name, FxSerializer::Record::Part);
    InStream& in = serializer.m_in;
    UniqueId id;
    bool viewFlagA = false, viewFlagB = false;
    in.readUniqueId(id);
    in.readString(name);
    in.readBool(viewFlagA);
    in.readBool(viewFlagB);
    std::uint32_t count = 0;
    if (!serializer.readCount(count, s_minPropertyBytes, "properties"))
        return;
    // A group that the class doesn't have any more is read to nowhere.
    PropertyGroup* group = findGroup(name.c_str());
    if (group) {
        group->m_id = id;
        group->m_viewFlagA = viewFlagA;
        group->m_viewFlagB = viewFlagB;
    }
    for (std::uint32_t i = 0; i < count && !serializer.failed(); ++i)
        readProperty(serializer, group, stored);
}

void Object::writeProperty(FxSerializer& serializer, PropertyBase& property)
{
    OutStream& out = serializer.m_out;
    out.writeString(property.m_name);
    out.writeInt(static_cast<std::int32_t>(property.m_type));
    serializer.tick();
    out.writeUniqueId(property.m_id);
    out.writeBool(property.m_viewFlag);
    out.writeInt(property.m_viewSize);
    out.writeString(property.toString());
    out.writeBool(property.m_keyframe != nullptr);
    if (property.m_keyframe)
        writeCurve(serializer, *property.m_keyframe, property.getComponentCount());
}

void Object::readProperty(FxSerializer& serializer, PropertyGroup* group, Stored& stored)
{
    ++stored.properties;
    std::string name;
    const FxSerializer::Record record(serializer, "property", &name, FxSerializer::Record::Part);
    InStream& in = serializer.m_in;
    std::int32_t type = 0;
    in.readString(name);
    in.readInt(type);
    serializer.tick();
    // A property that the class doesn't have, or has with another kind, is read to nowhere.
    const auto kind = static_cast<std::uint32_t>(type);
    PropertyBase* property = group ? group->findProperty(name.c_str()) : nullptr;
    if (property && property->m_type != kind)
        property = nullptr;
    // Objects work for each value, some a lot: a record can't have them go on by repeating it.
    if (property && ++stored.values > m_properties.size() && stored.values > countGroupedProperties())
        property = nullptr;
    if (readPropertyValue(serializer, property))
        readPropertyCurve(serializer, property, kind);
}

bool Object::readPropertyValue(FxSerializer& serializer, PropertyBase* property)
{
    InStream& in = serializer.m_in;
    UniqueId id;
    bool viewFlag = false;
    std::int32_t viewSize = 0;
    std::string value;
    in.readUniqueId(id);
    in.readBool(viewFlag);
    in.readInt(viewSize);
    in.readString(value);
    if (serializer.failed())
        return false;
    if (property) {
        changePropertyId(property->m_id, id);
        property->m_viewFlag = viewFlag;
        property->m_viewSize = viewSize;
        // Notifies: objects make further properties by what they hear of here.
        property->fromString(value.c_str());
    }
    return true;
}

void Object::readPropertyCurve(FxSerializer& serializer, PropertyBase* property, std::uint32_t kind)
{
    bool hasCurve = false;
    serializer.m_in.readBool(hasCurve);
    if (!hasCurve || serializer.failed())
        return;
    const unsigned components = getKindComponentCount(kind);
    if (components == 0) {
        serializer.fail("curve of a property of kind " + std::to_string(kind), "kind from 0 to 10");
        return;
    }
    if (property)
        property->enableKeyframe(true);
    readCurve(serializer, property ? property->m_keyframe.get() : nullptr, components);
}

} // namespace helvantine
