// SPDX-License-Identifier: MIT
// A plugin library that does what its file name says: copies of it are called "abort-in-constructor.dll" and so on.
#include <helvantine/core/Library.h>
#include <helvantine/core/Path.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/timeline/Layer.h>

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <thread>

using namespace helvantine;

namespace
{

constexpr char s_ownAddress = 0;

int overflow(int depth)
{
    volatile char frame[4096] = {};
    return depth < 0 ? frame[0] : overflow(depth + 1) + frame[0];
}

void misbehave(const std::string& how)
{
    if (how == "throw")
        throw std::runtime_error("a plain fault");
    if (how == "throw-number")
        throw 42;
    if (how == "abort")
        std::abort();
    if (how == "terminate")
        std::terminate();
    if (how == "segfault")
        raise(SIGSEGV);
    if (how == "kill")
        raise(SIGKILL);
    if (how == "exit")
        std::exit(0);
    if (how == "loop")
        for (volatile bool endless = true; endless;) {
        }
    if (how == "sleep")
        std::this_thread::sleep_for(std::chrono::hours(1));
    if (how == "allocate")
        for (volatile bool endless = true; endless;)
            *new char[64 << 20] = 0;
    if (how == "overflow")
        overflow(0);
    if (how == "nest" && !SmartRef<Plugin>(createPlugin(Layer::s_plugininfo.id)))
        throw std::runtime_error("no runtime classes");
    if (how == "print")
        std::puts("hello");
}

std::string getOwnName()
{
    return getFilename(getLibraryPath(&s_ownAddress).c_str());
}

/// Does what the file name tells to do in that place.
void misbehaveIn(const char* place)
{
    const std::string name = getOwnName();
    const std::size_t split = name.find("-in-");
    if (split != std::string::npos && name.substr(split + 4) == std::string(place) + ".dll")
        misbehave(name.substr(0, split));
}

struct Statics
{
    Statics() { misbehaveIn("loading"); }
    ~Statics() { misbehaveIn("unloading"); }
} s_statics;

class FaultyEffect : public Effect
{
    HELVANTINE_PLUGIN_CLASS(FaultyEffect)

    FaultyEffect() { misbehaveIn("constructor"); }
    ~FaultyEffect() override { misbehaveIn("destructor"); }
};

HELVANTINE_PLUGIN_RECORDS(FaultyEffect, Effect, PluginEffect, "A0F1C6E2-0B3D-4C7E-9A51-7C0D3E5B1C01",
                          "Test/Faulty", "Faulty", true)

} // namespace

HELVANTINE_PLUGIN_EXPORT const PluginFactoryInfo* helvantinePluginFactoryQuery()
{
    misbehaveIn("record");
    static const PluginFactoryInfo s_info = {stringToUniqueId("A0F1C6E2-0B3D-4C7E-9A51-7C0D3E5B1C00"),
                                             "Faulty", pluginApiVersion};
    return &s_info;
}

HELVANTINE_PLUGIN_EXPORT void* helvantinePluginQuery(int request, int index)
{
    if (request == PluginRequestInfo)
        misbehaveIn("classes");
    if (index != 0)
        return nullptr;
    if (request == PluginRequestInfo)
        return const_cast<PluginInfo*>(&FaultyEffect::s_plugininfo);
    if (getOwnName() == "null-in-query.dll")
        return nullptr;
    return static_cast<Plugin*>(getOwnName() == "other-in-query.dll" ? new Effect : new FaultyEffect);
}
