// SPDX-License-Identifier: MIT
#include <helvantine/object/PropertyLink.h>

#include <helvantine/object/PropertyBase.h>

namespace helvantine
{

namespace
{

/// How many links one change may run through. Only rings that never settle get there.
constexpr int s_maxDepth = 1000;
int s_depth = 0;

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
    if (s_depth == s_maxDepth)
        return;
    ++s_depth;
    property->copyTo(m_target, true, false);
    --s_depth;
}

} // namespace helvantine
