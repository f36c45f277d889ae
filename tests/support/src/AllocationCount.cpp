// SPDX-License-Identifier: MIT
#include <helvantine/testsupport/AllocationCount.h>

#include <cstdlib>
#include <new>

namespace
{

thread_local size_t t_allocations = 0;

} // namespace

// Seen by the libraries too: the program's own operators take the place of everybody's. Inlined ones would
// look mismatched to the compiler.
[[gnu::noinline]] void* operator new(size_t size)
{
    ++t_allocations;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void* operator new(size_t size, const std::nothrow_t&) noexcept
{
    ++t_allocations;
    return std::malloc(size);
}

[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

size_t helvantine::test::countAllocations()
{
    return t_allocations;
}
