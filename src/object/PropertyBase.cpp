// SPDX-License-Identifier: MIT
#include <helvantine/object/PropertyBase.h>

#include <helvantine/core/RotationKeyframe.h>
#include <helvantine/object/PropertyLink.h>

#include <iterator>

namespace helvantine
{

namespace
{

/// What a kind is stored as; kinds of one storage can be copied to each other.
enum class Storage : std::uint8_t
{
    Float,
    Int,
    Vec2,
    Vec3,
    Vec4,
    Bool,
    String,
};

struct KindTraits
{
    Storage storage;
    unsigned components;
    const char* name;
};

/// By kind code.
constexpr KindTraits s_kinds[] = {
    {Storage::Float, 1, "float"},     {Storage::Int, 1, "integer"},
    {Storage::Vec2, 2, "2-vector"},   {Storage::Vec3, 3, "3-vector"},
    {Storage::Vec4, 4, "4-vector"},   {Storage::Vec4, 4, "rotation"},
    {Storage::Vec4, 4, "colour"},     {Storage::Bool, 1, "boolean"},
    {Storage::String, 1, "string"},   {Storage::String, 1, "resource reference"},
    {Storage::Int, 1, "enumeration"},
};
static_assert(std::size(s_kinds) == KindEnum + 1);

} // namespace

unsigned getKindComponentCount(std::uint32_t kind)
{
    return kind < std::size(s_kinds) ? s_kinds[kind].components : 0;
}

const char* getKindName(std::uint32_t kind)
{
    return kind < std::size(s_kinds) ? s_kinds[kind].name : "unknown kind";
}

bool isSameStorage(std::uint32_t kindA, std::uint32_t kindB)
{
    if (kindA >= std::size(s_kinds) || kindB >= std::size(s_kinds))
        return false;
    return s_kinds[kindA].storage == s_kinds[kindB].storage;
}

PropertyBase::PropertyBase(PropertyContext* context, std::uint32_t type, const char* name)
    : m_context(context), m_id(generateUniqueId()), m_name(name), m_type(type)
{
}

PropertyBase::~PropertyBase()
{
    while (m_linkEnds)
        m_linkEnds->link->drop();
}

void PropertyBase::enableKeyframe(bool enable)
{
    if (!canKeyframe() || enable == (m_keyframe != nullptr))
        return;
    setKeyframe(enable ? createKeyframe().release() : nullptr);
}

std::unique_ptr<Keyframe> PropertyBase::createKeyframe() const
{
    if (!canKeyframe())
        return nullptr;
    if (m_type == KindRotation)
        return std::make_unique<RotationKeyframe>();
    return std::make_unique<Keyframe>(getComponentCount());
}

void PropertyBase::setKeyframe(Keyframe* keyframe)
{
    m_keyframe.reset(keyframe);
    m_context->onCurveChanged(keyframe);
}

} // namespace helvantine
