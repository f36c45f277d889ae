// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/PropertyLink.h>

#include <cstddef>
#include <string>
#include <vector>

namespace helvantine
{

class PropertyBase;
class Schematics;

/// For a warm-up: the resource properties that a graph's links lead to, and what the graph may let them name, which
/// can ask for other programs, and for targets of another format.
///
/// While it lives no link passes anything on. Afterwards all the properties name what they named before.
class LinkedResources
{
public:
    explicit LinkedResources(const Schematics& graph);
    ~LinkedResources();
    LinkedResources(const LinkedResources&) = delete;
    LinkedResources& operator=(const LinkedResources&) = delete;

    /// Lets all the properties name the next: nothing at first, then each resource that may ask for something that
    /// none before it does. False behind the last, and where there are no such properties.
    bool bringNext();

private:
    struct Target
    {
        PropertyBase* property;
        std::string own;
    };

    std::vector<Target> m_targets;
    std::vector<std::string> m_texts;
    std::size_t m_next = 0;
    PropertyLinkLimit m_noSteps{0};
};

} // namespace helvantine
