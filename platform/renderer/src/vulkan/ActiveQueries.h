// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"

#include <vector>

namespace helvantine
{

class VulkanContext;
class VulkanQuery;

/// The queries between their begin and their end, and the counters that run for them.
///
/// A counter can't span two stretches of rendering, and only one can run at a time. So one is started
/// whenever rendering opens or the set of begun queries changes, and each query notes which ones were its
/// own.
class ActiveQueries
{
public:
    explicit ActiveQueries(VulkanContext& context);

    void begin(VulkanQuery& query, bool rendering);
    void end(VulkanQuery& query, bool rendering);
    void forget(VulkanQuery& query, bool rendering); ///< it is being deleted

    /// To be asked before a counter may have to be started. When the batch has few left and a query needs them, the
    /// batch is submitted: the next one has counters of its own.
    void renewCounters();
    void openRendering();
    void closeRendering();
    void finishBatch(); ///< after rendering is closed; the next batch counts from its own first counter

private:
    struct Active
    {
        VulkanQuery* query = nullptr;
        uint32_t first = 0; ///< its first counter in the open batch
    };

    VulkanContext& m_context;
    std::vector<Active> m_active;
};

} // namespace helvantine
