// SPDX-License-Identifier: MIT
#include <helvantine/timeline/Composition.h>

#include <helvantine/effects3d/CameraEffect.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/timeline/Layer.h>

namespace helvantine
{

namespace
{

// What came into the format later.
constexpr int s_versionWithFov = 3;
constexpr int s_versionWithCamera = 5;

/// The least that a composition takes in the stream, in any version.
constexpr std::uint32_t s_minBytes = 158;

constexpr std::uint64_t s_cameraCost = 3000; ///< in memory

/// Reads the record of an effect that exists already.
void readOwnEffect(FxSerializer& serializer, Effect& effect)
{
    UniqueId effectClass;
    serializer.m_in.readUniqueId(effectClass);
    effect.serialize(serializer);
}

} // namespace

void Composition::serialize(FxSerializer& serializer)
{
    const FxSerializer::Record record(serializer, "composition", &m_name);
    if (serializer.m_writing)
        write(serializer);
    else
        read(serializer);
}

void Composition::write(FxSerializer& serializer)
{
    OutStream& out = serializer.m_out;
    out.writeUniqueId(m_id);
    out.writeString(m_name);
    out.writeBool(m_isFolder);
    out.writeBool(m_expanded);
    out.writeFloat(m_fov);
    m_camera->serialize(serializer);
    m_rootEffect->serialize(serializer);
    out.writeUInt(static_cast<std::uint32_t>(m_compositions.size()));
    for (const SmartRef<Composition>& child : m_compositions)
        child->serialize(serializer);
    m_schematics->serialize(serializer, this);
}

void Composition::read(FxSerializer& serializer)
{
    if (!readHeader(serializer))
        return;
    if (serializer.m_version >= s_versionWithCamera)
        readOwnEffect(serializer, *m_camera);
    else
        serializer.chargeMissing(m_id, s_cameraCost);
    serializer.announceRoot();
    readOwnEffect(serializer, *m_rootEffect);
    readChildren(serializer);
    m_schematics->serialize(serializer, this);
}

bool Composition::readHeader(FxSerializer& serializer)
{
    InStream& in = serializer.m_in;
    UniqueId id;
    std::string name;
    bool isFolder = false, expanded = false;
    float fov = m_fov;
    in.readUniqueId(id);
    in.readString(name);
    in.readBool(isFolder);
    in.readBool(expanded);
    if (serializer.m_version >= s_versionWithFov)
        in.readFloat(fov);
    if (serializer.failed())
        return false;
    m_id = id;
    m_name = std::move(name);
    m_isFolder = isFolder;
    m_expanded = expanded;
    m_fov = fov;
    return true;
}

void Composition::readChildren(FxSerializer& serializer)
{
    std::uint32_t count = 0;
    serializer.readCount(count, s_minBytes, "compositions");
    for (std::uint32_t i = 0; i < count && !serializer.failed(); ++i) {
        const SmartRef<Composition> child(new Composition(true, true));
        const UniqueId freshId = child->m_id;
        child->serialize(serializer);
        // Without even an id the record has ended too early to be kept.
        if (child->m_id == freshId)
            continue;
        m_compositions.push_back(child);
        child->m_parent = this;
    }
    sort();
}

} // namespace helvantine
