// SPDX-License-Identifier: MIT
#include "vulkan/VulkanQuery.h"

#include "vulkan/FrameHistory.h"
#include "vulkan/FrameRing.h"
#include "vulkan/TargetPass.h"
#include "vulkan/VulkanContext.h"

namespace helvantine
{

VulkanQuery::VulkanQuery(VulkanContext& context) : GpuObject(context) {}

VulkanQuery::~VulkanQuery()
{
    if (getContext())
        releaseGpu();
}

void VulkanQuery::begin()
{
    VulkanContext* context = getContext();
    if (!context || context->device().isLost())
        return;
    context->history().noteQuery();
    ++m_generation;
    m_begun = true;
    ActiveQueries& queries = context->pass().queries();
    queries.begin(*this, context->pass().isOpen());
    queries.renewCounters();
}

void VulkanQuery::end()
{
    VulkanContext* context = getContext();
    if (!context || !m_begun || context->device().isLost())
        return;
    m_begun = false;
    m_ended = m_generation;
    ActiveQueries& queries = context->pass().queries();
    queries.end(*this, context->pass().isOpen());
    queries.renewCounters();
}

bool VulkanQuery::dataAvailable()
{
    if (getContext()) {
        getContext()->history().noteQuery();
        getContext()->frames().getCompleted();
    }
    return m_ended != 0 && m_answered == m_ended;
}

int64_t VulkanQuery::getOcclusionQueryData()
{
    return dataAvailable() ? m_answer : -1;
}

void VulkanQuery::addSamples(uint32_t generation, uint64_t samples, bool last)
{
    if (generation != m_summing)
        m_sum = 0;
    m_summing = generation;
    m_sum += samples;
    if (!last)
        return;
    m_answer = static_cast<int64_t>(m_sum);
    m_answered = generation;
}

void VulkanQuery::releaseGpu()
{
    getContext()->pass().queries().forget(*this, getContext()->pass().isOpen());
    getContext()->frames().removeQuery(*this);
}

Query* createQuery()
{
    VulkanContext* context = VulkanContext::getCurrent();
    return context ? new VulkanQuery(*context) : nullptr;
}

} // namespace helvantine
