// SPDX-License-Identifier: MIT
#include <helvantine/host/CompositionManager.h>

#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/timeline/Composition.h>

namespace helvantine
{

CompositionManager::CompositionManager() : m_root(new Composition(true, true))
{
    m_root->setIsFolder(true);
}

CompositionManager::~CompositionManager() = default;

void CompositionManager::serialize(FxSerializer& serializer)
{
    serializer.tick();
    serializer.announceRoot();
    m_root->serialize(serializer);
}

} // namespace helvantine
