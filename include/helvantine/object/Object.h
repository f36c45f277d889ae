// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/SmartRef.h>
#include <helvantine/object/Plugin.h>
#include <helvantine/object/PropertyContext.h>
#include <helvantine/object/PropertyValue.h>

#include <string>
#include <string_view>
#include <vector>

namespace helvantine
{

enum class KeyframeOOR : std::uint32_t;
class FxSerializer;
struct FxRenderContext;
struct FxUpdateContext;

/// A value at a time of a curve.
struct TimedValue
{
    float time; ///< seconds from the start of the effect that has the curve
    PropertyValue value;
};

/// Frame numbers come from files and hosts: sums and differences wrap, as the machine's do.
inline std::int32_t addFrames(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
inline std::int32_t subtractFrames(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

/// A plugin instance with an id, a name, a range of frames, properties and child objects: base of effects,
/// nodes and importers.
///
/// A parent owns its children through counted references; the link back is a plain pointer, which outlives a
/// parent that dies before a child someone else holds. Take the child out with deleteObject first.
/// The fields are open to read, for the stream, the graph and editors; operations write them.
class HELVANTINE_FX_API Object : public Plugin, public PropertyContext
{
public:
    Object();
    ~Object() override;

    /// This object or the first descendant with the id, parents first; null if there is none.
    virtual Object* findObject(const UniqueId& id) const;
    virtual void update(FxUpdateContext& context);
    virtual void render(FxRenderContext& context);
    /// Writes or reads the record. Writing begins with the class id; whoever reads has taken that already, to
    /// know what to make.
    virtual void serialize(FxSerializer& serializer);

    /// Takes a reference to the child and becomes its parent. Inserts before that position; -1, or a position past
    /// the end, appends. Null is refused with a report, here and by whatever else adds something.
    void addObject(Object* child, int index);
    /// Takes out the direct child with the id, if there is one.
    void deleteObject(const UniqueId& id);

    // Properties by name: "Group.Name", or the name alone where only one property of the object has it. A name that
    // doesn't fit is reported, with the nearest that would, and so is a value: then nothing changes.
    using PropertyContext::findProperty;
    PropertyBase* findProperty(std::string_view name) const; ///< null if absent
    /// As one of the classes of Property.h; null for another kind, too, which is reported.
    template <class T>
    T* findPropertyOfType(std::string_view name) const
    {
        PropertyBase* property = findProperty(name);
        T* typed = castTo<T>(property);
        if (property && !typed)
            reportKind(*property, T::s_kind);
        return typed;
    }
    bool setProperty(std::string_view name, const PropertyValue& value);
    /// Gives the property a new curve with these keys, all of one KeyMode. In Bezier mode it is level at every key.
    bool animateProperty(std::string_view name, std::uint32_t mode, const std::vector<TimedValue>& keys,
                         KeyframeOOR outside = KeyframeOOR());

    /// For messages: the class, and the name in quotes if there is one.
    std::string describe() const;

    PropertyBase* findPropertyRecursive(const UniqueId& id) const; ///< null if there is none
    std::vector<SmartRef<Object>> getAllObjects(); ///< this object and all below, parents first

    /// Appends the descendants of a type that are enabled and in their window, as are all between, at a frame
    /// on the composition's clock. Without `recursive`, direct children only.
    void getObjectsOfType(const TypeInfo* type, std::vector<SmartRef<Object>>& result, int frame,
                          bool recursive) const;

    /// Whether it is that object or lies below it.
    bool isInside(const Object& tree) const;

    /// The first frame on the composition's clock: the starts of this object and all its ancestors.
    int getRelativeStartFrame() const;
    /// In frames; 0 or less never runs.
    int getLength() const { return subtractFrames(m_end, m_start); }
    /// Whether a frame, counted from the object's own first, lies in its half-open window.
    bool isInWindow(int relativeFrame) const { return relativeFrame >= 0 && relativeFrame < getLength(); }

    void setEnabled(bool enabled) { m_enabled = enabled; }
    void setExpanded(bool expanded) { m_expanded = expanded; }
    void setStart(int frame);
    void setEnd(int frame);
    void setId(const UniqueId& id) { m_id = id; }
    void setName(const char* name) { m_name = name ? name : ""; }
    void setParent(Object* parent);

    /// A number that rises with whatever may move a window: a start, an end, a parent or a child of any object.
    static std::uint32_t getTimelineEdits() { return s_timelineEdits; }

    Object* m_parent = nullptr;               ///< not counted
    std::vector<SmartRef<Object>> m_children; ///< in timeline order
    UniqueId m_id;
    std::string m_name;
    bool m_enabled = true;    ///< off: skipped with everything below
    bool m_expanded = true;   ///< state of the editor's tree, persisted
    std::int32_t m_start = 0; ///< first frame, relative to the parent's start
    std::int32_t m_end = 120; ///< frame past the last, on the scale of the start

protected:
    static void noteTimelineEdit() { ++s_timelineEdits; }

private:
    struct Stored;

    void reportKind(const PropertyBase& property, std::uint32_t wanted) const;

    void write(FxSerializer& serializer);
    void read(FxSerializer& serializer);
    bool readHeader(FxSerializer& serializer);
    void readChildren(FxSerializer& serializer);
    void writeGroup(FxSerializer& serializer, PropertyGroup& group);
    void readGroup(FxSerializer& serializer, Stored& stored);
    void writeProperty(FxSerializer& serializer, PropertyBase& property);
    void readProperty(FxSerializer& serializer, PropertyGroup* group, Stored& stored);
    std::size_t countGroupedProperties() const;
    void chargeMissing(FxSerializer& serializer, const Stored& stored) const;
    bool readPropertyValue(FxSerializer& serializer, PropertyBase* property);
    void readPropertyCurve(FxSerializer& serializer, PropertyBase* property, std::uint32_t kind);

    static std::uint32_t s_timelineEdits; ///< of all objects; 0 before the first
};

} // namespace helvantine
