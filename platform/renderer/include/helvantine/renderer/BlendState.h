// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>
#include <helvantine/renderer/D3D11Types.h>

namespace helvantine
{

/// How a drawn colour meets what is already in the target. The numbers are stored in documents.
enum class BlendMode : int32_t
{
    Solid = 0,         ///< replaces, alpha included
    Additive = 1,      ///< source times its alpha is added
    Alpha = 2,         ///< source over target by its alpha
    Multiply = 3,      ///< target times source, target's alpha stays
    Premultiplied = 4, ///< source over target, colour already multiplied by alpha
};

inline constexpr int32_t blendModeCount = 5;

/// A blend description, shared by all users of equal descriptions.
class HELVANTINE_RENDERER_API BlendState : public IRefCount
{
public:
    /// factor: four floats. mask: one bit for each sample, lowest first; callers pass 0xFFFFFF.
    virtual void bind(const float* factor, unsigned mask) = 0;
};

/// The state for a description, from the renderer's cache; equal descriptions give the same object.
/// Borrowed: the cache keeps a reference until the renderer goes. Null without a renderer.
HELVANTINE_RENDERER_API BlendState* getBlendState(const D3D11_BLEND_DESC& desc);

/// The state of a mode; an unknown number acts as Solid.
HELVANTINE_RENDERER_API BlendState* getBlendState(BlendMode mode);

/// "Solid", "Additive", "Alpha", "Multiply", "Premultiplied"; empty for an unknown number. Needs no renderer.
HELVANTINE_RENDERER_API const char* getBlendName(BlendMode mode);

} // namespace helvantine
