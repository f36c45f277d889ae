// SPDX-License-Identifier: MIT
#include <helvantine/object/PropertyLink.h>

#include <helvantine/object/Property.h>

#include <utility>

namespace helvantine
{

namespace
{

// Only rings that never settle get to these.
constexpr int s_maxDepth = 1000; ///< links that one change runs through in a row
constexpr int s_maxPasses =
    10000; ///< links that pass one change on, beside those of the property it began at

int s_depth = 0;
int s_passes = 0;

/// Whether the change that is running may run through one link more.
bool mayPass(const PropertyBase& property)
{
    if (PropertyLinkLimit::isSet() && !PropertyLinkLimit::take(PropertyLinkLimit::countSteps(property)))
        return false;
    if (s_depth == 0)
        s_passes = 0;
    return s_depth == 0 || (s_depth < s_maxDepth && ++s_passes <= s_maxPasses);
}

} // namespace

PropertyLink::PropertyLink(PropertyBase* source, PropertyBase* target) : m_source(source), m_target(target)
{
    m_source->m_context->addListener(m_source->m_id, this);
}

PropertyLink::~PropertyLink()
{
    m_source->m_context->removeListener(this);
}

void PropertyLink::onPropertyChanged(PropertyBase* property)
{
    if (!mayPass(*property))
        return;
    ++s_depth;
    property->copyTo(m_target, true, false);
    --s_depth;
}

PropertyLinkLimit* PropertyLinkLimit::s_current = nullptr;

PropertyLinkLimit::PropertyLinkLimit(std::int64_t steps)
    : m_left(steps), m_outer(std::exchange(s_current, this))
{
}

PropertyLinkLimit::~PropertyLinkLimit()
{
    s_current = m_outer;
}

bool PropertyLinkLimit::take(std::int64_t steps)
{
    if (!s_current)
        return true;
    const bool isEnough = steps <= s_current->m_left;
    s_current->m_left = isEnough ? s_current->m_left - steps : 0;
    return isEnough;
}

std::int64_t PropertyLinkLimit::countSteps(const PropertyBase& property)
{
    if (property.m_type != KindString && property.m_type != KindResource)
        return 1;
    const std::size_t size = static_cast<const StringProperty&>(property).m_value.size();
    return 1 + static_cast<std::int64_t>(size / s_bytesPerStep);
}

} // namespace helvantine
