// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Plugin.h>

#include <string>
#include <vector>

/// Laws of plugin libraries.
///
/// - A plugin library exports two functions with C linkage, "helvantinePluginFactoryQuery" and
///   "helvantinePluginQuery". This library exports them as well and is found like any other.
/// - An index means the same class in both requests, for as long as the library is loaded.
/// - A created object has no references and is not initialised.
/// - Objects of a library's classes are gone before the library is.
/// - What a library throws is caught where it was called, and reported. A crash can't be caught: see PluginManager.
/// - There is one runtime in a process. A copy of it in the scanned folder would double every record of a
///   class, and is refused: the folder holds the very file that the program is linked to.
namespace helvantine
{

/// The interface version that a library must have been built for.
inline constexpr std::uint32_t pluginApiVersion = 0;

/// The id in the record of the runtime's own library.
inline constexpr char runtimeLibraryId[] = "3D9B1CCC-9446-11E4-83A8-9D8DD077C4C7";

/// A plugin library's own record.
struct PluginFactoryInfo
{
    UniqueId id;
    const char* name;
    std::uint32_t apiVersion; ///< pluginApiVersion
};

/// What helvantinePluginQuery is asked for.
enum PluginRequest : int
{
    PluginRequestInfo = 0,   ///< gives a const PluginInfo*
    PluginRequestCreate = 1, ///< gives a new object as a Plugin*
};

using PluginFactoryQuery = const PluginFactoryInfo* (*)();
/// Null for any other request and for an index without a class.
using PluginQuery = void* (*)(int request, int index);

/// One loaded plugin library.
class HELVANTINE_FX_API PluginFactory : public IRefCount
{
public:
    PluginFactory();
    ~PluginFactory() override;

    /// Loads the library and lists its classes. False if it can't be used, and the report says why; a library
    /// that doesn't export the first of the two functions is none of ours, and there is nothing to say.
    bool init(const char* path);
    bool containsPlugin(const UniqueId& id) const;
    Plugin* createPlugin(const UniqueId& id) const; ///< its count is 0; null for a class that isn't here

    /// More classes than that, and the library's query has no end.
    static constexpr std::size_t s_maxClasses = 4096;

    const PluginFactoryInfo* m_info = nullptr; ///< the library's, valid while it is loaded
    void* m_module = nullptr;
    std::string m_filename;
    PluginQuery m_pluginQuery = nullptr;
    std::vector<const PluginInfo*> m_plugins; ///< by query index; of two with one id the first counts

private:
    bool queryInfo();
    bool queryClasses();
    Plugin* createPlugin(int index) const;

    bool m_isRuntime = false; ///< its classes are ours, so no border lies between
};

/// Null if the file is no plugin library that can be used.
HELVANTINE_FX_API PluginFactory* createPluginFactory(const char* path);

} // namespace helvantine

/// Marks the two functions that a plugin library exports.
#if defined(_WIN32)
#define HELVANTINE_PLUGIN_EXPORT extern "C" __declspec(dllexport)
#else
#define HELVANTINE_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
#endif
