// SPDX-License-Identifier: MIT
#include "ScriptBuilder.h"

#include <helvantine/effects3d/CameraEffect.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/timeline/Layer.h>

namespace testplugin
{

using namespace helvantine;

void ScriptBuilder::beginDocument(unsigned resources)
{
    out().writeUInt(g_formatVersion);
    out().writeString("title");
    out().writeInt(60);
    out().writeUInt(960);
    out().writeUInt(540);
    addFolder(resources);
}

void ScriptBuilder::beginComposition(unsigned effects)
{
    addId();
    out().writeString("");
    out().writeBool(false);
    out().writeBool(true);
    out().writeFloat(45.0f);
    beginObject(CameraEffect::s_plugininfo.id);
    endObject();
    addNodeOfEffect();
    beginObject(Layer::s_plugininfo.id);
    endObject(effects);
}

void ScriptBuilder::endEffects(unsigned compositions)
{
    addNodeOfEffect();
    out().writeUInt(compositions);
}

void ScriptBuilder::beginGraph(unsigned nodes)
{
    beginDocument();
    beginComposition();
    endEffects();
    out().writeUInt(nodes);
}

std::string ScriptBuilder::endDocument()
{
    out().writeUInt(1);
    return {reinterpret_cast<const char*>(m_buffer.getData()), m_buffer.getSize()};
}

UniqueId ScriptBuilder::addId()
{
    const UniqueId id = m_idForm(++m_lastId);
    out().writeUniqueId(id);
    return id;
}

void ScriptBuilder::addFolder(unsigned children)
{
    out().writeBool(true);
    addResourceFields();
    out().writeUInt(children);
}

void ScriptBuilder::addResourceFields()
{
    addId();
    out().writeString("");
    out().writeBool(true);
}

void ScriptBuilder::beginNode(const UniqueId& classId, unsigned groups)
{
    out().writeBool(false);
    beginObject(classId, groups);
}

void ScriptBuilder::endNode()
{
    endObject();
    out().writeFloat(0.0f);
    out().writeFloat(0.0f);
}

void ScriptBuilder::beginObject(const UniqueId& classId, unsigned groups, const char* name)
{
    out().writeUniqueId(classId);
    addId();
    out().writeString(name);
    out().writeBool(true);
    out().writeBool(true);
    out().writeInt(0);
    out().writeInt(10);
    out().writeUInt(groups);
}

void ScriptBuilder::endObject(unsigned children)
{
    out().writeUInt(0);
    out().writeUInt(children);
}

void ScriptBuilder::addNodeOfEffect()
{
    beginObject(EffectNode::s_plugininfo.id);
    endNode();
}

void ScriptBuilder::addGroup(const char* name, unsigned properties)
{
    addId();
    out().writeString(name);
    out().writeBool(true);
    out().writeBool(true);
    out().writeUInt(properties);
}

UniqueId ScriptBuilder::addProperty(const char* name, PropertyKind kind, const std::string& value,
                                    const Key* key)
{
    out().writeString(name);
    out().writeInt(static_cast<std::int32_t>(kind));
    const UniqueId id = addId();
    out().writeBool(false);
    out().writeInt(120);
    out().writeString(value);
    out().writeBool(key != nullptr);
    if (key) {
        for (const std::uint32_t number : {1u, 0u, 0u}) // keys, and what lies before and after them
            out().writeUInt(number);
        out().writeBytes(key, 64 + sizeof(float));
    }
    return id;
}

UniqueId ScriptBuilder::addNode(const UniqueId& classId, const char* input, PropertyKind kind,
                                const std::string& value)
{
    beginNode(classId, 1);
    addGroup("Inputs", 1);
    const UniqueId id = addProperty(input, kind, value);
    endNode();
    return id;
}

void ScriptBuilder::addLink(const UniqueId& source, const UniqueId& target)
{
    out().writeUniqueId(source);
    out().writeUniqueId(target);
}

} // namespace testplugin
