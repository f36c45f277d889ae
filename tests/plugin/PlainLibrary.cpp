// SPDX-License-Identifier: MIT
#include <helvantine/object/Plugin.h>

/// A library that stands on the runtime and is no plugin library.
extern "C" __attribute__((visibility("default"))) const void* plainLibraryUsesTheRuntime()
{
    return &helvantine::Plugin::m_typeInfo;
}
