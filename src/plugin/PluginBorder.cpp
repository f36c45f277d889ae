// SPDX-License-Identifier: MIT
#include "plugin/PluginBorder.h"

#include <helvantine/core/Report.h>

namespace helvantine
{

namespace
{

PluginBorderObserver s_observer = nullptr;

std::string describe(const PluginAction& action)
{
    std::string words;
    for (const char* piece : {action.before, action.className, action.after})
        words += piece ? piece : "";
    return words;
}

} // namespace

PluginBorder::PluginBorder(const std::string& library, const PluginAction& action)
    : m_library(library), m_action(action),
      m_lastWords({"plugin: ", library.c_str(), ": ended the program while ", action.before, action.className,
                   action.after})
{
    if (s_observer)
        s_observer(describe(action));
}

void PluginBorder::reportThrown(const char* what) const
{
    reportProblem("plugin", m_library + ": threw '" + what + "' while " + describe(m_action));
}

void observePluginBorder(PluginBorderObserver observer)
{
    s_observer = observer;
}

} // namespace helvantine
