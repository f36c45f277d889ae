// SPDX-License-Identifier: MIT
#include "ReadLimits.h"

#include "ScriptStream.h"

#include <helvantine/core/Report.h>
#include <helvantine/host/Document.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <malloc.h>
#include <new>

namespace
{

#ifdef HELVANTINE_COVERAGE // counting the lines takes most of the time
constexpr std::clock_t s_clockLimit = 20 * CLOCKS_PER_SEC;
#else
constexpr std::clock_t s_clockLimit = CLOCKS_PER_SEC;
#endif

std::size_t s_inUse = 0;
std::size_t s_peak = 0;

} // namespace

// Seen by the libraries too: the program's own operators take the place of everybody's.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    void* memory = std::malloc(size);
    s_inUse += memory ? malloc_usable_size(memory) : 0;
    s_peak = std::max(s_peak, s_inUse);
    return memory;
}

[[gnu::noinline]] void* operator new(std::size_t size)
{
    if (void* memory = operator new(size, std::nothrow))
        return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    s_inUse -= malloc_usable_size(memory);
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept
{
    operator delete(memory);
}

namespace testplugin
{

using namespace helvantine;

ReadOutcome readWithinLimits(const std::string& script)
{
    g_application->newDocument(nullptr);
    Document& document = *g_application->getDocument();
    const std::clock_t start = std::clock(); // what other programs take doesn't count
    const std::size_t before = s_inUse;
    s_peak = before;
    ReadOutcome outcome;
    outcome.failure = readRecord(document, script);
    EXPECT_LE(s_peak - before, 4 * script.size() + (128 << 20));
    EXPECT_LT(std::clock() - start, s_clockLimit);
    outcome.problems = document.getLoadProblems();
    takeLog();
    takeProblems();
    return outcome;
}

} // namespace testplugin
