// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/GpuObject.h"

#include <helvantine/renderer/Query.h>

namespace helvantine
{

/// An occlusion query. Each begin starts a new generation; only the latest ended one is answered.
class VulkanQuery final : public Query, public GpuObject
{
public:
    explicit VulkanQuery(VulkanContext& context);
    ~VulkanQuery() override;

    void begin() override;
    void end() override;
    bool dataAvailable() override;
    int64_t getOcclusionQueryData() override;

    uint32_t getGeneration() const { return m_generation; }

    /// A batch of the GPU's answer; the parts of a generation arrive in order. last: it is complete.
    void addSamples(uint32_t generation, uint64_t samples, bool last);

private:
    void releaseGpu() override;

    uint32_t m_generation = 0; ///< of the latest begin
    uint32_t m_ended = 0;      ///< of the latest end; 0 for none
    uint32_t m_summing = 0;    ///< whose parts m_sum holds
    uint32_t m_answered = 0;   ///< whose samples m_answer holds
    uint64_t m_sum = 0;
    int64_t m_answer = -1;
    bool m_begun = false;
};

} // namespace helvantine
