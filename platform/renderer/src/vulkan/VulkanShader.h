// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/GpuObject.h"
#include "vulkan/VulkanProgram.h"

#include <helvantine/renderer/Shader.h>

#include <memory>

namespace helvantine
{

/// A program as the host holds it. Shaders of equal programs share what is on the device.
class VulkanShader final : public Shader, public GpuObject
{
public:
    VulkanShader(VulkanContext& context, std::shared_ptr<const VulkanProgram> program);

    void bind(VertexDeclaration* declaration) override;
    void unbind() override;

    const VulkanProgram* getProgram() const { return m_program.get(); } ///< null once the renderer is gone

private:
    void releaseGpu() override { m_program = nullptr; }

    std::shared_ptr<const VulkanProgram> m_program;
};

/// To be called before slow work, if shaders may have to be compiled after it.
void prepareShaderCompiler();

/// Where compiled programs and pipelines are kept; empty for nowhere.
const std::string& getShaderCacheFolder();

} // namespace helvantine
