// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <utility>

namespace helvantine
{

/// A pointer that holds one reference to a counted object, or null.
///
/// Assignment takes the new object before it drops the old one, so assigning the object that is already held,
/// or one that lives only through it, is safe. A reference becomes one to a base by itself, and one to a derived
/// class by `castTo` alone. References are equal, ordered and hashed as their pointers, so they serve as keys.
template <class T>
class SmartRef
{
public:
    SmartRef() = default;
    SmartRef(std::nullptr_t) {}
    SmartRef(T* object) : m_object(object) { take(); }
    SmartRef(const SmartRef& other) : SmartRef(other.get()) {}
    SmartRef(SmartRef&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    template <class U>
    requires std::convertible_to<U*, T*> SmartRef(const SmartRef<U>& other)
        : SmartRef(static_cast<T*>(other.get()))
    {
    }
    ~SmartRef()
    {
        if (m_object)
            m_object->release();
    }

    SmartRef& operator=(T* object)
    {
        SmartRef(object).swap(*this);
        return *this;
    }
    SmartRef& operator=(const SmartRef& other) { return *this = other.get(); }
    SmartRef& operator=(SmartRef&& other) noexcept
    {
        SmartRef(std::move(other)).swap(*this);
        return *this;
    }

    void swap(SmartRef& other) noexcept { std::swap(m_object, other.m_object); }

    T* get() const { return m_object; }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    explicit operator bool() const { return m_object != nullptr; }

private:
    void take()
    {
        if (m_object)
            m_object->addRef();
    }

    T* m_object = nullptr;
};

template <class T, class U>
bool operator==(const SmartRef<T>& a, const SmartRef<U>& b)
{
    return a.get() == b.get();
}

template <class T, class U>
bool operator==(const SmartRef<T>& a, const U* b)
{
    return a.get() == b;
}

template <class T>
bool operator==(const SmartRef<T>& a, std::nullptr_t)
{
    return a.get() == nullptr;
}

template <class T>
std::strong_ordering operator<=>(const SmartRef<T>& a, const SmartRef<T>& b)
{
    return std::compare_three_way()(a.get(), b.get());
}

} // namespace helvantine

template <class T>
struct std::hash<helvantine::SmartRef<T>>
{
    std::size_t operator()(const helvantine::SmartRef<T>& reference) const noexcept
    {
        return std::hash<T*>()(reference.get());
    }
};
