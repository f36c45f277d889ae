// SPDX-License-Identifier: MIT
#include <helvantine/object/PropertyLink.h>

#include <helvantine/object/PropertyBase.h>

#include <limits>
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
std::int64_t s_passesLeft = std::numeric_limits<std::int64_t>::max(); ///< of all changes

/// Whether the change that is running may run through one link more.
bool mayPass()
{
    if (s_passesLeft <= 0)
        return false;
    --s_passesLeft;
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
    if (!mayPass())
        return;
    ++s_depth;
    property->copyTo(m_target, true, false);
    --s_depth;
}

PropertyLinkLimit::PropertyLinkLimit(std::int64_t passes) : m_outer(std::exchange(s_passesLeft, passes)) {}

PropertyLinkLimit::~PropertyLinkLimit()
{
    s_passesLeft = m_outer;
}

bool PropertyLinkLimit::isReached() const
{
    return s_passesLeft <= 0;
}

} // namespace helvantine
