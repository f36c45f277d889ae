// SPDX-License-Identifier: MIT
#include "BeatNode.h"

#include <helvantine/object/AddProperties.h>

#include <cmath>

namespace silk
{

using namespace helvantine;

HELVANTINE_PLUGIN_RECORDS(BeatNode, LogicNode, PluginNode, "5B0C2E5A-7D11-4E0C-9A3F-0B6C51D87A04",
                          "Silk/Beat", "Beat", true)

BeatNode::BeatNode()
    : m_inputs(new PropertyGroup(this, "Inputs")), m_beatsPerMinute(this, KindFloat, "Beats per Minute"),
      m_decay(this, KindFloat, "Decay"), m_outputs(new PropertyGroup(this, "Outputs")),
      m_pulse(this, KindFloat, "Pulse")
{
    m_beatsPerMinute.setDefault(120.0f);
    m_decay.setDefault(4.0f);
    addProperties(*m_inputs, {&m_beatsPerMinute, &m_decay});
    addInputGroup(m_inputs.get());
    addProperties(*m_outputs, {&m_pulse});
    addOutputGroup(m_outputs.get());
}

void BeatNode::update(FxUpdateContext& context)
{
    const float beats = context.time * m_beatsPerMinute.m_value / 60.0f;
    m_pulse = std::exp(-m_decay.m_value * (beats - std::floor(beats)));
}

} // namespace silk
