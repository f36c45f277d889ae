// SPDX-License-Identifier: MIT
#pragma once

#include "plugin/Runtime.h"

#include <helvantine/core/MemoryBuffer.h>
#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <gtest/gtest.h>

#include <string>

namespace testplugin
{

/// The record of something, as the current version writes it.
template <class T>
std::string writeRecord(T& object, unsigned* ticks = nullptr)
{
    helvantine::MemoryBuffer buffer(4096, 4096);
    helvantine::FxSerializer serializer("test", &buffer, true, nullptr);
    serializer.setVersion(helvantine::g_formatVersion);
    object.serialize(serializer);
    if (ticks)
        *ticks = serializer.m_objectCount;
    return {reinterpret_cast<const char*>(buffer.getData()), buffer.getSize()};
}

/// Reads a record into something. Returns the words of the failure, if there is one.
template <class T>
std::string readRecord(T& object, const std::string& bytes, int version = helvantine::g_formatVersion,
                       helvantine::FxSerializerListener* listener = nullptr)
{
    helvantine::MemoryBuffer buffer({bytes.begin(), bytes.end()});
    helvantine::FxSerializer serializer("test", &buffer, false, nullptr);
    serializer.setVersion(version);
    serializer.setListener(listener);
    object.serialize(serializer);
    return serializer.getFailureText();
}

/// The bytes of an id, as they stand in a stream.
inline std::string bytesOf(const helvantine::UniqueId& id)
{
    return {reinterpret_cast<const char*>(&id), sizeof(id)};
}

/// Puts other bytes of the same number in the place of the first (or a later) occurrence.
inline void patch(std::string& bytes, const std::string& from, const std::string& to, std::size_t start = 0)
{
    const std::size_t at = bytes.find(from, start);
    ASSERT_NE(at, std::string::npos);
    ASSERT_EQ(from.size(), to.size());
    bytes.replace(at, to.size(), to);
}

} // namespace testplugin
