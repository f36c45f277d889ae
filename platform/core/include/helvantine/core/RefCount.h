// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <cstdint>

namespace helvantine
{

/// Base of objects that are shared by counting references.
///
/// The count starts at 0: a new object belongs to nobody, and may be deleted directly, until a SmartRef takes
/// it. From then on `release` deletes it when the last reference goes. The count is a plain integer: one
/// thread, the host's, uses all counted objects. A copied object starts with a count of its own.
class HELVANTINE_CORE_API IRefCount
{
public:
    virtual void addRef();
    virtual void release();
    virtual ~IRefCount();

    IRefCount() = default;
    IRefCount(const IRefCount&) noexcept {}
    IRefCount& operator=(const IRefCount&) noexcept { return *this; }

    std::int32_t getRefCount() const { return m_refCount; }

private:
    std::int32_t m_refCount = 0;
};

} // namespace helvantine
