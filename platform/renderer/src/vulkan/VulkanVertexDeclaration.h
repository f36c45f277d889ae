// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/FormatTable.h"

#include <helvantine/renderer/VertexDeclaration.h>

#include <string>
#include <vector>

namespace helvantine
{

inline constexpr uint32_t vertexSlotCount = 16;

/// A vertex layout with its offsets resolved.
class VulkanVertexDeclaration final : public VertexDeclaration
{
public:
    struct Element
    {
        std::string semantic; ///< upper case
        uint32_t index = 0;
        const FormatInfo* format = nullptr;
        uint32_t slot = 0;
        uint32_t offset = 0;
        bool perInstance = false;
    };

    explicit VulkanVertexDeclaration(std::vector<Element> elements);

    const Element* find(const std::string& semantic, uint32_t index) const;
    uint32_t getSlots() const { return m_slots; } ///< a bit for each slot that an element lies in
    uint64_t getHash() const { return m_hash; }   ///< of the content: equal layouts share their pipelines

private:
    std::vector<Element> m_elements;
    uint32_t m_slots = 0;
    uint64_t m_hash = 0;
};

} // namespace helvantine
