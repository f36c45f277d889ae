// SPDX-License-Identifier: MIT
#define VOLK_IMPLEMENTATION
#include "support/BareVulkan.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace helvantine::bench
{

namespace
{

constexpr VkDeviceSize memorySize = VkDeviceSize(64) << 20;
constexpr uint32_t queueFamily = 0; // draws, on every device that there is

} // namespace

void require(VkResult result, const char* what)
{
    if (result == VK_SUCCESS)
        return;
    std::fprintf(stderr, "can't %s: result %d\n", what, static_cast<int>(result));
    std::exit(1);
}

BareVulkan::BareVulkan(const char* deviceName)
{
    createInstance();
    chooseDevice(deviceName);
    createDevice();
    createFrame();
    createMemory();
}

BareVulkan::~BareVulkan()
{
    vkDeviceWaitIdle(m_device);
    for (const BareImage& image : m_images) {
        vkDestroyImageView(m_device, image.view, nullptr);
        vkDestroyImage(m_device, image.image, nullptr);
        vkFreeMemory(m_device, image.memory, nullptr);
    }
    for (const VkSampler sampler : m_samplers)
        vkDestroySampler(m_device, sampler, nullptr);
    vkDestroyBuffer(m_device, m_free.buffer, nullptr);
    vkFreeMemory(m_device, m_memory, nullptr);
    vkDestroyFence(m_device, m_fence, nullptr);
    vkDestroyCommandPool(m_device, m_pool, nullptr);
    vkDestroyDevice(m_device, nullptr);
    vkDestroyInstance(m_instance, nullptr);
}

void BareVulkan::createInstance()
{
    require(volkInitialize(), "find the Vulkan library");
    VkApplicationInfo application{VK_STRUCTURE_TYPE_APPLICATION_INFO};
    application.apiVersion = VK_API_VERSION_1_3;
    VkInstanceCreateInfo info{VK_STRUCTURE_TYPE_INSTANCE_CREATE_INFO};
    info.pApplicationInfo = &application;
    require(vkCreateInstance(&info, nullptr, &m_instance), "create an instance");
    volkLoadInstance(m_instance);
}

void BareVulkan::chooseDevice(const char* name)
{
    uint32_t count = 16;
    VkPhysicalDevice devices[16];
    vkEnumeratePhysicalDevices(m_instance, &count, devices);
    for (uint32_t i = 0; i < count && !m_physical; ++i) {
        vkGetPhysicalDeviceProperties(devices[i], &m_properties);
        if (!std::strcmp(m_properties.deviceName, name))
            m_physical = devices[i];
    }
    require(m_physical ? VK_SUCCESS : VK_ERROR_INITIALIZATION_FAILED, "find the renderer's device");
}

void BareVulkan::createDevice()
{
    VkPhysicalDeviceVulkan12Features v12{VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_VULKAN_1_2_FEATURES};
    v12.scalarBlockLayout = VK_TRUE; // the shader compiler's programs ask for it
    VkPhysicalDeviceVulkan13Features v13{VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_VULKAN_1_3_FEATURES};
    v13.pNext = &v12;
    v13.dynamicRendering = VK_TRUE;
    v13.synchronization2 = VK_TRUE;
    const float priority = 1.0f;
    VkDeviceQueueCreateInfo queue{VK_STRUCTURE_TYPE_DEVICE_QUEUE_CREATE_INFO};
    queue.queueFamilyIndex = queueFamily;
    queue.queueCount = 1;
    queue.pQueuePriorities = &priority;
    VkDeviceCreateInfo info{VK_STRUCTURE_TYPE_DEVICE_CREATE_INFO};
    info.pNext = &v13;
    info.queueCreateInfoCount = 1;
    info.pQueueCreateInfos = &queue;
    require(vkCreateDevice(m_physical, &info, nullptr, &m_device), "create a device");
    volkLoadDevice(m_device);
    vkGetDeviceQueue(m_device, queueFamily, 0, &m_queue);
}

void BareVulkan::createFrame()
{
    VkCommandPoolCreateInfo pool{VK_STRUCTURE_TYPE_COMMAND_POOL_CREATE_INFO};
    pool.flags = VK_COMMAND_POOL_CREATE_TRANSIENT_BIT;
    pool.queueFamilyIndex = queueFamily;
    require(vkCreateCommandPool(m_device, &pool, nullptr, &m_pool), "create a command pool");
    VkCommandBufferAllocateInfo buffer{VK_STRUCTURE_TYPE_COMMAND_BUFFER_ALLOCATE_INFO};
    buffer.commandPool = m_pool;
    buffer.level = VK_COMMAND_BUFFER_LEVEL_PRIMARY;
    buffer.commandBufferCount = 1;
    require(vkAllocateCommandBuffers(m_device, &buffer, &m_commands), "allocate a command buffer");
    VkFenceCreateInfo fence{VK_STRUCTURE_TYPE_FENCE_CREATE_INFO};
    require(vkCreateFence(m_device, &fence, nullptr, &m_fence), "create a fence");
}

void BareVulkan::createMemory()
{
    VkBufferCreateInfo info{VK_STRUCTURE_TYPE_BUFFER_CREATE_INFO};
    info.size = memorySize;
    info.usage = VK_BUFFER_USAGE_UNIFORM_BUFFER_BIT | VK_BUFFER_USAGE_VERTEX_BUFFER_BIT |
                 VK_BUFFER_USAGE_TRANSFER_SRC_BIT | VK_BUFFER_USAGE_TRANSFER_DST_BIT;
    require(vkCreateBuffer(m_device, &info, nullptr, &m_free.buffer), "create a buffer");
    VkMemoryRequirements needs;
    vkGetBufferMemoryRequirements(m_device, m_free.buffer, &needs);
    VkMemoryAllocateInfo memory{VK_STRUCTURE_TYPE_MEMORY_ALLOCATE_INFO};
    memory.allocationSize = needs.size;
    memory.memoryTypeIndex = findMemoryType(needs.memoryTypeBits, VK_MEMORY_PROPERTY_HOST_VISIBLE_BIT |
                                                                      VK_MEMORY_PROPERTY_HOST_COHERENT_BIT);
    require(vkAllocateMemory(m_device, &memory, nullptr, &m_memory), "allocate memory");
    require(vkBindBufferMemory(m_device, m_free.buffer, m_memory, 0), "bind memory");
    void* data = nullptr;
    require(vkMapMemory(m_device, m_memory, 0, VK_WHOLE_SIZE, 0, &data), "map memory");
    m_free.data = static_cast<uint8_t*>(data);
}

uint32_t BareVulkan::findMemoryType(uint32_t bits, VkMemoryPropertyFlags wanted) const
{
    VkPhysicalDeviceMemoryProperties memory;
    vkGetPhysicalDeviceMemoryProperties(m_physical, &memory);
    for (uint32_t i = 0; i < memory.memoryTypeCount; ++i) {
        if ((bits & (1u << i)) && (memory.memoryTypes[i].propertyFlags & wanted) == wanted)
            return i;
    }
    require(VK_ERROR_OUT_OF_DEVICE_MEMORY, "find a memory type");
    return 0;
}

BareImage BareVulkan::createImage(uint32_t width, uint32_t height, VkFormat format, VkImageUsageFlags usage)
{
    VkImageCreateInfo info{VK_STRUCTURE_TYPE_IMAGE_CREATE_INFO};
    info.imageType = VK_IMAGE_TYPE_2D;
    info.format = format;
    info.extent = {width, height, 1};
    info.mipLevels = 1;
    info.arrayLayers = 1;
    info.samples = VK_SAMPLE_COUNT_1_BIT;
    info.tiling = VK_IMAGE_TILING_OPTIMAL;
    info.usage = usage;
    BareImage image{.format = format, .width = width, .height = height};
    require(vkCreateImage(m_device, &info, nullptr, &image.image), "create an image");
    VkMemoryRequirements needs;
    vkGetImageMemoryRequirements(m_device, image.image, &needs);
    VkMemoryAllocateInfo memory{VK_STRUCTURE_TYPE_MEMORY_ALLOCATE_INFO};
    memory.allocationSize = needs.size;
    memory.memoryTypeIndex = findMemoryType(needs.memoryTypeBits, VK_MEMORY_PROPERTY_DEVICE_LOCAL_BIT);
    require(vkAllocateMemory(m_device, &memory, nullptr, &image.memory), "allocate an image's memory");
    require(vkBindImageMemory(m_device, image.image, image.memory, 0), "bind an image's memory");
    VkImageViewCreateInfo view{VK_STRUCTURE_TYPE_IMAGE_VIEW_CREATE_INFO};
    view.image = image.image;
    view.viewType = VK_IMAGE_VIEW_TYPE_2D;
    view.format = format;
    view.subresourceRange = {VK_IMAGE_ASPECT_COLOR_BIT, 0, 1, 0, 1};
    require(vkCreateImageView(m_device, &view, nullptr, &image.view), "create an image view");
    m_images.push_back(image);
    return image;
}

namespace
{

/// Everything before is done before anything after begins: for what happens outside of measurements.
void changeLayout(VkCommandBuffer commands, BareImage& image, VkImageLayout layout)
{
    VkImageMemoryBarrier2 barrier{VK_STRUCTURE_TYPE_IMAGE_MEMORY_BARRIER_2};
    barrier.srcStageMask = barrier.dstStageMask = VK_PIPELINE_STAGE_2_ALL_COMMANDS_BIT;
    barrier.srcAccessMask = VK_ACCESS_2_MEMORY_WRITE_BIT;
    barrier.dstAccessMask = VK_ACCESS_2_MEMORY_READ_BIT | VK_ACCESS_2_MEMORY_WRITE_BIT;
    barrier.oldLayout = image.layout;
    barrier.newLayout = layout;
    barrier.image = image.image;
    barrier.subresourceRange = {VK_IMAGE_ASPECT_COLOR_BIT, 0, 1, 0, 1};
    VkDependencyInfo info{VK_STRUCTURE_TYPE_DEPENDENCY_INFO};
    info.imageMemoryBarrierCount = 1;
    info.pImageMemoryBarriers = &barrier;
    vkCmdPipelineBarrier2(commands, &info);
    image.layout = layout;
}

VkBufferImageCopy describeWholeImage(const BareImage& image, const BareBytes& bytes)
{
    VkBufferImageCopy region{};
    region.bufferOffset = bytes.offset;
    region.imageSubresource = {VK_IMAGE_ASPECT_COLOR_BIT, 0, 0, 1};
    region.imageExtent = {image.width, image.height, 1};
    return region;
}

} // namespace

BareImage BareVulkan::createTarget(uint32_t width, uint32_t height, VkFormat format)
{
    BareImage image = createImage(width, height, format,
                                  VK_IMAGE_USAGE_COLOR_ATTACHMENT_BIT | VK_IMAGE_USAGE_SAMPLED_BIT |
                                      VK_IMAGE_USAGE_TRANSFER_SRC_BIT | VK_IMAGE_USAGE_TRANSFER_DST_BIT);
    const VkCommandBuffer commands = begin();
    changeLayout(commands, image, VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL);
    const VkClearColorValue black{};
    const VkImageSubresourceRange whole{VK_IMAGE_ASPECT_COLOR_BIT, 0, 1, 0, 1};
    vkCmdClearColorImage(commands, image.image, image.layout, &black, 1, &whole);
    changeLayout(commands, image, VK_IMAGE_LAYOUT_SHADER_READ_ONLY_OPTIMAL);
    submit();
    wait();
    return image;
}

BareImage BareVulkan::createTexture(uint32_t width, uint32_t height, VkFormat format, const void* texels)
{
    BareImage image =
        createImage(width, height, format, VK_IMAGE_USAGE_SAMPLED_BIT | VK_IMAGE_USAGE_TRANSFER_DST_BIT);
    const size_t size = size_t(width) * height * 4;
    const BareBytes bytes = allocate(size);
    std::memcpy(bytes.data, texels, size);
    const VkCommandBuffer commands = begin();
    changeLayout(commands, image, VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL);
    const VkBufferImageCopy region = describeWholeImage(image, bytes);
    vkCmdCopyBufferToImage(commands, bytes.buffer, image.image, image.layout, 1, &region);
    changeLayout(commands, image, VK_IMAGE_LAYOUT_SHADER_READ_ONLY_OPTIMAL);
    submit();
    wait();
    return image;
}

VkSampler BareVulkan::createSampler(VkFilter filter, VkSamplerAddressMode mode)
{
    VkSamplerCreateInfo info{VK_STRUCTURE_TYPE_SAMPLER_CREATE_INFO};
    info.magFilter = info.minFilter = filter;
    info.mipmapMode =
        filter == VK_FILTER_LINEAR ? VK_SAMPLER_MIPMAP_MODE_LINEAR : VK_SAMPLER_MIPMAP_MODE_NEAREST;
    info.addressModeU = info.addressModeV = info.addressModeW = mode;
    info.maxLod = VK_LOD_CLAMP_NONE;
    VkSampler sampler = VK_NULL_HANDLE;
    require(vkCreateSampler(m_device, &info, nullptr, &sampler), "create a sampler");
    m_samplers.push_back(sampler);
    return sampler;
}

BareBytes BareVulkan::allocate(VkDeviceSize size)
{
    constexpr VkDeviceSize everyPurpose = 256;
    const BareBytes bytes = m_free;
    const VkDeviceSize whole = (size + everyPurpose - 1) / everyPurpose * everyPurpose;
    if (m_free.offset + whole > memorySize)
        require(VK_ERROR_OUT_OF_DEVICE_MEMORY, "allocate memory");
    m_free.offset += whole;
    m_free.data += whole;
    return bytes;
}

VkCommandBuffer BareVulkan::begin()
{
    require(vkResetCommandPool(m_device, m_pool, 0), "reset the command pool");
    VkCommandBufferBeginInfo info{VK_STRUCTURE_TYPE_COMMAND_BUFFER_BEGIN_INFO};
    info.flags = VK_COMMAND_BUFFER_USAGE_ONE_TIME_SUBMIT_BIT;
    require(vkBeginCommandBuffer(m_commands, &info), "begin recording");
    return m_commands;
}

void BareVulkan::submit()
{
    require(vkEndCommandBuffer(m_commands), "end recording");
    VkCommandBufferSubmitInfo commands{VK_STRUCTURE_TYPE_COMMAND_BUFFER_SUBMIT_INFO};
    commands.commandBuffer = m_commands;
    VkSubmitInfo2 info{VK_STRUCTURE_TYPE_SUBMIT_INFO_2};
    info.commandBufferInfoCount = 1;
    info.pCommandBufferInfos = &commands;
    require(vkQueueSubmit2(m_queue, 1, &info, m_fence), "submit");
}

void BareVulkan::wait()
{
    require(vkWaitForFences(m_device, 1, &m_fence, VK_TRUE, UINT64_MAX), "wait");
    require(vkResetFences(m_device, 1, &m_fence), "reset the fence");
}

void BareVulkan::makeReady(VkCommandBuffer commands, const std::vector<BareImage*>& sources,
                           BareImage& target)
{
    VkImageMemoryBarrier2 barriers[17];
    uint32_t count = 0;
    const auto add = [&](BareImage& image, VkImageLayout layout) {
        const bool reads = layout == VK_IMAGE_LAYOUT_SHADER_READ_ONLY_OPTIMAL;
        VkImageMemoryBarrier2& barrier = barriers[count++];
        barrier = {VK_STRUCTURE_TYPE_IMAGE_MEMORY_BARRIER_2};
        barrier.srcStageMask =
            reads ? VK_PIPELINE_STAGE_2_COLOR_ATTACHMENT_OUTPUT_BIT
                  : VK_PIPELINE_STAGE_2_FRAGMENT_SHADER_BIT | VK_PIPELINE_STAGE_2_COLOR_ATTACHMENT_OUTPUT_BIT;
        barrier.srcAccessMask = VK_ACCESS_2_COLOR_ATTACHMENT_WRITE_BIT;
        barrier.dstStageMask =
            reads ? VK_PIPELINE_STAGE_2_FRAGMENT_SHADER_BIT : VK_PIPELINE_STAGE_2_COLOR_ATTACHMENT_OUTPUT_BIT;
        barrier.dstAccessMask =
            reads ? VK_ACCESS_2_SHADER_SAMPLED_READ_BIT
                  : VK_ACCESS_2_COLOR_ATTACHMENT_READ_BIT | VK_ACCESS_2_COLOR_ATTACHMENT_WRITE_BIT;
        barrier.oldLayout = image.layout;
        barrier.newLayout = layout;
        barrier.image = image.image;
        barrier.subresourceRange = {VK_IMAGE_ASPECT_COLOR_BIT, 0, 1, 0, 1};
        image.layout = layout;
    };
    for (BareImage* source : sources) {
        if (source->layout != VK_IMAGE_LAYOUT_SHADER_READ_ONLY_OPTIMAL)
            add(*source, VK_IMAGE_LAYOUT_SHADER_READ_ONLY_OPTIMAL);
    }
    add(target, VK_IMAGE_LAYOUT_COLOR_ATTACHMENT_OPTIMAL);
    VkDependencyInfo info{VK_STRUCTURE_TYPE_DEPENDENCY_INFO};
    info.imageMemoryBarrierCount = count;
    info.pImageMemoryBarriers = barriers;
    vkCmdPipelineBarrier2(commands, &info);
}

std::vector<uint8_t> BareVulkan::read(BareImage& image)
{
    const size_t size = size_t(image.width) * image.height * 4;
    const BareBytes before = m_free;
    const BareBytes bytes = allocate(size);
    const VkCommandBuffer commands = begin();
    changeLayout(commands, image, VK_IMAGE_LAYOUT_TRANSFER_SRC_OPTIMAL);
    const VkBufferImageCopy region = describeWholeImage(image, bytes);
    vkCmdCopyImageToBuffer(commands, image.image, image.layout, bytes.buffer, 1, &region);
    submit();
    wait();
    m_free = before;
    return {bytes.data, bytes.data + size};
}

} // namespace helvantine::bench
