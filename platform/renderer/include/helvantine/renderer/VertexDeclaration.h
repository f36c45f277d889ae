// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>
#include <helvantine/renderer/D3D11Types.h>

namespace helvantine
{

/// The layout of vertices in their buffers, bound together with a shader.
///
/// Elements meet the vertex program's inputs by semantic name (in either case) and index. An element that the
/// program doesn't read is no error, an input without an element reads (0, 0, 0, 1).
class HELVANTINE_RENDERER_API VertexDeclaration : public IRefCount
{
};

/// Copies the elements and their names. Null, with the reason in the report, for more than 32 and for one whose
/// format or slot is unknown or whose offset is unaligned or above 2,047. Needs no renderer. Its count is 0.
HELVANTINE_RENDERER_API VertexDeclaration* createVertexDeclaration(const D3D11_INPUT_ELEMENT_DESC* elements,
                                                                   unsigned count);

} // namespace helvantine
