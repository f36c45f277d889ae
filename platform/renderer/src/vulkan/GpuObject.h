// SPDX-License-Identifier: MIT
#pragma once

namespace helvantine
{

class VulkanContext;

/// Base of everything that belongs to a renderer and may outlive it.
///
/// When the renderer goes, it calls releaseGpu on all its objects, and getContext is null from then on.
class GpuObject
{
public:
    /// Null once the renderer is gone.
    VulkanContext* getContext() const { return m_context; }

    GpuObject(const GpuObject&) = delete;
    GpuObject& operator=(const GpuObject&) = delete;

protected:
    explicit GpuObject(VulkanContext& context);
    virtual ~GpuObject(); ///< derived classes release what they own in their own destructor, if getContext

    /// Hands what is on the GPU to the context's deferred destruction.
    virtual void releaseGpu() {}

private:
    friend class VulkanContext;

    VulkanContext* m_context;
    GpuObject* m_previous = nullptr;
    GpuObject* m_next = nullptr;
};

} // namespace helvantine
