// SPDX-License-Identifier: MIT
#include <helvantine/core/RefCount.h>

#include <cassert>

namespace helvantine
{

namespace
{

/// The count of an object that `release` is deleting: references that its destructor takes and drops for a
/// while don't reach 0 again.
constexpr std::int32_t s_dying = 1 << 30;

} // namespace

IRefCount::~IRefCount() = default;

void IRefCount::addRef()
{
    ++m_refCount;
}

void IRefCount::release()
{
    assert(m_refCount > 0 && "release without a reference");
    if (--m_refCount != 0)
        return;
    m_refCount = s_dying;
    delete this;
}

} // namespace helvantine
