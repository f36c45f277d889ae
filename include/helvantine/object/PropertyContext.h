// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/RefCount.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/UniqueId.h>
#include <helvantine/object/AnimatedProperties.h>

#include <map>
#include <string>
#include <vector>

namespace helvantine
{

class PropertyBase;
class PropertyContext;
class PropertyLink;

/// Hears of changes of the properties that it was registered for. Must unregister before it dies.
class HELVANTINE_FX_API PropertyListener
{
public:
    virtual void onPropertyChanged(PropertyBase* property) = 0;

protected:
    ~PropertyListener() = default;
};

/// A named, ordered set of properties, as the editor shows them and the document stores them.
/// Owns nothing; every property in it is also registered with the context.
class HELVANTINE_FX_API PropertyGroup : public IRefCount
{
public:
    PropertyGroup(PropertyContext* context, const char* name);
    PropertyGroup(PropertyContext* context, const char* name, const UniqueId& id);

    void addProperty(PropertyBase* property);
    void removeProperty(PropertyBase* property); ///< the first entry with its id

    PropertyBase* findProperty(const UniqueId& id) const; ///< null if absent
    PropertyBase* findProperty(const char* name) const;   ///< exact, the first that matches; null if absent

    PropertyContext* m_context;
    UniqueId m_id;
    std::string m_name; ///< what a stored group is matched by
    std::vector<PropertyBase*> m_properties;
    bool m_viewFlagA = false; ///< the editor's, persisted
    bool m_viewFlagB = true;  ///< the editor's, persisted
};

/// The registry of an owner's properties, and the one place through which their changes are told.
///
/// A class that embeds a context may override onPropertyChanged to see each change first; it must call this
/// class's operation before it acts, or links stop working for the object.
class HELVANTINE_FX_API PropertyContext : public PropertyListener
{
public:
    PropertyContext();
    PropertyContext(const PropertyContext&) = delete;
    PropertyContext& operator=(const PropertyContext&) = delete;
    virtual ~PropertyContext();

    /// Registers under the property's id, in place of one that is there.
    void addProperty(PropertyBase* property);
    /// Forgets the entry of the property's id; groups are not touched.
    void removeProperty(PropertyBase* property);
    PropertyBase* findProperty(const UniqueId& id) const; ///< null if absent
    /// Gives a property another id. Listeners stay under the old one and no longer hear the property: ids
    /// change while a document is read, before any link is made. An unknown id changes nothing.
    void changePropertyId(const UniqueId& oldId, const UniqueId& newId);

    void addInputGroup(PropertyGroup* group);  ///< keeps input groups sorted by name, in byte order
    void addOutputGroup(PropertyGroup* group); ///< keeps the order of addition
    void removeInputGroup(PropertyGroup* group);
    void removeOutputGroup(PropertyGroup* group);
    PropertyGroup* findGroup(const UniqueId& id) const; ///< input groups first; null if absent
    PropertyGroup* findGroup(const char* name) const;

    /// Listeners are told in order of addition; one that is added twice is told twice.
    void addListener(const UniqueId& property, PropertyListener* listener);
    /// Removes every trace of the listener. Allowed while listeners are being told.
    void removeListener(PropertyListener* listener);

    void onPropertyChanged(PropertyBase* property) override;

    /// Evaluates the curves at that time, in seconds, and assigns what they yield, in the order of the ids.
    /// Costs what is animated, not what there is; allocates nothing while the curves stay what they are.
    void updateProperties(float time);
    /// To be told by a property that has another curve, or none any more.
    void onCurveChanged(Keyframe* curve);

    std::map<UniqueId, PropertyBase*> m_properties;
    /// No key with an empty list. Long lists may hold nulls in the places of those that were removed.
    std::map<UniqueId, std::vector<PropertyListener*>> m_listeners;
    std::vector<SmartRef<PropertyGroup>> m_inputGroups;
    std::vector<SmartRef<PropertyGroup>> m_outputGroups;

private:
    friend class ChangeWalk;
    friend class PropertyLink;

    std::size_t appendListener(const UniqueId& property, PropertyListener* listener);
    void removeLink(const PropertyLink& link);
    void endTelling()
    {
        if (--m_tellingDepth == 0 && m_isListenerRemoved)
            closeGaps();
    }
    void closeGaps();

    AnimatedProperties m_animated;
    bool m_isListenerRemoved = false; ///< since the telling began
    int m_tellingDepth = 0;
    std::size_t m_listenerCount = 0; ///< in all lists
    std::size_t m_gapCount = 0;      ///< nulls in all lists
};

} // namespace helvantine
