// SPDX-License-Identifier: MIT
#include "CompositionChoice.h"

#include <helvantine/core/UniqueId.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <functional>

namespace helvantine::tool
{

namespace
{

/// The first composition below, depth first, that passes the test; null if there is none.
Composition* findBelow(const Composition& parent, const std::function<bool(const Composition&)>& test)
{
    for (const SmartRef<Composition>& child : parent.m_compositions) {
        if (test(*child))
            return child.get();
        if (Composition* found = findBelow(*child, test))
            return found;
    }
    return nullptr;
}

/// The names of all compositions that are no folders, for the user to choose from.
std::string listNames(const Composition& root)
{
    std::string names;
    findBelow(root, [&](const Composition& composition) {
        if (!composition.m_isFolder)
            names += (names.empty() ? "\"" : ", \"") + composition.m_name + "\"";
        return false;
    });
    return names.empty() ? "none" : names;
}

} // namespace

std::string chooseComposition(const Document& document, const std::string& path, const std::string& name,
                              SmartRef<Composition>& chosen)
{
    Composition& root = *document.getCompositionManager()->getRoot();
    if (name.empty()) {
        chosen = findBelow(root, [](const Composition& candidate) { return !candidate.m_isFolder; });
        if (!chosen && !root.m_rootEffect->m_children.empty())
            chosen = &root;
        return chosen ? std::string() : path + ": holds no composition to draw";
    }
    const UniqueId id = stringToUniqueId(name.c_str());
    chosen = findBelow(
        root, [&](const Composition& candidate) { return candidate.m_name == name || candidate.m_id == id; });
    return chosen ? std::string()
                  : path + ": holds no composition \"" + name + "\"; there is: " + listNames(root);
}

} // namespace helvantine::tool
