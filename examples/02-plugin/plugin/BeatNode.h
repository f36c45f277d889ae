// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Property.h>
#include <helvantine/schematics/SchematicsNode.h>

namespace silk
{

/// A pulse that jumps to 1 at each beat and dies away until the next.
class BeatNode : public helvantine::SchematicsNode
{
    HELVANTINE_PLUGIN_CLASS(BeatNode)

    BeatNode();

    void update(helvantine::FxUpdateContext& context) override;

private:
    helvantine::SmartRef<helvantine::PropertyGroup> m_inputs;
    helvantine::FloatProperty m_beatsPerMinute;
    helvantine::FloatProperty m_decay; ///< how fast it dies away: after a beat it is at exp(-decay)
    helvantine::SmartRef<helvantine::PropertyGroup> m_outputs;
    helvantine::FloatProperty m_pulse; ///< 0 to 1
};

} // namespace silk
