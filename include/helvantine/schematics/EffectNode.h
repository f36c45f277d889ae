// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/schematics/SchematicsNode.h>

namespace helvantine
{

class Effect;

/// The place of an effect in the graph. Has no pins of its own: links end at the effect's properties.
class HELVANTINE_FX_API EffectNode : public SchematicsNode
{
    HELVANTINE_PLUGIN_CLASS(EffectNode)

    void setEffect(Effect* effect) { m_effect = effect; }

    Effect* m_effect = nullptr; ///< owns this node; not counted. Null once the effect is gone
};

} // namespace helvantine
