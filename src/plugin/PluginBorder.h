// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/LastWords.h>

#include <exception>
#include <string>

namespace helvantine
{

/// What a plugin library's code is called for, as the rest of "while": "an object of class 'Silk' was made".
struct PluginAction
{
    const char* before;
    const char* className = nullptr; ///< null where it isn't about one class
    const char* after = nullptr;
};

/// Where a call leaves the runtime for the code of a plugin library. While it lives, a fault that ends the process
/// says which library and class it was in.
class HELVANTINE_FX_API PluginBorder
{
public:
    PluginBorder(const std::string& library, const PluginAction& action);

    /// False, with a report, if the call throws.
    template <class Call>
    bool cross(const Call& call)
    {
        try {
            call();
            return true;
        } catch (const std::exception& error) {
            reportThrown(error.what());
        } catch (...) {
            reportThrown("something that is no std::exception");
        }
        return false;
    }

private:
    void reportThrown(const char* what) const;

    const std::string& m_library;
    PluginAction m_action;
    LastWords m_lastWords;
};

using PluginBorderObserver = void (*)(const std::string& action);

/// Has every crossing told beforehand; null ends it. For the process in which libraries are tried.
HELVANTINE_FX_API void observePluginBorder(PluginBorderObserver observer);

} // namespace helvantine
