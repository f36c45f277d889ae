// SPDX-License-Identifier: MIT
#include "DocumentReader.h"

#include <helvantine/core/Path.h>
#include <helvantine/core/System.h>

#include <filesystem>

namespace helvantine::tool
{

std::string readDocument(Application& application, const ScratchFolder& scratch, const std::string& path)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return path + ": no such file";
    if (scratch.getPath().empty())
        return "no temporary folder can be made in " + getTemporaryFolder();
    application.loadDocument(path.c_str(), scratch.getPath().c_str(), nullptr);
    return {};
}

DocumentReader::DocumentReader() : m_application(getExecutableFolder().c_str(), false) {}

} // namespace helvantine::tool
