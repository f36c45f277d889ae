// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/RefCount.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/TypedObject.h>
#include <helvantine/core/UniqueId.h>

#include <cstdint>
#include <type_traits>

/// Laws of class identity.
///
/// - Whatever a document holds is an object of a plugin class. A class has two constant records: `m_typeInfo`
///   answers whether an object is a kind of some class, `s_plugininfo` names the class across files, versions
///   and libraries.
/// - The id of a class is for ever: every saved document holds it. Class ids and the generated ids of objects
///   never mix.
/// - Both records are filled once the library that owns the class is loaded, and never change.
/// - A plugin object is made in two stages: the plugin manager allocates and default-constructs it, the
///   caller takes it into a SmartRef and initialises it where the class asks for that.
namespace helvantine
{

/// What a plugin class is for.
enum PluginKind : std::int32_t
{
    PluginEffect = 0,
    PluginNode = 1,
    PluginResource = 2,
    PluginResourceImporter = 3,
};

/// The permanent identity of a plugin class, and its place in a host's menu.
struct PluginInfo
{
    std::int32_t kind; ///< a PluginKind
    UniqueId id;
    const char* menuPath; ///< slash-separated; no key, classes share them
    const char* name;
    bool creatable; ///< offered to users; documents can hold classes that are not
};

/// Base of every class that a document can hold.
class HELVANTINE_FX_API Plugin : public TypedObject, public IRefCount
{
public:
    static const TypeInfo m_typeInfo;

    virtual const PluginInfo* getPluginInfo() const = 0;
};

/// Whether the chain of records that starts at `own` meets `type`.
inline bool isTypeDerivedFrom(const TypeInfo* own, const TypeInfo* type)
{
    while (own && own != type)
        own = own->parent;
    return own != nullptr;
}

class Object;

/// The object as a T, or null if it is none. The static cast is sound because records follow the classes. Object has
/// no record of its own: as one count effects and nodes, by their kind.
template <class T, class Base>
T* castTo(Base* object)
{
    if (!object || !object->isOfType(&T::m_typeInfo))
        return nullptr;
    if constexpr (std::is_same_v<std::remove_const_t<T>, Object>) {
        const std::int32_t kind = object->getPluginInfo()->kind;
        if (kind != PluginEffect && kind != PluginNode)
            return nullptr;
    }
    return static_cast<T*>(object);
}

template <class T, class Base>
SmartRef<T> castTo(const SmartRef<Base>& object)
{
    return castTo<T>(object.get());
}

} // namespace helvantine

/// Stands first in the body of a plugin class: its two records and the three operations that tell them.
/// Leaves the access at public. The records are defined once, in a source file, by HELVANTINE_PLUGIN_RECORDS;
/// those of the runtime's own classes by the catalogue.
///
///     class Sparkle : public helvantine::Effect
///     {
///         HELVANTINE_PLUGIN_CLASS(Sparkle)
///         void onRender(helvantine::FxRenderContext& context) override;
///     };
#define HELVANTINE_PLUGIN_CLASS(Class)                                                                       \
public:                                                                                                      \
    static const ::helvantine::TypeInfo m_typeInfo;                                                          \
    static const ::helvantine::PluginInfo s_plugininfo;                                                      \
    const ::helvantine::TypeInfo* getTypeInfo() const override                                               \
    {                                                                                                        \
        return &Class::m_typeInfo;                                                                           \
    }                                                                                                        \
    bool isOfType(const ::helvantine::TypeInfo* type) const override                                         \
    {                                                                                                        \
        return ::helvantine::isTypeDerivedFrom(&Class::m_typeInfo, type);                                    \
    }                                                                                                        \
    const ::helvantine::PluginInfo* getPluginInfo() const override                                           \
    {                                                                                                        \
        return &Class::s_plugininfo;                                                                         \
    }

/// Defines the records of a class. Stands in the class's namespace; a plugin library keeps its classes in a
/// namespace of its own, since records are exported by name.
#define HELVANTINE_PLUGIN_RECORDS(Class, Base, kind, id, menuPath, name, creatable)                          \
    const ::helvantine::TypeInfo Class::m_typeInfo = {#Class, &Base::m_typeInfo};                            \
    const ::helvantine::PluginInfo Class::s_plugininfo = {kind, ::helvantine::stringToUniqueId(id),          \
                                                          menuPath, name, creatable};
