// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/SmartRef.h>

namespace helvantine
{

class Composition;
class FxSerializer;

/// The tree of a project's compositions: one root, a folder, there from the first moment.
class HELVANTINE_FX_API CompositionManager
{
public:
    CompositionManager();
    ~CompositionManager();
    CompositionManager(const CompositionManager&) = delete;
    CompositionManager& operator=(const CompositionManager&) = delete;

    /// Reading fills the root that is there, and its children.
    void serialize(FxSerializer& serializer);

    Composition* getRoot() const { return m_root.get(); } ///< never null

private:
    SmartRef<Composition> m_root;
};

} // namespace helvantine
