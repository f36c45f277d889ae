// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include "ScriptStream.h"

#include <helvantine/schematics/Schematics.h>

namespace testplugin
{

/// A composition with a value of each kind, each mode of key, links of each sort and a child.
struct SampleComposition
{
    SampleComposition();

    helvantine::SmartRef<helvantine::Composition> composition;
    RecordingEffect* outer; ///< holds `inner`
    RecordingEffect* inner;
    SumNode* producer; ///< feeds `consumer`, which feeds the outer effect's output
    SumNode* consumer;
};

} // namespace testplugin
