// SPDX-License-Identifier: MIT
#pragma once

#include "draw/ShapeVertices.h"

#include <helvantine/core/Matrix.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/Vec4.h>
#include <helvantine/renderer/BlendState.h>
#include <helvantine/renderer/ConstantBuffer.h>
#include <helvantine/renderer/DepthStencilState.h>
#include <helvantine/renderer/RasterizerState.h>
#include <helvantine/renderer/Shader.h>
#include <helvantine/renderer/VertexBuffer.h>
#include <helvantine/renderer/VertexDeclaration.h>
#include <helvantine/renderer/Viewport.h>

namespace helvantine
{

/// How the shapes of one draw look.
struct ShapeStyle
{
    Vec4 color;
    float thickness = 1.0f; ///< of lines, pixels
    bool blend = false;     ///< by alpha
    bool depthTest = true;
};

/// Draws ShapeVertices into the top target. Makes what it needs on the GPU at its first draw, and anew for
/// another renderer.
class ShapeDrawer
{
public:
    /// viewport: null means the target's own.
    void draw(const ShapeVertices& shapes, const Matrix& transform, Viewport* viewport,
              const ShapeStyle& style);

private:
    bool prepare();
    bool makeProgram();
    bool makeStates();
    bool fillBuffer(std::span<const ShapeVertex> vertices);
    bool fillConstants(const Matrix& transform, const Rect& rect, const ShapeStyle& style);
    Viewport* getTargetViewport();

    SmartRef<Shader> m_shader;
    SmartRef<VertexDeclaration> m_declaration;
    SmartRef<VertexBuffer> m_buffer;
    size_t m_capacity = 0; ///< vertices that the buffer holds
    SmartRef<ConstantBuffer> m_constants;
    SmartRef<RasterizerState> m_rasterizer[2]; ///< without and with depth test
    SmartRef<DepthStencilState> m_depth[2];    ///< the same
    SmartRef<Viewport> m_targetViewport;       ///< of the size of the latest target
};

} // namespace helvantine
