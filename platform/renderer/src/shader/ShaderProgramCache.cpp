// SPDX-License-Identifier: MIT
#include "shader/ShaderProgramCache.h"

#include "shader/ShaderBuilder.h"
#include "shader/ShaderCompiler.h"
#include "shader/ShaderProgramFile.h"
#include "shader/ShaderSource.h"

#include <helvantine/core/System.h>

#include <chrono>
#include <system_error>
#include <utility>

namespace helvantine
{

namespace
{

void addSource(Hasher128& hasher, const ShaderSource& source, const std::string& entry)
{
    hasher.add(source.text);
    hasher.add(entry);
    hasher.add(uint32_t(source.allowsIncludes));
    hasher.add(uint32_t(source.includes.size()));
    for (const auto& [path, text] : source.includes) {
        hasher.add(path);
        hasher.add(text);
    }
}

Hash128 keyOf(const ShaderRequest& request, const ShaderSource& vertex, const ShaderSource& pixel)
{
    Hasher128 hasher;
    hasher.add(ShaderBuilder::version());
    addSource(hasher, vertex, request.vertexEntry);
    addSource(hasher, pixel, request.pixelEntry);
    for (const auto& [name, value] : request.macros) {
        hasher.add(name);
        hasher.add(value);
    }
    return hasher.finish();
}

/// Both stages mostly share one text: it is then fetched and checked once.
bool loadSources(const ShaderRequest& request, ShaderSource& vertex, ShaderSource& pixel, std::string& errors)
{
    if (!loadShaderSource(request.name, request.vertexSource, request.macros, request.includer, vertex,
                          errors))
        return false;
    if (request.pixelSource == request.vertexSource) {
        pixel = vertex;
        return true;
    }
    return loadShaderSource(request.name, request.pixelSource, request.macros, request.includer, pixel,
                            errors);
}

} // namespace

ShaderProgramCache::ShaderProgramCache(std::string folder, const ShaderHelperOptions& options)
    : m_folder(std::move(folder)), m_compiler(std::make_unique<ShaderCompiler>(options))
{
}

ShaderProgramCache::~ShaderProgramCache() = default;

std::string ShaderProgramCache::defaultFolder()
{
    std::string folder = getCacheFolder();
    return folder.empty() ? folder : folder + "/shaders";
}

void ShaderProgramCache::setFolder(std::string folder)
{
    m_folder = std::move(folder);
    m_isTidy = false;
}

void ShaderProgramCache::prepare()
{
    if (m_folder.empty() || !hasShaderPrograms(m_folder))
        m_compiler->prepare();
    else
        m_compiler->checkProgram();
}

ShaderProgramPtr ShaderProgramCache::get(const ShaderRequest& request, std::string& errors)
{
    ShaderSource vertex;
    ShaderSource pixel;
    Pending pending;
    if (!find(request, vertex, pixel, pending)) {
        pending.program = m_compiler->build(pending.key, request, vertex, pixel, pending.errors);
        keep(pending);
    }
    errors = std::move(pending.errors);
    return std::move(pending.program);
}

void ShaderProgramCache::begin(const ShaderRequest& request, Pending& pending)
{
    ShaderSource vertex;
    ShaderSource pixel;
    if (find(request, vertex, pixel, pending))
        return;
    const auto build = [this, request, vertex = std::move(vertex), pixel = std::move(pixel), &pending] {
        return m_compiler->build(pending.key, request, vertex, pixel, pending.errors);
    };
    try {
        pending.result = std::async(std::launch::async, build);
    } catch (const std::system_error&) { // no thread can be had
        pending.program = build();
        keep(pending);
    }
}

bool ShaderProgramCache::isFinished(Pending& pending)
{
    if (!pending.result.valid())
        return true;
    if (pending.result.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        return false;
    pending.program = pending.result.get();
    keep(pending);
    return true;
}

bool ShaderProgramCache::find(const ShaderRequest& request, ShaderSource& vertex, ShaderSource& pixel,
                              Pending& pending)
{
    if (!loadSources(request, vertex, pixel, pending.errors))
        return true;
    pending.key = keyOf(request, vertex, pixel);
    pending.program = findInMemory(pending.key);
    if (pending.program) {
        ++m_counts.shared;
        return true;
    }
    if (!m_folder.empty())
        pending.program = readShaderProgram(m_folder, pending.key);
    if (!pending.program)
        return false;
    ++m_counts.loaded;
    remember(pending.key, pending.program);
    return true;
}

/// Takes a program that was compiled.
void ShaderProgramCache::keep(const Pending& pending)
{
    if (!pending.program)
        return;
    ++m_counts.compiled;
    write(pending.key, *pending.program);
    remember(pending.key, pending.program);
}

void ShaderProgramCache::write(const Hash128& key, const ShaderProgram& program)
{
    if (m_folder.empty())
        return;
    if (!std::exchange(m_isTidy, true))
        tidyShaderFolder(m_folder);
    writeShaderProgram(m_folder, key, program);
}

ShaderProgramPtr ShaderProgramCache::findInMemory(const Hash128& key)
{
    auto found = m_programs.find(key);
    return found == m_programs.end() ? nullptr : found->second.lock();
}

void ShaderProgramCache::remember(const Hash128& key, const ShaderProgramPtr& program)
{
    std::erase_if(m_programs, [](const auto& entry) { return entry.second.expired(); });
    m_programs[key] = program;
}

} // namespace helvantine
