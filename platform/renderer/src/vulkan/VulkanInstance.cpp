// SPDX-License-Identifier: MIT
#include "vulkan/VulkanInstance.h"

#include <helvantine/core/Report.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

namespace helvantine
{

namespace
{

constexpr const char* validationLayer = "VK_LAYER_KHRONOS_validation";

/// The software rasteriser's fast path for BGRA targets mixes up channels of some shaders. It is switched
/// off for this process unless the host has chosen a value itself.
void avoidWrongPixels()
{
#if defined(_WIN32)
    if (!std::getenv("LP_PERF"))
        _putenv_s("LP_PERF", "no_rast_linear");
#else
    setenv("LP_PERF", "no_rast_linear", 0);
#endif
}

VKAPI_ATTR VkBool32 VKAPI_CALL reportMessage(VkDebugUtilsMessageSeverityFlagBitsEXT,
                                             VkDebugUtilsMessageTypeFlagsEXT,
                                             const VkDebugUtilsMessengerCallbackDataEXT* data, void*)
{
    reportProblem("validation", data->pMessage ? data->pMessage : "a message without words");
    return VK_FALSE;
}

bool hasLayer(const char* name)
{
    uint32_t count = 0;
    vkEnumerateInstanceLayerProperties(&count, nullptr);
    std::vector<VkLayerProperties> layers(count);
    vkEnumerateInstanceLayerProperties(&count, layers.data());
    return std::any_of(layers.begin(), layers.end(), [name](const VkLayerProperties& layer) {
        return !std::strcmp(layer.layerName, name);
    });
}

VkDebugUtilsMessengerCreateInfoEXT describeMessenger()
{
    VkDebugUtilsMessengerCreateInfoEXT info{VK_STRUCTURE_TYPE_DEBUG_UTILS_MESSENGER_CREATE_INFO_EXT};
    info.messageSeverity =
        VK_DEBUG_UTILS_MESSAGE_SEVERITY_WARNING_BIT_EXT | VK_DEBUG_UTILS_MESSAGE_SEVERITY_ERROR_BIT_EXT;
    info.messageType =
        VK_DEBUG_UTILS_MESSAGE_TYPE_GENERAL_BIT_EXT | VK_DEBUG_UTILS_MESSAGE_TYPE_VALIDATION_BIT_EXT;
    info.pfnUserCallback = reportMessage;
    return info;
}

} // namespace

VulkanInstance::~VulkanInstance()
{
    if (m_messenger)
        vkDestroyDebugUtilsMessengerEXT(m_instance, m_messenger, nullptr);
    if (m_instance)
        vkDestroyInstance(m_instance, nullptr);
}

bool VulkanInstance::create(const std::vector<const char*>& windowExtensions, bool validation)
{
    avoidWrongPixels();
    if (volkInitialize() != VK_SUCCESS) {
        reportProblem("renderer", "no Vulkan library on this system");
        return false;
    }
    if (volkGetInstanceVersion() < VK_API_VERSION_1_3) {
        reportProblem("renderer", "the Vulkan library is older than version 1.3");
        return false;
    }
    if (validation && !hasLayer(validationLayer)) {
        reportProblem("renderer", "the validation layer is wanted and not installed");
        return false;
    }
    std::vector<const char*> extensions = windowExtensions;
    if (!createInstance(extensions, validation))
        return false;
    volkLoadInstance(m_instance);
    m_debugUtils = validation;
    if (validation)
        createMessenger();
    return true;
}

bool VulkanInstance::createInstance(std::vector<const char*>& extensions, bool validation)
{
    const VkValidationFeatureEnableEXT enabled = VK_VALIDATION_FEATURE_ENABLE_SYNCHRONIZATION_VALIDATION_EXT;
    VkDebugUtilsMessengerCreateInfoEXT messenger = describeMessenger();
    VkValidationFeaturesEXT features{VK_STRUCTURE_TYPE_VALIDATION_FEATURES_EXT};
    features.pNext = &messenger;
    features.enabledValidationFeatureCount = 1;
    features.pEnabledValidationFeatures = &enabled;

    VkApplicationInfo application{VK_STRUCTURE_TYPE_APPLICATION_INFO};
    application.pApplicationName = "Helvantine";
    application.pEngineName = "Helvantine";
    application.apiVersion = VK_API_VERSION_1_3;
    VkInstanceCreateInfo info{VK_STRUCTURE_TYPE_INSTANCE_CREATE_INFO};
    info.pApplicationInfo = &application;
    if (validation) {
        extensions.push_back(VK_EXT_DEBUG_UTILS_EXTENSION_NAME);
        info.pNext = &features;
        info.enabledLayerCount = 1;
        info.ppEnabledLayerNames = &validationLayer;
    }
    info.enabledExtensionCount = static_cast<uint32_t>(extensions.size());
    info.ppEnabledExtensionNames = extensions.data();
    const VkResult result = vkCreateInstance(&info, nullptr, &m_instance);
    if (result == VK_SUCCESS)
        return true;
    reportProblem("renderer", "no Vulkan instance: result " + std::to_string(result));
    m_instance = VK_NULL_HANDLE;
    return false;
}

void VulkanInstance::createMessenger()
{
    const VkDebugUtilsMessengerCreateInfoEXT info = describeMessenger();
    if (vkCreateDebugUtilsMessengerEXT(m_instance, &info, nullptr, &m_messenger) != VK_SUCCESS)
        m_messenger = VK_NULL_HANDLE;
}

} // namespace helvantine
