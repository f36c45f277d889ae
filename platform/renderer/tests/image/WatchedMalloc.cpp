// SPDX-License-Identifier: MIT
#include "WatchedMalloc.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <malloc.h>

// The C library's own, which stand behind those that are replaced here.
extern "C" void* __libc_malloc(size_t size);
extern "C" void* __libc_calloc(size_t count, size_t size);
extern "C" void* __libc_realloc(void* memory, size_t size);
extern "C" void __libc_free(void* memory);

namespace
{

thread_local bool t_fills = false;
thread_local unsigned char t_byte = 0;
thread_local ptrdiff_t t_held = 0;
thread_local ptrdiff_t t_peak = 0;

void* note(void* memory)
{
    if (memory)
        t_held += static_cast<ptrdiff_t>(malloc_usable_size(memory));
    t_peak = std::max(t_peak, t_held);
    return memory;
}

void forget(void* memory)
{
    if (memory)
        t_held -= static_cast<ptrdiff_t>(malloc_usable_size(memory));
}

} // namespace

extern "C" void* malloc(size_t size)
{
    void* memory = note(__libc_malloc(size));
    if (memory && t_fills)
        std::memset(memory, t_byte, malloc_usable_size(memory));
    return memory;
}

extern "C" void* calloc(size_t count, size_t size)
{
    return note(__libc_calloc(count, size));
}

extern "C" void* realloc(void* memory, size_t size)
{
    const size_t before = memory ? malloc_usable_size(memory) : 0;
    forget(memory);
    void* moved = __libc_realloc(memory, size);
    const size_t after = moved ? malloc_usable_size(moved) : 0;
    if (t_fills && after > before)
        std::memset(static_cast<char*>(moved) + before, t_byte, after - before);
    return note(moved);
}

extern "C" void free(void* memory)
{
    forget(memory);
    __libc_free(memory);
}

void helvantine::test::fillNewMemory(unsigned char byte)
{
    t_fills = true;
    t_byte = byte;
}

void helvantine::test::startWatching()
{
    t_held = t_peak = 0;
}

size_t helvantine::test::getPeakBytes()
{
    return static_cast<size_t>(t_peak);
}
