// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace helvantine
{

class VertexDeclaration;

/// What createShaderFromMemory compiles, and its words when it can't.
///
/// Without pixel source and entry point the program draws depth alone. Geometry, hull and domain stage stay empty: a
/// text there is refused.
struct ShaderFromMemoryParams
{
    std::string vertexSource;
    std::string vertexEntry;
    std::string pixelSource;
    std::string pixelEntry;
    std::string geometrySource;
    std::string geometryEntry;
    std::string hullSource;
    std::string hullEntry;
    std::string domainSource;
    std::string domainEntry;
    std::vector<std::pair<std::string, std::string>> macros; ///< name and value, in order of definition
    std::string errorText;                                   ///< out: empty on success
    /// Out: `name:line: warning: …` lines of a text that compiles, empty without. The same text tells the same ones
    /// whether it was compiled now or found in a cache.
    std::string warningText;
};

/// A compiled pair of vertex and pixel program.
///
/// It works with every vertex declaration, target and state; what a combination needs is made at its first
/// use or ahead. Registers mean what they mean in Direct3D 11: b0 to b13 apart for the two stages, t0 to t15
/// and s0 to s15 shared by both. An empty slot reads as zero, a missing sampler is linear and clamped.
class HELVANTINE_RENDERER_API Shader : public IRefCount
{
public:
    /// declaration may be null for a program without vertex inputs.
    virtual void bind(VertexDeclaration* declaration) = 0;
    virtual void unbind() = 0;
};

/// Compiles HLSL of shader model 5. Null on failure, with `name:line: error: …` lines of the author's text in
/// errorText; null with words as well without a renderer. A warning alone is no failure: what a text does that its
/// author may not mean stands in warningText. Equal texts, entry points and macros are compiled once, across runs too.
/// Text that crashes the compiler, or costs it more than 5 s or 1 GiB of memory, fails like any other. Its count is 0.
HELVANTINE_RENDERER_API Shader* createShaderFromMemory(ShaderFromMemoryParams& params);

/// Whether createShaderFromMemory could compile the texts, with the same words; needs no renderer.
HELVANTINE_RENDERER_API bool checkShader(ShaderFromMemoryParams& params);

/// A compile on a thread of its own, for a host that shows frames meanwhile.
///
/// It makes no shader: when it is done without an error, createShaderFromMemory with the same parameters finds the
/// program ready, as long as this object lives.
class HELVANTINE_RENDERER_API ShaderCompilation
{
public:
    virtual ~ShaderCompilation() = default; ///< waits for the compiler, which has its own limit of 5 s

    virtual bool isDone() = 0; ///< never waits
    /// Once it is done: the words of createShaderFromMemory.
    virtual const std::string& getErrorText() const = 0;
    virtual const std::string& getWarningText() const = 0;
};

/// Included texts are read before this returns. Never null; needs no renderer.
HELVANTINE_RENDERER_API std::unique_ptr<ShaderCompilation>
beginShaderCompilation(const ShaderFromMemoryParams& params);

/// Paths of the files that the texts include, directly or not, with those that aren't there, whatever conditions
/// stand around them. Relative ones are resolved, so that they are what g_fileSystem is asked for.
HELVANTINE_RENDERER_API std::set<std::string> findShaderIncludes(const ShaderFromMemoryParams& params);

/// Where compiled programs are kept between runs. Empty turns the disk cache off. Safe to delete at any time,
/// safe with several processes. At first it is "shaders" in the user's cache folder.
HELVANTINE_RENDERER_API void setShaderCacheFolder(const char* folder);

} // namespace helvantine
