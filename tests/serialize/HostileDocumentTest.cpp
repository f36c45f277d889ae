// SPDX-License-Identifier: MIT
// A whole document with every kind of record, cut at every byte and with extremes in every place of a count.
#include <gtest/gtest.h>

#include "ReadLimits.h"
#include "SampleComposition.h"

#include <helvantine/core/Report.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResourceImporter.h>

#include <cstring>

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

    static bool read(const std::string& script)
    {
        return testplugin::readWithinLimits(script).failure.empty();
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
