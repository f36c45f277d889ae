// SPDX-License-Identifier: MIT
// A whole document with every kind of record, cut at every byte and with extremes in every place of a count.
#include <gtest/gtest.h>

#include "SampleComposition.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResourceImporter.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <new>

namespace
{

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

namespace helvantine
{

using testplugin::SampleComposition;
using testplugin::takeLog;
using testplugin::writeRecord;

namespace
{

class HostileDocumentTest : public ::testing::Test
{
protected:
    HostileDocumentTest()
    {
        const Document document(nullptr, nullptr);
        Resource* folder = new Resource;
        folder->setName("folder");
        folder->setIsFolder(true);
        document.getResourceManager()->getRoot()->addResource(folder);
        addResource(*folder, new TextureResourceImporter, "absent.png");
        addResource(*folder, new RenderTargetResourceImporter, nullptr);
        const SampleComposition sample;
        document.getCompositionManager()->getRoot()->addComposition(sample.composition.get());
        m_script = writeRecord(const_cast<Document&>(document));
        takeLog();
        takeProblems();
    }

    static void addResource(Resource& parent, ResourceImporter* importer, const char* filename)
    {
        const SmartRef<ResourceImporter> holder(importer);
        importer->import(filename, nullptr);
        const SmartRef<Resource> resource(importer->createResource());
        resource->setImporter(importer);
        parent.addResource(resource.get());
    }

    /// Reads a script into a new document, within the limits of memory and time.
    static bool read(const std::string& script)
    {
        const double start = getTime();
        const std::size_t before = s_inUse;
        s_peak = before;
        Document document(nullptr, nullptr);
        const std::string failure = testplugin::readRecord(document, script);
        EXPECT_LE(s_peak - before, 4 * script.size() + (64 << 20));
        EXPECT_LT(getTime() - start, 1.0);
        takeLog();
        takeProblems();
        return failure.empty();
    }

    testplugin::Runtime m_runtime;
    std::string m_script;
};

} // namespace

TEST_F(HostileDocumentTest, IsCutAnywhere)
{
    ASSERT_TRUE(read(m_script));
    for (std::size_t size = 0; size < m_script.size(); ++size)
        EXPECT_FALSE(read(m_script.substr(0, size))) << "cut at " << size;
}

TEST_F(HostileDocumentTest, HasExtremesInEveryCount)
{
    // Counts aren't marked in the stream: each place of four bytes serves as one, and counts are among them.
    std::string script = m_script;
    int refused = 0;
    for (std::size_t at = 0; at + 4 <= m_script.size(); ++at) {
        const auto left = static_cast<std::uint32_t>(m_script.size() - at - 4);
        for (const std::uint32_t extreme : {0u, left / 58, left, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
            std::memcpy(script.data() + at, &extreme, 4);
            refused += read(script) ? 0 : 1;
            ASSERT_FALSE(HasFailure()) << extreme << " at " << at;
        }
        script.replace(at, 4, m_script, at, 4);
    }
    EXPECT_GT(refused, 1000);
}

} // namespace helvantine
