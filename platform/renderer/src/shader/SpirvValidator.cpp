// SPDX-License-Identifier: MIT
#include "shader/SpirvValidator.h"

#include <spirv-tools/libspirv.hpp>

namespace helvantine
{

bool validateSpirv(const std::vector<uint32_t>& words, std::string& error)
{
    spvtools::SpirvTools tools(SPV_ENV_VULKAN_1_3);
    tools.SetMessageConsumer(
        [&error](spv_message_level_t, const char*, const spv_position_t&, const char* message) {
            if (error.empty())
                error = std::string(message).substr(0, std::string(message).find('\n'));
        });
    spvtools::ValidatorOptions options;
    options.SetScalarBlockLayout(true); // Direct3D packs tighter than Vulkan's standard layout
    error.clear();
    return tools.Validate(words.data(), words.size(), options);
}

} // namespace helvantine
