// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"

#include <string>

namespace helvantine
{

class VulkanInstance;

/// What the chosen device can do beyond what the renderer demands of every device.
struct DeviceFeatures
{
    bool wireframe = false; ///< fillModeNonSolid
    bool depthClamp = false;
    bool depthBiasClamp = false;
    bool anisotropy = false;
    bool mirrorOnce = false; ///< samplerMirrorClampToEdge
    bool preciseOcclusion = false;
    bool blockFormats = false; ///< BC1 to BC7
    bool timestamps = false;
    float maxAnisotropy = 1.0f;
    VkDeviceSize constantAlignment =
        256; ///< of constants and vertices, their start and their size; a power of 2
    VkSampleCountFlags samples = VK_SAMPLE_COUNT_1_BIT;         ///< of colour and depth targets alike
    VkFormat depthStencilFormat = VK_FORMAT_D32_SFLOAT_S8_UINT; ///< what DXGI format 45 stands for here
};

/// The logical device and its one queue, which draws, copies and presents.
///
/// Once an operation has lost the device, it stays lost: the report says so once, and everybody who asks
/// isLost does nothing from then on.
class VulkanDevice
{
public:
    VulkanDevice() = default;
    ~VulkanDevice();
    VulkanDevice(const VulkanDevice&) = delete;
    VulkanDevice& operator=(const VulkanDevice&) = delete;

    /// Picks a GPU over a software device. With a surface only devices that can present to it count.
    /// False with the reason in the report.
    bool create(const VulkanInstance& instance, VkSurfaceKHR surface);

    VkDevice getHandle() const { return m_device; }
    VkPhysicalDevice getPhysical() const { return m_physical; }
    VkQueue getQueue() const { return m_queue; }
    uint32_t getQueueFamily() const { return m_queueFamily; }
    const VkPhysicalDeviceProperties& getProperties() const { return m_properties; }
    const DeviceFeatures& getFeatures() const { return m_features; }
    VkFormatFeatureFlags2 getFormatFeatures(VkFormat format) const; ///< with optimal tiling

    /// The memory type with all of the wanted and, if possible, all of the preferred properties; UINT32_MAX
    /// if there is none.
    uint32_t findMemoryType(uint32_t typeBits, VkMemoryPropertyFlags wanted,
                            VkMemoryPropertyFlags preferred) const;

    VkMemoryPropertyFlags getMemoryFlags(uint32_t type) const
    {
        return m_memory.memoryTypes[type].propertyFlags;
    }
    uint32_t getHeapIndex(uint32_t type) const { return m_memory.memoryTypes[type].heapIndex; }
    VkDeviceSize getHeapSize(uint32_t type) const { return m_memory.memoryHeaps[getHeapIndex(type)].size; }

    /// True for success. Else reports what failed; a lost device or a failed submission marks it lost.
    bool check(VkResult result, const char* what);
    bool isLost() const { return m_lost; }
    void markLost(const char* what);

    /// Names a Vulkan object for captures and messages. Free of cost without debug utils.
    void setName(VkObjectType type, uint64_t handle, const char* name) const;
    template <typename Handle>
    void setName(VkObjectType type, Handle handle, const char* name) const
    {
        setName(type, reinterpret_cast<uint64_t>(handle), name);
    }

    /// Brackets commands with a label that bears a size. Free of cost without debug utils.
    void beginLabel(VkCommandBuffer commands, const char* text, uint32_t width, uint32_t height) const;
    void endLabel(VkCommandBuffer commands) const;

private:
    bool choosePhysical(VkInstance instance, VkSurfaceKHR surface);
    bool findQueueFamily(VkPhysicalDevice device, VkSurfaceKHR surface, uint32_t& family) const;
    bool createDevice(bool presents);
    void chooseFeatures(const VkPhysicalDeviceFeatures& available, VkPhysicalDeviceFeatures& wanted);
    void chooseDepthFormat();
    void chooseConstantAlignment();

    VkPhysicalDevice m_physical = VK_NULL_HANDLE;
    VkDevice m_device = VK_NULL_HANDLE;
    VkQueue m_queue = VK_NULL_HANDLE;
    uint32_t m_queueFamily = 0;
    VkPhysicalDeviceProperties m_properties{};
    VkPhysicalDeviceMemoryProperties m_memory{};
    DeviceFeatures m_features;
    bool m_robustBuffers = false; ///< reads beyond a range give zero
    bool m_debugUtils = false;
    bool m_lost = false;
};

} // namespace helvantine
