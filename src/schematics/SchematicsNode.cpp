// SPDX-License-Identifier: MIT
#include <helvantine/schematics/SchematicsNode.h>

#include <helvantine/object/PropertyBase.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/serialize/FxSerializer.h>

namespace helvantine
{

SchematicsEvent::SchematicsEvent() : m_id(generateUniqueId()) {}

SchematicsNode::SchematicsNode() = default;

SchematicsNode::~SchematicsNode() = default;

void SchematicsNode::serialize(FxSerializer& serializer)
{
    Object::serialize(serializer);
    if (serializer.m_writing) {
        serializer.m_out.writeFloat(m_position.x);
        serializer.m_out.writeFloat(m_position.y);
        return;
    }
    Vec2 position;
    serializer.m_in.readFloat(position.x);
    serializer.m_in.readFloat(position.y);
    if (!serializer.failed())
        m_position = position;
}

bool SchematicsNode::hasText() const
{
    return false;
}

std::string SchematicsNode::getText() const
{
    return {};
}

void SchematicsNode::setText(const char*) {}

std::string SchematicsNode::getTextLog() const
{
    return {};
}

SchematicsNode* SchematicsNode::clone()
{
    auto* copy = createPluginOfType<SchematicsNode>(getPluginInfo()->id);
    if (!copy)
        return nullptr;
    copy->setName(m_name.c_str());
    copy->m_position = m_position;
    copy->setEnabled(m_enabled);
    // The copy's lists are looked at anew in each step: a value may make further properties.
    for (std::size_t g = 0; g < m_inputGroups.size() && g < copy->m_inputGroups.size(); ++g) {
        const auto& sources = m_inputGroups[g]->m_properties;
        const auto& copies = copy->m_inputGroups[g]->m_properties;
        for (std::size_t p = 0; p < sources.size() && p < copies.size(); ++p)
            copies[p]->fromString(sources[p]->toString().c_str());
    }
    return copy;
}

} // namespace helvantine
