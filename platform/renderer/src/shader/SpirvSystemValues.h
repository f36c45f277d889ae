// SPDX-License-Identifier: MIT
#pragma once

#include "shader/SpirvModule.h"

namespace helvantine
{

/// Gives system values Direct3D's meaning where Vulkan has another one: the w of a pixel's SV_Position is w and not its
/// inverse, SV_VertexID counts without the draw's start or base, SV_InstanceID without the first instance.
void repairSystemValues(SpirvModule& module);

} // namespace helvantine
