// SPDX-License-Identifier: MIT
#pragma once

#include "TestPlugin.h"

#include <helvantine/host/Application.h>
#include <helvantine/plugin/PluginManager.h>

namespace testplugin
{

/// The folder of the program, with a separator at its end: the libraries lie there.
std::string getProgramFolder();

/// What was reported since the last call, a line for each problem.
std::string takeWords();

/// A runtime without a device that knows the test plugin, with an empty document.
struct Runtime
{
    Runtime();

    helvantine::Application application;
};

/// A new effect of the test plugin in a tree, ready to use.
RecordingEffect* addEffect(helvantine::Effect& parent, const char* name, int start, int end);

} // namespace testplugin
