// SPDX-License-Identifier: MIT
#include "vulkan/ActiveQueries.h"

#include "vulkan/FrameRing.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanQuery.h"

namespace helvantine
{

ActiveQueries::ActiveQueries(VulkanContext& context) : m_context(context)
{
    m_active.reserve(16);
}

void ActiveQueries::begin(VulkanQuery& query, bool rendering)
{
    forget(query, rendering);
    closeRendering();
    m_active.push_back({&query, m_context.frames().occlusion().getCount()});
    if (rendering)
        openRendering();
}

void ActiveQueries::end(VulkanQuery& query, bool rendering)
{
    closeRendering();
    OcclusionPool& pool = m_context.frames().occlusion();
    for (const Active& active : m_active) {
        if (active.query == &query)
            pool.addPart(query, query.getGeneration(), active.first, pool.getCount(), true);
    }
    forget(query, rendering);
    if (rendering)
        openRendering();
}

void ActiveQueries::forget(VulkanQuery& query, bool rendering)
{
    std::erase_if(m_active, [&query](const Active& active) { return active.query == &query; });
    if (m_active.empty() && rendering)
        closeRendering();
}

void ActiveQueries::renewCounters()
{
    if (!m_active.empty() && m_context.frames().occlusion().isHalfUsed())
        m_context.submit();
}

void ActiveQueries::openRendering()
{
    if (!m_active.empty())
        m_context.frames().occlusion().start(m_context.commands(),
                                             m_context.device().getFeatures().preciseOcclusion);
}

void ActiveQueries::closeRendering()
{
    if (m_context.frames().occlusion().isRunning())
        m_context.frames().occlusion().stop(m_context.commands());
}

void ActiveQueries::finishBatch()
{
    OcclusionPool& pool = m_context.frames().occlusion();
    for (Active& active : m_active) {
        pool.addPart(*active.query, active.query->getGeneration(), active.first, pool.getCount(), false);
        active.first = 0;
    }
}

} // namespace helvantine
