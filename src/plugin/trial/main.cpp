// SPDX-License-Identifier: MIT
// The process in which a plugin library is tried. What it does to this process, it doesn't do to a host.
#include "plugin/PluginBorder.h"
#include "plugin/PluginTrial.h"
#include "plugin/RuntimePath.h"

#include <helvantine/core/HelperMain.h>
#include <helvantine/core/Report.h>
#include <helvantine/host/Application.h>
#include <helvantine/plugin/PluginManager.h>

#include <cstdio>
#include <string_view>

using namespace helvantine;

namespace
{

constexpr std::uint64_t s_dataLimit = std::uint64_t(2) << 30; ///< bytes, for all that a library allocates
constexpr int s_exitMisused = 2;

MessageChannel* s_channel = nullptr;

void send(PluginTrialMessage letter, const std::string& text)
{
    s_channel->send(std::string(1, letter) + text, MessageChannel::s_never);
}

/// What was reported of the library; what its objects said for themselves is theirs to say where they are used. True
/// if there was anything.
bool sendProblems()
{
    bool isAny = false;
    for (const Problem& problem : takeProblems()) {
        if (problem.module != "plugin")
            continue;
        send(TrialProblem, problem.text);
        isAny = true;
    }
    return isAny;
}

void tryClass(const PluginFactory& factory, const PluginInfo& info)
{
    Plugin* object = factory.createPlugin(info.id);
    if (!object)
        return;
    const char* name = info.name ? info.name : "";
    SmartRef<Plugin> held(object);
    PluginBorder border(factory.m_filename, {"an object of class '", name, "' was dropped"});
    const PluginInfo* own = nullptr;
    border.cross([&] { own = object->getPluginInfo(); });
    if (!own || own->id != info.id)
        reportProblem("plugin",
                      factory.m_filename + ": class '" + name + "' makes an object of another class");
    border.cross([&] { held = nullptr; });
}

/// Tells what there is to tell of the library; the verdict is what is left to say when it is gone.
PluginTrialMessage tryLibrary(PluginManager& manager, const char* path)
{
    const SmartRef<PluginFactory> factory(new PluginFactory);
    if (!factory->init(path)) {
        if (sendProblems())
            return TrialRefused;
        return factory->m_module ? TrialForeign : TrialUnloadable;
    }
    takeProblems(); // said again where the library is loaded
    manager.m_factories.push_back(factory);
    for (const PluginInfo* info : factory->m_plugins)
        tryClass(*factory, *info);
    manager.m_factories.pop_back();
    sendProblems();
    return TrialAccepted;
}

/// In the surroundings that a document's objects are made in: the runtime's classes and an empty document.
void run(const char* path)
{
    Application application("", false);
    PluginManager& manager = *application.getPluginManager();
    const std::string runtime = getRuntimePath();
    if (PluginFactory* factory = createPluginFactory(runtime.c_str()))
        manager.m_factories.emplace_back(factory);
    application.newDocument(nullptr);
    takeProblems();
    send(TrialGreeting, pluginTrialGreeting);
    observePluginBorder([](const std::string& action) { send(TrialStep, action); });
    const PluginTrialMessage verdict = tryLibrary(manager, path);
    observePluginBorder(nullptr);
    send(verdict, "");
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const bool asksForHelp = argumentCount == 2 && std::string_view(arguments[1]) == "--help";
    if (argumentCount != 2 || asksForHelp) {
        std::fputs("This program tries plugin libraries for Helvantine, which starts it by itself.\n",
                   asksForHelp ? stdout : stderr);
        return asksForHelp ? 0 : s_exitMisused;
    }
    becomeHelper();
#if !defined(HELVANTINE_UNLIMITED)
    limitData(s_dataLimit);
#endif
    // Open to the very end, so that its end is that of the process.
    s_channel = new MessageChannel(takeHelperChannel());
    run(arguments[1]);
    return 0;
}
