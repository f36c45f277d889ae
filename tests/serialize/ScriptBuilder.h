// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Keyframe.h>
#include <helvantine/core/MemoryBuffer.h>
#include <helvantine/object/PropertyBase.h>
#include <helvantine/serialize/FxSerializer.h>

#include <functional>
#include <string>
#include <utility>

namespace testplugin
{

/// Writes the script of a document piece by piece, for documents that no save writes. Each id is another one; the
/// counts have to be kept by whoever calls.
class ScriptBuilder
{
public:
    ScriptBuilder() { m_serializer.setVersion(helvantine::g_formatVersion); }

    /// Up to the root folder's number of resources, which follow.
    void beginDocument(unsigned resources = 0);
    /// Up to the number of effects below the root, which follow.
    void beginComposition(unsigned effects = 0);
    /// Behind the effects: up to the number of compositions within, which follow, then nodes and links.
    void endEffects(unsigned compositions = 0);
    /// A whole document of nodes and links alone, up to the nodes.
    void beginGraph(unsigned nodes);
    std::string endDocument();

    helvantine::UniqueId addId();
    unsigned getIdCount() const { return m_lastId; }
    void repeatIds(unsigned count) { m_lastId = count; } ///< from the one that came when there were as many
    /// Gives ids the form that is set here from a number that counts up.
    void setIdForm(std::function<helvantine::UniqueId(unsigned)> form) { m_idForm = std::move(form); }
    void addFolder(unsigned children);
    void beginNode(const helvantine::UniqueId& classId, unsigned groups = 0);
    void endNode();
    void beginObject(const helvantine::UniqueId& classId, unsigned groups = 0, const char* name = "");
    void endObject(unsigned children = 0);
    void addNodeOfEffect(); ///< ends an effect
    void addGroup(const char* name, unsigned properties);
    /// With a curve of that key, of one component, if there is one.
    helvantine::UniqueId addProperty(const char* name, helvantine::PropertyKind kind,
                                     const std::string& value, const helvantine::Key* key = nullptr);
    /// A whole node with one input, whose id it returns.
    helvantine::UniqueId addNode(const helvantine::UniqueId& classId, const char* input,
                                 helvantine::PropertyKind kind, const std::string& value);
    /// Behind a resource's importer.
    void addResourceFields();
    void addLink(const helvantine::UniqueId& source, const helvantine::UniqueId& target);

    helvantine::FxSerializer& serializer() { return m_serializer; }
    helvantine::OutStream& out() { return m_serializer.m_out; }
    std::size_t getSize() const { return m_buffer.getSize(); }

private:
    helvantine::MemoryBuffer m_buffer{1 << 20, 1 << 20};
    helvantine::FxSerializer m_serializer{"test", &m_buffer, true, nullptr};
    unsigned m_lastId = 0;
    std::function<helvantine::UniqueId(unsigned)> m_idForm = [](unsigned number) {
        helvantine::UniqueId id;
        id.data1 = number;
        return id;
    };
};

} // namespace testplugin
