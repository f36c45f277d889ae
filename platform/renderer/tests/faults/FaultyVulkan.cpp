// SPDX-License-Identifier: MIT
// Stands in for the system's Vulkan library and passes everything on to it, but for the calls that a test lets fail.
#include "FaultyVulkan.h"

#include <vulkan/vulkan.h>

#include <dlfcn.h>

#include <cstring>

namespace
{

unsigned s_callsBefore = 0;
VkResult s_result = VK_SUCCESS;
bool s_goesOn = false;
bool s_hasFailed = false;

VkResult takeResult()
{
    if (s_result == VK_SUCCESS || (s_hasFailed && !s_goesOn))
        return VK_SUCCESS;
    if (s_callsBefore > 0) {
        --s_callsBefore;
        return VK_SUCCESS;
    }
    s_hasFailed = true;
    return s_result;
}

/// Calls the system's function unless it is to fail.
template <auto function>
struct Stand;

template <typename... Arguments, VkResult(VKAPI_PTR* function)(Arguments...)>
struct Stand<function>
{
    static VkResult VKAPI_CALL call(Arguments... arguments)
    {
        const VkResult result = takeResult();
        return result == VK_SUCCESS ? s_real(arguments...) : result;
    }

    static PFN_vkVoidFunction replace(PFN_vkVoidFunction real)
    {
        s_real = reinterpret_cast<decltype(function)>(real);
        return reinterpret_cast<PFN_vkVoidFunction>(call);
    }

    static inline decltype(function) s_real = nullptr;
};

/// What makes something, ends a batch or waits. vkBeginCommandBuffer is left out: nothing can be recorded after it has
/// failed, and everything records.
constexpr struct
{
    const char* name;
    PFN_vkVoidFunction (*replace)(PFN_vkVoidFunction real);
} faultyCalls[] = {
    {"vkAllocateCommandBuffers", Stand<vkAllocateCommandBuffers>::replace},
    {"vkAllocateMemory", Stand<vkAllocateMemory>::replace},
    {"vkBindBufferMemory", Stand<vkBindBufferMemory>::replace},
    {"vkBindImageMemory", Stand<vkBindImageMemory>::replace},
    {"vkCreateBuffer", Stand<vkCreateBuffer>::replace},
    {"vkCreateCommandPool", Stand<vkCreateCommandPool>::replace},
    {"vkCreateDescriptorSetLayout", Stand<vkCreateDescriptorSetLayout>::replace},
    {"vkCreateDevice", Stand<vkCreateDevice>::replace},
    {"vkCreateGraphicsPipelines", Stand<vkCreateGraphicsPipelines>::replace},
    {"vkCreateImage", Stand<vkCreateImage>::replace},
    {"vkCreateImageView", Stand<vkCreateImageView>::replace},
    {"vkCreateInstance", Stand<vkCreateInstance>::replace},
    {"vkCreatePipelineCache", Stand<vkCreatePipelineCache>::replace},
    {"vkCreatePipelineLayout", Stand<vkCreatePipelineLayout>::replace},
    {"vkCreateQueryPool", Stand<vkCreateQueryPool>::replace},
    {"vkCreateSampler", Stand<vkCreateSampler>::replace},
    {"vkCreateSemaphore", Stand<vkCreateSemaphore>::replace},
    {"vkCreateShaderModule", Stand<vkCreateShaderModule>::replace},
    {"vkEndCommandBuffer", Stand<vkEndCommandBuffer>::replace},
    {"vkMapMemory", Stand<vkMapMemory>::replace},
    {"vkQueueSubmit2", Stand<vkQueueSubmit2>::replace},
    {"vkWaitSemaphores", Stand<vkWaitSemaphores>::replace},
};

PFN_vkVoidFunction choose(const char* name, PFN_vkVoidFunction real)
{
    for (const auto& faulty : faultyCalls) {
        if (real && !std::strcmp(name, faulty.name))
            return faulty.replace(real);
    }
    return real;
}

PFN_vkGetInstanceProcAddr openVulkan()
{
    void* library = dlopen(HELVANTINE_VULKAN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    return library ? reinterpret_cast<PFN_vkGetInstanceProcAddr>(dlsym(library, "vkGetInstanceProcAddr"))
                   : nullptr;
}

PFN_vkGetDeviceProcAddr s_getDeviceProcAddr = nullptr;

PFN_vkVoidFunction VKAPI_CALL getDeviceProcAddr(VkDevice device, const char* name)
{
    return choose(name, s_getDeviceProcAddr(device, name));
}

} // namespace

PFN_vkVoidFunction VKAPI_CALL vkGetInstanceProcAddr(VkInstance instance, const char* name)
{
    static const PFN_vkGetInstanceProcAddr real = openVulkan();
    const PFN_vkVoidFunction found = real ? real(instance, name) : nullptr;
    if (!found || std::strcmp(name, "vkGetDeviceProcAddr"))
        return choose(name, found);
    s_getDeviceProcAddr = reinterpret_cast<PFN_vkGetDeviceProcAddr>(found);
    return reinterpret_cast<PFN_vkVoidFunction>(getDeviceProcAddr);
}

void setVulkanFault(unsigned callsBefore, int result, bool goesOn)
{
    s_callsBefore = callsBefore;
    s_result = static_cast<VkResult>(result);
    s_goesOn = goesOn;
    s_hasFailed = false;
}

bool hasVulkanFailed()
{
    return s_hasFailed;
}
