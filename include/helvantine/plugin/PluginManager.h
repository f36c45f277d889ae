// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/SmartRef.h>
#include <helvantine/plugin/PluginFactory.h>

#include <string_view>

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
    /// A new object that nobody holds yet: its count is 0 until a SmartRef takes it. Null for an unknown class.
    Plugin* createPlugin(const UniqueId& id) const;
    PluginFactory* getPluginFactoryFromPlugin(const UniqueId& id) const; ///< null for an unknown class
    /// The first class of a PluginKind that menus show under the path; null if there is none.
    const PluginInfo* findPlugin(std::int32_t kind, std::string_view menuPath) const;

    std::vector<SmartRef<PluginFactory>> m_factories; ///< in the order of the scan

private:
    void reportTakenClasses(const PluginFactory& factory) const;
};

HELVANTINE_FX_API PluginManager* createPluginManager(const char* folder);

/// A new object of a class, from the application's plugin manager; null if nothing there knows the class, or
/// without an application. Nobody holds it yet: `create` gives the same in a SmartRef, and says why there is none.
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

/// A class by its place in the menus, from the application's plugin manager. Null if there is none, which is reported.
HELVANTINE_FX_API const PluginInfo* findPlugin(std::int32_t kind, std::string_view menuPath);
HELVANTINE_FX_API void reportMissingClass(const UniqueId& classId, const TypeInfo& type);

/// A new object, held from the begin, of the class with the id. Null, and a problem is reported, if no plugin library
/// offers it or it is no T. An effect isn't initialised yet: Effect::addEffect does all.
template <class T>
SmartRef<T> create(const UniqueId& classId)
{
    SmartRef<T> object(createPluginOfType<T>(classId));
    if (!object)
        reportMissingClass(classId, T::m_typeInfo);
    return object;
}

/// The same of the class that menus show under the path, such as "Silk/Beat", among those of T's kind.
template <class T>
SmartRef<T> create(std::string_view menuPath)
{
    const PluginInfo* info = findPlugin(T::s_plugininfo.kind, menuPath);
    return info ? create<T>(info->id) : SmartRef<T>();
}

} // namespace helvantine
