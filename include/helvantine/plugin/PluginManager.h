// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/SmartRef.h>
#include <helvantine/plugin/PluginFactory.h>

namespace helvantine
{

/// All plugin libraries of a folder. A class that two of them offer belongs to the first in the order of the
/// scan, and the report tells of the second. Look-ups are linear: they happen when objects are made, never in
/// a frame.
class HELVANTINE_FX_API PluginManager : public IRefCount
{
public:
    PluginManager();
    ~PluginManager() override;

    /// Takes every plugin library among the folder's "*.dll". Always true: a folder without any leaves the
    /// manager empty.
    ///
    /// A library that is new or has changed is first tried by `helvantine-plugin-trial`, a process with a time limit,
    /// which makes and drops an object of each class without a device. One that crashes, hangs or ends that process
    /// isn't loaded, and the report says in which class. The verdict is remembered.
    bool init(const char* folder);
    bool containsPlugin(const UniqueId& id) const;
    Plugin* createPlugin(const UniqueId& id) const;                      ///< null for an unknown class
    PluginFactory* getPluginFactoryFromPlugin(const UniqueId& id) const; ///< null for an unknown class

    std::vector<SmartRef<PluginFactory>> m_factories; ///< in the order of the scan

private:
    void reportTakenClasses(const PluginFactory& factory) const;
};

HELVANTINE_FX_API PluginManager* createPluginManager(const char* folder);

/// A new object of a class, from the application's plugin manager; null if nothing there knows the class, or
/// without an application.
HELVANTINE_FX_API Plugin* createPlugin(const UniqueId& id);

/// As createPlugin, and null for a class of another type.
template <class T>
T* createPluginOfType(const UniqueId& id)
{
    Plugin* plugin = createPlugin(id);
    T* object = castTo<T>(plugin);
    if (!object)
        delete plugin;
    return object;
}

} // namespace helvantine
