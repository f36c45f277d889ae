// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/testsupport/TemporaryFolder.h>

namespace helvantine::test
{

namespace
{

const Vec4 green(0, 1, 0, 1);

/// Renderers that keep their pipelines in a folder of the test's own.
class PipelineFileTest : public DeviceTest
{
protected:
    void SetUp() override
    {
        setShaderCacheFolder(m_folder.getPath().c_str());
        DeviceTest::SetUp();
    }

    void TearDown() override
    {
        DeviceTest::TearDown();
        setShaderCacheFolder("");
    }

    void drawAndEnd()
    {
        const Image image = draw([&] {
            bindDefaults();
            drawQuad(*m_colorShader, makeQuad(green));
        });
        EXPECT_EQ(image.at(1, 1), green);
        DeviceTest::TearDown();
    }

    std::string findPipelines() const
    {
        const auto files = findFiles(m_folder.getPath().c_str(), "pipelines-*", false);
        return files.size() == 1 ? files[0].path : std::string();
    }

    TemporaryFolder m_folder;
};

TEST_F(PipelineFileTest, ADamagedFileIsMadeAnewAndHarmsNobody)
{
    drawAndEnd();
    const std::string path = findPipelines();
    ASSERT_FALSE(path.empty());
    const std::string whole = readFile(path);
    ASSERT_GT(whole.size(), 32u);
    std::string flipped = whole;
    flipped[whole.size() - 1] ^= 1;
    std::string otherSize = whole;
    otherSize[8] ^= 1;
    for (const std::string& damaged : {std::string(), std::string("HVCP"), whole.substr(0, whole.size() / 2),
                                       whole + "x", flipped, otherSize, std::string(5000, '\xFF')})
    {
        ASSERT_TRUE(writeFile(path, damaged));
        DeviceTest::SetUp();
        drawAndEnd();
        EXPECT_NE(readFile(path), damaged);
        EXPECT_EQ(findPipelines(), path) << "no temporary file is left";
    }
}

TEST_F(PipelineFileTest, AMissingFolderIsNoProblem)
{
    deleteFile(findPipelines().c_str());
    setShaderCacheFolder("/proc/nowhere/shaders");
    DeviceTest::TearDown();
    DeviceTest::SetUp();
    drawAndEnd();
}

} // namespace

} // namespace helvantine::test
