// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/PropertyContext.h>

#include <cstdint>
#include <memory>

/// Laws of properties.
///
/// - Every value that can be edited, animated or wired is a property: named, typed, with an id, registered
///   with the context of its owner. It is a member by value of that owner.
/// - Assignment stores and tells only what is new: the first value, or one that differs exactly. A NaN is
///   always new.
/// - One call tells of a change, the context's onPropertyChanged; links, curves and caches hang off it.
/// - The kind code tells kinds apart, not the class: kinds that are stored alike share one.
/// - A property owns its curve. Nothing else here owns anything.
namespace helvantine
{

class Keyframe;
class PropertyLink;

/// One end of a link, in the list of those at the same property.
struct LinkEnd
{
    PropertyLink* link;
    LinkEnd* next = nullptr;
    LinkEnd** place = nullptr; ///< what points to it; null while in no list
};

/// The kinds of property. Documents hold the numbers.
enum PropertyKind : std::uint32_t
{
    KindFloat = 0,
    KindInt = 1,
    KindVec2 = 2,
    KindVec3 = 3,
    KindVec4 = 4,
    KindRotation = 5, ///< four floats; its curve is a RotationKeyframe
    KindColor = 6,    ///< red, green, blue, alpha
    KindBool = 7,
    KindString = 8,
    KindResource = 9, ///< text of a resource's id, empty for none
    KindEnum = 10,    ///< index into the labels
};

/// The name of the kind in messages, such as "colour"; "unknown kind" for a number that is none.
HELVANTINE_FX_API const char* getKindName(std::uint32_t kind);

/// The number of floats that one key of a curve of this kind holds; 1 where a kind has no curve, 0 for a
/// number that is no kind.
HELVANTINE_FX_API unsigned getKindComponentCount(std::uint32_t kind);

/// Whether values of the two kinds are stored alike, so that one can be copied to the other.
HELVANTINE_FX_API bool isSameStorage(std::uint32_t kindA, std::uint32_t kindB);

/// What all properties share: identity, curve, the editor's numbers.
class HELVANTINE_FX_API PropertyBase
{
public:
    /// Generates an id and doesn't register: the owner calls addProperty. The context is borrowed, never
    /// null.
    PropertyBase(PropertyContext* context, std::uint32_t type, const char* name);
    PropertyBase(const PropertyBase&) = delete;
    PropertyBase& operator=(const PropertyBase&) = delete;
    virtual ~PropertyBase();

    /// Stores this value in a property of like storage, unless that holds an equal one and `force` is false.
    /// Its kind code stays.
    virtual void copyTo(PropertyBase* target, bool notify, bool force) const = 0;
    virtual unsigned getComponentCount() const = 0;
    /// The form that documents store and clones go through; floats with six decimals, components with ", ".
    virtual std::string toString() const = 0;
    /// Assigns what the text says; unreadable numbers and missing components are 0, null is the empty text.
    virtual void fromString(const char* text) = 0;

    bool canKeyframe() const { return m_type <= KindColor; }
    /// Makes an empty curve if there is none, or deletes the curve. Does nothing for kinds without curves.
    void enableKeyframe(bool enable);
    /// An empty curve for values of this kind; null for kinds without curves.
    std::unique_ptr<Keyframe> createKeyframe() const;
    /// Takes ownership, null included, whatever the kind; deletes the curve that was there.
    void setKeyframe(Keyframe* keyframe);

    PropertyContext* m_context;
    UniqueId m_id;        ///< key in the context: changed by changePropertyId only
    std::string m_name;   ///< what a stored property is matched by
    std::uint32_t m_type; ///< a PropertyKind
    std::map<std::int32_t, std::string> m_enumLabels;
    std::unique_ptr<Keyframe> m_keyframe; ///< changed by the operations above only; null: not animated
    LinkEnd* m_linkEnds = nullptr;        ///< kept by the links, which end with the property
    bool m_hasValue = false;              ///< near the value, since each assignment reads both
    bool m_viewFlag = false;              ///< the editor's, persisted and cloned
    std::int32_t m_viewSize = 120;        ///< the editor's, persisted and cloned
    float m_viewStep = 0.01f;             ///< the editor's step
};

} // namespace helvantine
