// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/Matrix.h>

#include <cstdint>
#include <vector>

namespace helvantine
{

class EditorBridge;
class PropertyBase;

/// What a host tells each frame, passed by reference down the tree of effects.
///
/// Time and frame stand on the composition's clock and stay as they are; the relative two are rewritten for
/// each child and put back behind it. A camera overwrites the matrices for everything visited after it.
struct FxContext
{
    float time = 0.0f;         ///< seconds
    float relativeTime = 0.0f; ///< seconds since the start of the effect being visited
    std::int32_t frame = 0;
    std::int32_t relativeFrame = 0;   ///< frames since the start of the effect being visited
    std::uint32_t sceneTimeValue = 0; ///< passed through to scenes
    bool isPlaying = false;
    bool isSeeking = false;
    Matrix view;
    Matrix projection;
    Matrix viewProjection;
    float fov = 0.0f; ///< vertical, in degrees
    float farPlane = 0.0f;
    EditorBridge* editorBridge = nullptr; ///< null without an editor
};

struct FxUpdateContext : FxContext
{
};

struct FxRenderContext : FxContext
{
};

/// For the drawing ahead that makes programs and pipelines before they are needed.
struct HELVANTINE_FX_API FxWarmUpContext : FxRenderContext
{
    /// Whether a curve or a link can give the property another value than it has now.
    bool mayChange(const PropertyBase& property) const;

    std::vector<const PropertyBase*> linked; ///< what links lead to, by address
};

} // namespace helvantine
