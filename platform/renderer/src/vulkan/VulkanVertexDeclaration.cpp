// SPDX-License-Identifier: MIT
#include "vulkan/VulkanVertexDeclaration.h"

#include "shader/Hash128.h"

#include <algorithm>
#include <array>

namespace helvantine
{

namespace
{

std::string toUpper(const char* text)
{
    std::string upper = text;
    for (char& letter : upper) {
        if (letter >= 'a' && letter <= 'z')
            letter = static_cast<char>(letter - 'a' + 'A');
    }
    return upper;
}

} // namespace

VulkanVertexDeclaration::VulkanVertexDeclaration(std::vector<Element> elements)
    : m_elements(std::move(elements))
{
    Hasher128 hasher;
    for (const Element& element : m_elements) {
        hasher.add(element.semantic);
        for (const uint32_t number : {element.index, uint32_t(element.format->dxgi), element.slot,
                                      element.offset, uint32_t(element.perInstance)})
            hasher.add(number);
        m_slots |= 1u << element.slot;
    }
    m_hash = hasher.finish().low;
}

const VulkanVertexDeclaration::Element* VulkanVertexDeclaration::find(const std::string& semantic,
                                                                      uint32_t index) const
{
    const auto found = std::find_if(m_elements.begin(), m_elements.end(), [&](const Element& element) {
        return element.index == index && element.semantic == semantic;
    });
    return found != m_elements.end() ? &*found : nullptr;
}

VertexDeclaration* createVertexDeclaration(const D3D11_INPUT_ELEMENT_DESC* elements, unsigned count)
{
    constexpr unsigned mostElements = 32;
    constexpr uint32_t largestOffset = 2047;
    if ((!elements && count > 0) || count > mostElements)
        return nullptr;
    std::vector<VulkanVertexDeclaration::Element> copied;
    std::array<uint32_t, vertexSlotCount> ends{};
    for (unsigned i = 0; i < count; ++i) {
        const D3D11_INPUT_ELEMENT_DESC& element = elements[i];
        const FormatInfo* format = findFormat(element.Format);
        if (!element.SemanticName || !format || !format->vertex || element.InputSlot >= vertexSlotCount)
            return nullptr;
        uint32_t& end = ends[element.InputSlot];
        const uint32_t alignment = std::min(4u, format->layout.blockBytes);
        const uint32_t appended = (end + alignment - 1) / alignment * alignment;
        const uint32_t offset =
            element.AlignedByteOffset == D3D11_APPEND_ALIGNED_ELEMENT ? appended : element.AlignedByteOffset;
        if (offset > largestOffset || offset % alignment != 0)
            return nullptr;
        end = offset + format->layout.blockBytes;
        copied.push_back({toUpper(element.SemanticName), element.SemanticIndex, format, element.InputSlot,
                          offset, element.InputSlotClass == D3D11_INPUT_PER_INSTANCE_DATA});
    }
    return new VulkanVertexDeclaration(std::move(copied));
}

} // namespace helvantine
