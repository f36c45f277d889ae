// SPDX-License-Identifier: MIT
#include "vulkan/VulkanDevice.h"

#include "vulkan/VulkanInstance.h"

#include <helvantine/core/Report.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace helvantine
{

namespace
{

std::vector<VkExtensionProperties> listExtensions(VkPhysicalDevice device)
{
    uint32_t count = 0;
    vkEnumerateDeviceExtensionProperties(device, nullptr, &count, nullptr);
    std::vector<VkExtensionProperties> extensions(count);
    vkEnumerateDeviceExtensionProperties(device, nullptr, &count, extensions.data());
    return extensions;
}

bool hasExtension(const std::vector<VkExtensionProperties>& extensions, const char* name)
{
    for (const VkExtensionProperties& extension : extensions) {
        if (!std::strcmp(extension.extensionName, name))
            return true;
    }
    return false;
}

/// The features that drawing can't do without, in a chain that asks for them.
struct FeatureChain
{
    VkPhysicalDeviceFeatures2 base{VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_FEATURES_2};
    VkPhysicalDeviceVulkan11Features v11{VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_VULKAN_1_1_FEATURES};
    VkPhysicalDeviceVulkan12Features v12{VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_VULKAN_1_2_FEATURES};
    VkPhysicalDeviceVulkan13Features v13{VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_VULKAN_1_3_FEATURES};
    VkPhysicalDeviceRobustness2FeaturesEXT robustness{
        VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_ROBUSTNESS_2_FEATURES_EXT};

    FeatureChain()
    {
        base.pNext = &v11;
        v11.pNext = &v12;
        v12.pNext = &v13;
        v13.pNext = &robustness;
    }

    bool isEnough() const
    {
        return v11.shaderDrawParameters && v12.timelineSemaphore && v13.dynamicRendering &&
               v13.synchronization2 && robustness.nullDescriptor;
    }
};

/// Discrete before integrated before virtual before software.
int rank(VkPhysicalDeviceType type)
{
    switch (type) {
    case VK_PHYSICAL_DEVICE_TYPE_DISCRETE_GPU:
        return 4;
    case VK_PHYSICAL_DEVICE_TYPE_INTEGRATED_GPU:
        return 3;
    case VK_PHYSICAL_DEVICE_TYPE_VIRTUAL_GPU:
        return 2;
    case VK_PHYSICAL_DEVICE_TYPE_CPU:
        return 1;
    default:
        return 0;
    }
}

bool isUsable(VkPhysicalDevice device)
{
    VkPhysicalDeviceProperties properties;
    vkGetPhysicalDeviceProperties(device, &properties);
    const std::vector<VkExtensionProperties> extensions = listExtensions(device);
    if (properties.apiVersion < VK_API_VERSION_1_3 ||
        !hasExtension(extensions, VK_KHR_PUSH_DESCRIPTOR_EXTENSION_NAME) ||
        !hasExtension(extensions, VK_EXT_ROBUSTNESS_2_EXTENSION_NAME))
        return false;
    FeatureChain features;
    vkGetPhysicalDeviceFeatures2(device, &features.base);
    return features.isEnough();
}

} // namespace

VulkanDevice::~VulkanDevice()
{
    if (m_device)
        vkDestroyDevice(m_device, nullptr);
}

bool VulkanDevice::create(const VulkanInstance& instance, VkSurfaceKHR surface)
{
    m_debugUtils = instance.hasDebugUtils();
    if (!choosePhysical(instance.getHandle(), surface)) {
        const std::string words =
            "no device with Vulkan 1.3, push descriptors, null descriptors and draw parameters";
        reportProblem("renderer", words + (surface ? " can present to the window" : ""));
        return false;
    }
    vkGetPhysicalDeviceProperties(m_physical, &m_properties);
    vkGetPhysicalDeviceMemoryProperties(m_physical, &m_memory);
    if (!createDevice(surface != VK_NULL_HANDLE))
        return false;
    chooseDepthFormat();
    chooseConstantAlignment();
    return true;
}

bool VulkanDevice::choosePhysical(VkInstance instance, VkSurfaceKHR surface)
{
    uint32_t count = 0;
    vkEnumeratePhysicalDevices(instance, &count, nullptr);
    std::vector<VkPhysicalDevice> devices(count);
    vkEnumeratePhysicalDevices(instance, &count, devices.data());
    int best = -1;
    for (VkPhysicalDevice device : devices) {
        VkPhysicalDeviceProperties properties;
        vkGetPhysicalDeviceProperties(device, &properties);
        uint32_t family = 0;
        if (rank(properties.deviceType) <= best || !isUsable(device) ||
            !findQueueFamily(device, surface, family))
            continue;
        best = rank(properties.deviceType);
        m_physical = device;
        m_queueFamily = family;
    }
    return best >= 0;
}

bool VulkanDevice::findQueueFamily(VkPhysicalDevice device, VkSurfaceKHR surface, uint32_t& family) const
{
    uint32_t count = 0;
    vkGetPhysicalDeviceQueueFamilyProperties(device, &count, nullptr);
    std::vector<VkQueueFamilyProperties> families(count);
    vkGetPhysicalDeviceQueueFamilyProperties(device, &count, families.data());
    for (family = 0; family < count; ++family) {
        VkBool32 presents = surface == VK_NULL_HANDLE;
        if (surface)
            vkGetPhysicalDeviceSurfaceSupportKHR(device, family, surface, &presents);
        if ((families[family].queueFlags & VK_QUEUE_GRAPHICS_BIT) && presents)
            return true;
    }
    return false;
}

bool VulkanDevice::createDevice(bool presents)
{
    std::vector<const char*> extensions = {VK_KHR_PUSH_DESCRIPTOR_EXTENSION_NAME,
                                           VK_EXT_ROBUSTNESS_2_EXTENSION_NAME};
    if (presents)
        extensions.push_back(VK_KHR_SWAPCHAIN_EXTENSION_NAME);

    FeatureChain available;
    vkGetPhysicalDeviceFeatures2(m_physical, &available.base);
    FeatureChain wanted;
    chooseFeatures(available.base.features, wanted.base.features);
    m_features.mirrorOnce = available.v12.samplerMirrorClampToEdge;
    wanted.v11.shaderDrawParameters = VK_TRUE; // vertex numbers count from 0 in every draw
    wanted.v12.timelineSemaphore = VK_TRUE;
    wanted.v12.samplerMirrorClampToEdge = available.v12.samplerMirrorClampToEdge;
    wanted.v12.scalarBlockLayout = available.v12.scalarBlockLayout; // constants lie as in Direct3D
    wanted.v13.dynamicRendering = VK_TRUE;
    wanted.v13.synchronization2 = VK_TRUE;
    wanted.robustness.nullDescriptor = VK_TRUE;
    wanted.v13.robustImageAccess = available.v13.robustImageAccess; // texels outside an image load as zero
    wanted.robustness.robustImageAccess2 = available.robustness.robustImageAccess2;
    m_robustBuffers = available.robustness.robustBufferAccess2 && available.base.features.robustBufferAccess;
    wanted.robustness.robustBufferAccess2 = m_robustBuffers;

    const float priority = 1.0f;
    VkDeviceQueueCreateInfo queue{VK_STRUCTURE_TYPE_DEVICE_QUEUE_CREATE_INFO};
    queue.queueFamilyIndex = m_queueFamily;
    queue.queueCount = 1;
    queue.pQueuePriorities = &priority;
    VkDeviceCreateInfo info{VK_STRUCTURE_TYPE_DEVICE_CREATE_INFO};
    info.pNext = &wanted.base;
    info.queueCreateInfoCount = 1;
    info.pQueueCreateInfos = &queue;
    info.enabledExtensionCount = static_cast<uint32_t>(extensions.size());
    info.ppEnabledExtensionNames = extensions.data();
    if (!check(vkCreateDevice(m_physical, &info, nullptr, &m_device), "create the device"))
        return false;
    volkLoadDevice(m_device);
    vkGetDeviceQueue(m_device, m_queueFamily, 0, &m_queue);
    return true;
}

void VulkanDevice::chooseFeatures(const VkPhysicalDeviceFeatures& available, VkPhysicalDeviceFeatures& wanted)
{
    wanted.robustBufferAccess = available.robustBufferAccess;
    wanted.fullDrawIndexUint32 = available.fullDrawIndexUint32;
    wanted.geometryShader = available.geometryShader; // numbers of primitives
    wanted.imageCubeArray = available.imageCubeArray;
    wanted.sampleRateShading = available.sampleRateShading;
    wanted.shaderClipDistance = available.shaderClipDistance;
    wanted.shaderCullDistance = available.shaderCullDistance;
    wanted.shaderImageGatherExtended = available.shaderImageGatherExtended;
    wanted.fillModeNonSolid = available.fillModeNonSolid;
    wanted.depthClamp = available.depthClamp;
    wanted.depthBiasClamp = available.depthBiasClamp;
    wanted.samplerAnisotropy = available.samplerAnisotropy;
    wanted.occlusionQueryPrecise = available.occlusionQueryPrecise;
    wanted.textureCompressionBC = available.textureCompressionBC;
    m_features.wireframe = available.fillModeNonSolid;
    m_features.depthClamp = available.depthClamp;
    m_features.depthBiasClamp = available.depthBiasClamp;
    m_features.anisotropy = available.samplerAnisotropy;
    m_features.preciseOcclusion = available.occlusionQueryPrecise;
    m_features.blockFormats = available.textureCompressionBC;
    m_features.maxAnisotropy = m_properties.limits.maxSamplerAnisotropy;
    m_features.timestamps = m_properties.limits.timestampComputeAndGraphics;
    constexpr VkSampleCountFlags most = 31; // 16 samples and fewer
    m_features.samples = most & m_properties.limits.framebufferColorSampleCounts &
                         m_properties.limits.framebufferDepthSampleCounts &
                         m_properties.limits.framebufferStencilSampleCounts &
                         m_properties.limits.sampledImageDepthSampleCounts;
}

void VulkanDevice::chooseDepthFormat()
{
    if (getFormatFeatures(VK_FORMAT_D24_UNORM_S8_UINT) & VK_FORMAT_FEATURE_DEPTH_STENCIL_ATTACHMENT_BIT)
        m_features.depthStencilFormat = VK_FORMAT_D24_UNORM_S8_UINT;
}

void VulkanDevice::chooseConstantAlignment()
{
    if (!m_robustBuffers)
        return; // then the device promises nothing
    VkPhysicalDeviceRobustness2PropertiesEXT robustness{
        VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_ROBUSTNESS_2_PROPERTIES_EXT};
    VkPhysicalDeviceProperties2 properties{VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_PROPERTIES_2};
    properties.pNext = &robustness;
    vkGetPhysicalDeviceProperties2(m_physical, &properties);
    constexpr VkDeviceSize anyVertex = 16;
    m_features.constantAlignment = std::max({anyVertex, m_properties.limits.minUniformBufferOffsetAlignment,
                                             robustness.robustUniformBufferAccessSizeAlignment});
}

VkFormatFeatureFlags2 VulkanDevice::getFormatFeatures(VkFormat format) const
{
    VkFormatProperties3 all{VK_STRUCTURE_TYPE_FORMAT_PROPERTIES_3};
    VkFormatProperties2 properties{VK_STRUCTURE_TYPE_FORMAT_PROPERTIES_2};
    properties.pNext = &all;
    vkGetPhysicalDeviceFormatProperties2(m_physical, format, &properties);
    return all.optimalTilingFeatures;
}

uint32_t VulkanDevice::findMemoryType(uint32_t typeBits, VkMemoryPropertyFlags wanted,
                                      VkMemoryPropertyFlags preferred) const
{
    uint32_t second = UINT32_MAX;
    for (uint32_t i = 0; i < m_memory.memoryTypeCount; ++i) {
        const VkMemoryPropertyFlags flags = m_memory.memoryTypes[i].propertyFlags;
        if (!(typeBits & (1u << i)) || (flags & wanted) != wanted)
            continue;
        if ((flags & preferred) == preferred)
            return i;
        if (second == UINT32_MAX)
            second = i;
    }
    return second;
}

bool VulkanDevice::check(VkResult result, const char* what)
{
    if (result == VK_SUCCESS)
        return true;
    if (result == VK_ERROR_DEVICE_LOST)
        markLost(what);
    else if (!m_lost)
        reportProblem("renderer", std::string("can't ") + what + ": result " + std::to_string(result));
    return false;
}

void VulkanDevice::markLost(const char* what)
{
    if (!m_lost)
        reportProblem("renderer", std::string("the device was lost: can't ") + what);
    m_lost = true;
}

void VulkanDevice::setName(VkObjectType type, uint64_t handle, const char* name) const
{
    if (!m_debugUtils || !handle || !name)
        return;
    VkDebugUtilsObjectNameInfoEXT info{VK_STRUCTURE_TYPE_DEBUG_UTILS_OBJECT_NAME_INFO_EXT};
    info.objectType = type;
    info.objectHandle = handle;
    info.pObjectName = name;
    vkSetDebugUtilsObjectNameEXT(m_device, &info);
}

void VulkanDevice::beginLabel(VkCommandBuffer commands, const char* text, uint32_t width,
                              uint32_t height) const
{
    if (!m_debugUtils)
        return;
    char label[64];
    std::snprintf(label, sizeof label, "%s, %u by %u", text, width, height);
    VkDebugUtilsLabelEXT info{VK_STRUCTURE_TYPE_DEBUG_UTILS_LABEL_EXT};
    info.pLabelName = label;
    vkCmdBeginDebugUtilsLabelEXT(commands, &info);
}

void VulkanDevice::endLabel(VkCommandBuffer commands) const
{
    if (m_debugUtils)
        vkCmdEndDebugUtilsLabelEXT(commands);
}

} // namespace helvantine
