// SPDX-License-Identifier: MIT
#include "plugin/PluginGate.h"

#include "plugin/RuntimePath.h"

#include <helvantine/core/HelperProcess.h>
#include <helvantine/core/Library.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>

#include <filesystem>

namespace helvantine
{

namespace
{

constexpr const char* s_program = "helvantine-plugin-trial";
constexpr const char* s_variable = "HELVANTINE_PLUGIN_TRIAL";
constexpr char s_ownMark = 0; ///< lies in the runtime

std::string getVerdictPath()
{
    const std::string folder = getCacheFolder();
    return folder.empty() ? folder : folder + "/plugin-verdicts";
}

/// The name under which a library is known whatever folder this process works in.
std::string getAbsolutePath(const std::string& path)
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    return error ? path : absolute.lexically_normal().string();
}

void reportUntried(const std::string& why)
{
    static bool s_isSaid = false;
    if (!s_isSaid)
        reportProblem("plugin",
                      "libraries are loaded untried, so one that crashes ends this program: " + why);
    s_isSaid = true;
}

} // namespace

PluginGate::~PluginGate()
{
    if (m_hasNew)
        m_verdicts->save();
}

bool PluginGate::admits(const std::string& library)
{
    // What is no library is refused by its headers alone, with words of its own.
    if (isLibraryLoaded(library.c_str()) || !isLibrary(library.c_str()))
        return true;
    if (!m_verdicts)
        m_verdicts.emplace(getVerdictPath(), getFileStamp(getRuntimePath().c_str()));
    const std::string path = getAbsolutePath(library);
    const FileStamp stamp = getFileStamp(path.c_str());
    const PluginVerdict* known = m_verdicts->find(path, stamp);
    const PluginVerdict verdict = known ? *known : tryNew(library, stamp);
    for (const std::string& problem : verdict.problems)
        reportProblem("plugin", problem);
    return verdict.kind == PluginVerdict::Kind::Accepted || verdict.kind == PluginVerdict::Kind::Unknown;
}

PluginVerdict PluginGate::tryNew(const std::string& library, const FileStamp& stamp)
{
    const std::string program = findHelper(s_program, s_variable, &s_ownMark);
    if (program.empty())
        return {}; // as it was asked for
    const PluginVerdict verdict = tryPlugin({program}, library);
    if (verdict.kind == PluginVerdict::Kind::Unknown) {
        for (const std::string& why : verdict.problems)
            reportUntried(why);
        return {};
    }
    if (verdict.holds) {
        m_verdicts->keep(getAbsolutePath(library), stamp, verdict);
        m_hasNew = true;
    }
    return verdict;
}

} // namespace helvantine
