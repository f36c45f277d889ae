// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vector.h>
#include <helvantine/object/Object.h>
#include <helvantine/timeline/FxContext.h>

namespace helvantine
{

/// An event pin. Nothing fills or reads these yet, and documents don't hold them.
class HELVANTINE_FX_API SchematicsEvent : public IRefCount
{
public:
    SchematicsEvent();

    UniqueId m_id;
};

/// Base of everything that stands in a graph. Its pins are the properties of its input and output groups; a
/// class overrides update, which runs once a frame behind the nodes it depends on.
class HELVANTINE_FX_API SchematicsNode : public Object
{
    HELVANTINE_PLUGIN_CLASS(SchematicsNode)

    SchematicsNode();
    ~SchematicsNode() override;

    void serialize(FxSerializer& serializer) override;

    // The editor's text of nodes that have one.
    virtual bool hasText() const;
    virtual std::string getText() const;
    virtual void setText(const char* text);
    virtual std::string getTextLog() const;

    void setPosition(const Vec2& position) { m_position = position; }

    /// A node of the same class, which nobody holds yet, with a fresh id: name, position, enabled flag and the values
    /// of its inputs. Null if the plugin manager doesn't know the class.
    SchematicsNode* clone();

    std::vector<SmartRef<SchematicsEvent>> m_inputEvents;  ///< empty
    std::vector<SmartRef<SchematicsEvent>> m_outputEvents; ///< empty
    Vec2 m_position;                                       ///< on the editor's canvas
};

/// The category that value and arithmetic nodes name as their parent type. Their classes derive straight from
/// SchematicsNode: only the type record stands between, and nothing is cast to this class.
class HELVANTINE_FX_API LogicNode : public SchematicsNode
{
    HELVANTINE_PLUGIN_CLASS(LogicNode)
};

} // namespace helvantine
