// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/PropertyContext.h>

#include <cstdint>

namespace helvantine
{

/// An edge of the node graph: passes each change of its source on to its target, at once.
///
/// Listens from construction to destruction. Both properties must outlive it. The construction copies
/// nothing.
class HELVANTINE_FX_API PropertyLink : public IRefCount, public PropertyListener
{
public:
    PropertyLink(PropertyBase* source, PropertyBase* target);
    ~PropertyLink() override;

    /// Copies the property, which is the source, to the target, whose own links pass it on. A ring ends
    /// where a value arrives unchanged; one where none ever does, as with a NaN, ends at a limit that no
    /// other graph reaches.
    void onPropertyChanged(PropertyBase* property) override;

    PropertyBase* m_source;
    PropertyBase* m_target;
};

/// While it lives, all changes together run through at most that many links; what lies behind keeps its
/// value. For links from a file, of which each may set off a ring that never settles.
class HELVANTINE_FX_API PropertyLinkLimit
{
public:
    explicit PropertyLinkLimit(std::int64_t passes);
    ~PropertyLinkLimit();
    PropertyLinkLimit(const PropertyLinkLimit&) = delete;
    PropertyLinkLimit& operator=(const PropertyLinkLimit&) = delete;

    bool isReached() const;

private:
    std::int64_t m_outer; ///< what is left of the limit around it
};

} // namespace helvantine
