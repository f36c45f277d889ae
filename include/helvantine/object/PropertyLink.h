// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/PropertyContext.h>

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

} // namespace helvantine
