// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/PropertyBase.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace helvantine
{

class Schematics;

/// An edge of the node graph: passes each change of its source on to its target, at once.
///
/// Listens from construction to destruction, or until a property at one of its ends is destroyed: then it leaves the
/// graph that it is in, and both its ends are null. The construction copies nothing.
class HELVANTINE_FX_API PropertyLink : public IRefCount, public PropertyListener
{
public:
    PropertyLink(PropertyBase* source, PropertyBase* target);
    ~PropertyLink() override;

    /// Copies the property, which is the source, to the target, whose own links pass it on, before the next listener
    /// of the source is told. However long the way is, it arrives; only through more than 1,000 contexts that override
    /// onPropertyChanged it doesn't, since each is told within the other. A ring ends where a value arrives
    /// unchanged. One where none ever does, as with a NaN, is cut, which is reported once: within one change, which is
    /// the outermost assignment up to its return, a link passes on 8 values.
    void onPropertyChanged(PropertyBase* property) final;

    PropertyBase* m_source; ///< null once an end is gone, as the other
    PropertyBase* m_target;

private:
    friend class PropertyBase;
    friend class PropertyContext;
    friend class Schematics;

    void drop();
    void stopListening();

    bool enter();
    void report(const std::string& what);

    std::uint64_t m_change : 56 = 0; ///< the latest that it was passed by, beyond where that began
    std::uint64_t m_entries : 8 = 0; ///< by that change
    std::uint32_t m_place;           ///< in the source's list of listeners
    bool m_isReported = false;       ///< it belongs to a ring that was reported
    LinkEnd m_sourceEnd{this};
    LinkEnd m_targetEnd{this};
    Schematics* m_graph = nullptr; ///< whose list holds it; borrowed
};

/// While it lives, all changes together may set off that many steps; what lies behind keeps its value. For
/// links from a file, of which each may set off a ring that never settles or spread a text over the graph.
///
/// A link that passes a value on takes one step, and one more for each s_bytesPerStep of a text.
class HELVANTINE_FX_API PropertyLinkLimit
{
public:
    static constexpr std::size_t s_bytesPerStep = 16;

    explicit PropertyLinkLimit(std::int64_t steps);
    ~PropertyLinkLimit();
    PropertyLinkLimit(const PropertyLinkLimit&) = delete;
    PropertyLinkLimit& operator=(const PropertyLinkLimit&) = delete;

    std::int64_t getStepsLeft() const { return m_left; } ///< 0 once a step had to be refused

    /// For who does more than take in the value that a link brings. False, and none are left, if the limit that
    /// holds now doesn't have that many; without a limit always true.
    static bool take(std::int64_t steps);
    /// The steps of passing this property's value on.
    static std::int64_t countSteps(const PropertyBase& property);
    static bool isSet() { return s_current != nullptr; }

private:
    static PropertyLinkLimit* s_current; ///< the innermost that lives

    std::int64_t m_left;
    PropertyLinkLimit* m_outer;
};

} // namespace helvantine
