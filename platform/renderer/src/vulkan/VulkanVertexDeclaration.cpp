// SPDX-License-Identifier: MIT
#include "vulkan/VulkanVertexDeclaration.h"

#include "shader/Hash128.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#include <algorithm>
#include <array>
#include <optional>

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

/// Null if it can't be. ends: behind the elements so far, in bytes by slot.
std::optional<VulkanVertexDeclaration::Element> readElement(const D3D11_INPUT_ELEMENT_DESC& element,
                                                            std::array<uint32_t, vertexSlotCount>& ends)
{
    constexpr uint32_t largestOffset = 2047;
    const FormatInfo* format = findFormat(element.Format);
    if (!element.SemanticName || !format || !format->vertex || element.InputSlot >= vertexSlotCount)
        return {};
    uint32_t& end = ends[element.InputSlot];
    const uint32_t alignment = std::min(4u, format->layout.blockBytes);
    const uint32_t appended = (end + alignment - 1) / alignment * alignment;
    const uint32_t offset =
        element.AlignedByteOffset == D3D11_APPEND_ALIGNED_ELEMENT ? appended : element.AlignedByteOffset;
    if (offset > largestOffset || offset % alignment != 0)
        return {};
    end = offset + format->layout.blockBytes;
    return VulkanVertexDeclaration::Element{toUpper(element.SemanticName),
                                            element.SemanticIndex,
                                            format,
                                            element.InputSlot,
                                            offset,
                                            element.InputSlotClass == D3D11_INPUT_PER_INSTANCE_DATA};
}

std::string describeFault(const D3D11_INPUT_ELEMENT_DESC& element, unsigned index)
{
    const bool appended = element.AlignedByteOffset == D3D11_APPEND_ALIGNED_ELEMENT;
    return formatString("no vertex declaration with element %u: \"%s\", format %u, slot %u, %s", index,
                        element.SemanticName ? element.SemanticName : "", unsigned(element.Format),
                        element.InputSlot,
                        appended ? "appended" : formatString("offset %u", element.AlignedByteOffset).c_str());
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
    if ((!elements && count > 0) || count > mostElements) {
        reportProblem("renderer", formatString("no vertex declaration of %u elements: %u are possible",
                                               elements ? count : 0, mostElements));
        return nullptr;
    }
    std::vector<VulkanVertexDeclaration::Element> copied;
    std::array<uint32_t, vertexSlotCount> ends{};
    for (unsigned i = 0; i < count; ++i) {
        const auto element = readElement(elements[i], ends);
        if (!element) {
            reportProblem("renderer", describeFault(elements[i], i));
            return nullptr;
        }
        copied.push_back(*element);
    }
    return new VulkanVertexDeclaration(std::move(copied));
}

} // namespace helvantine
