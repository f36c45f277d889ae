// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/resource/Resource.h>

namespace helvantine
{

/// What loading a file does for every kind of resource whose library has one loader: on success the payload
/// is replaced, and the whole path becomes file name and name. On failure nothing changes.
template <class Payload>
bool loadPayload(Resource& resource, SmartRef<Payload>& payload, Payload* (*loader)(const char*),
                 const char* path)
{
    Payload* loaded = loader(path);
    if (!loaded)
        return false;
    payload = loaded;
    resource.setFilename(path);
    resource.setName(path);
    return true;
}

} // namespace helvantine
