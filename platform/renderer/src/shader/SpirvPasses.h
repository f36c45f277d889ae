// SPDX-License-Identifier: MIT
#pragma once

#include "shader/SpirvInterface.h"
#include "shader/SpirvModule.h"

#include <string>
#include <vector>

/// Repairs between the compiler's output and what drivers see.

namespace helvantine
{

/// A texture that is both sampled and compared comes out as two variables of one name, one of them at its
/// bare register number. Both get the binding that follows from the register.
void repairComparedTextures(SpirvModule& module);

/// A constant table that is indexed at run time comes out as a local variable that is filled anew at each use.
/// The variable keeps the table as its initial value and the stores go, which software Vulkan needs to be
/// usable: it copied the whole table for each pixel.
void keepConstantTables(SpirvModule& module);

/// Gives each input of the pixel stage the location of the vertex output of the same semantic. An input that
/// nothing writes becomes a private zero; components that the vertex stage leaves out are 0.
void linkPixelStage(const std::vector<StageVariable>& vertexOutputs, SpirvModule& pixel, std::string& errors);

/// SV_TARGETn, or COLORn in older texts, goes to location n.
std::vector<ShaderPixelOutput> placePixelOutputs(SpirvModule& pixel, std::string& errors);

/// Takes away semantics, the extension that carries them, and the compiler's notes about the source.
void stripSemantics(SpirvModule& module);

} // namespace helvantine
