// SPDX-License-Identifier: MIT
#include <helvantine/core/Buffer.h>
#include <helvantine/core/FileSystem.h>
#include <helvantine/core/Report.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/resource/RenderTargetResource.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/ShaderResource.h>
#include <helvantine/resource/TextureResource.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/testsupport/ProjectTest.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

using namespace helvantine;
using testing::HasSubstr;

namespace
{

class DeviceResource : public test::DrawingTest
{
protected:
    /// Writes a picture of one row into the document's folder and returns its name there.
    std::string writePicture(const char* name, unsigned width)
    {
        EXPECT_TRUE(writePng(folder().file(name), test::Image(width, 1)));
        return name;
    }
};

TEST_F(DeviceResource, AFailedLoadChangesNothing)
{
    const std::string path = writePicture("a.png", 3);
    TextureResource texture;
    ASSERT_TRUE(texture.load(path.c_str()));
    EXPECT_EQ(texture.getName(), path);
    EXPECT_EQ(texture.getFilename(), path);
    EXPECT_EQ(texture.getTexture()->getWidth(), 3u);
    const Texture* payload = texture.getTexture();

    EXPECT_FALSE(texture.load("/no/such/file.png"));
    EXPECT_EQ(texture.getTexture(), payload);
    EXPECT_EQ(texture.getFilename(), path);
    EXPECT_EQ(texture.getName(), path);
}

TEST_F(DeviceResource, ImportsAFileOrLoadsItIntoAnExistingResource)
{
    const std::string first = writePicture("b.png", 4);
    const std::string second = writePicture("c.png", 5);
    SmartRef<TextureResourceImporter> importer(new TextureResourceImporter());
    const ImportResult made = importer->import(first.c_str(), nullptr);
    ASSERT_EQ(made.status, ImportResult::Success);
    EXPECT_EQ(made.resource->getImporter(), importer.get());
    auto* texture = castTo<TextureResource>(made.resource.get());
    ASSERT_NE(texture, nullptr);

    EXPECT_EQ(importer->import(second.c_str(), texture).resource.get(), texture);
    EXPECT_EQ(texture->getTexture()->getWidth(), 5u);
    EXPECT_EQ(importer->import(nullptr, nullptr).resource->getFilename(), second); // from the property

    SmartRef<TextureResourceImporter> other(new TextureResourceImporter());
    const ImportResult failed = other->import("/no/such/file.png", texture);
    EXPECT_EQ(failed.status, ImportResult::Failure);
    EXPECT_EQ(failed.message, "");
    EXPECT_FALSE(failed.resource);
    EXPECT_EQ(other->getFilename(), "/no/such/file.png");
    EXPECT_EQ(texture->getImporter(), importer.get());
    EXPECT_EQ(texture->getTexture()->getWidth(), 5u);

    SmartRef<Resource> folder(new Resource());
    EXPECT_EQ(importer->import(nullptr, folder.get()).status, ImportResult::Failure);
}

TEST_F(DeviceResource, AResourceThatNobodyHoldsGoesWithTheResultOfItsImportAndThatIsTold)
{
    takeProblems();
    const std::string path = writePicture("a.png", 3);
    const SmartRef<TextureResourceImporter> importer(new TextureResourceImporter());
    const SmartRef<Resource> kept = importer->import(path.c_str(), new TextureResource()).resource;
    EXPECT_EQ(kept->getRefCount(), 1);
    importer->import(path.c_str(), kept.get());
    const std::vector<Problem> problems = takeProblems();
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_THAT(problems[0].text, HasSubstr("is imported into while no SmartRef holds it"));
}

TEST_F(DeviceResource, PicturesInMemoryBecomeFilesOfTheDocument)
{
    writePicture("source.png", 7);
    std::ifstream source(folder().file("source.png"), std::ios::binary);
    const std::string png(std::istreambuf_iterator<char>(source), {});
    const unsigned char pixels[] = {1, 2,  3,  4,  5,  6,  7,  8, 99,
                                    9, 10, 11, 12, 13, 14, 15, 16}; // gaps between rows
    const TexturePixels picture = {DXGI_FORMAT_R8G8B8A8_UNORM, 2, 2, 9, pixels, sizeof(pixels)};

    for (const bool hasCacheFolder : {true, false}) {
        const std::string path = folder().file(hasCacheFolder ? "one.hfx" : "two.hfx");
        application().newDocument(hasCacheFolder ? folder().file("cache/").c_str() : nullptr);
        ResourceManager& resources = *document().getResourceManager();
        const TextureResource* encoded = resources.addTexture("made/a.png", png.data(), png.size());
        const TextureResource* raw = resources.addTexture("raw.tga", picture);
        ASSERT_TRUE(encoded && raw);
        EXPECT_EQ(encoded->getTexture()->getWidth(), 7u);
        const UniqueId id = raw->getId();
        application().saveDocument(path.c_str());

        application().loadDocument(path.c_str(), nullptr, nullptr);
        EXPECT_TRUE(document().getLoadProblems().empty());
        const auto* loaded = document().getResourceManager()->findResourceOfType<TextureResource>(id);
        ASSERT_TRUE(loaded && loaded->getTexture());
        const std::unique_ptr<Buffer> file(openFile("raw.tga"));
        ASSERT_TRUE(file);
        unsigned char bytes[18 + 16];
        ASSERT_EQ(file->read(bytes, sizeof(bytes)), sizeof(bytes));
        const unsigned char blueFirst[] = {3, 2, 1, 4, 7, 6, 5, 8, 11, 10, 9, 12, 15, 14, 13, 16};
        EXPECT_TRUE(std::equal(std::begin(blueFirst), std::end(blueFirst), bytes + 18));
    }
    EXPECT_TRUE(takeProblems().empty());
}

TEST_F(DeviceResource, WhatIsNoPictureInMemoryIsRefusedAndLeavesNoFile)
{
    ResourceManager& resources = *document().getResourceManager();
    const unsigned char pixels[16] = {};
    const auto size = [&](unsigned width, unsigned height, std::size_t pitch) {
        return TexturePixels{DXGI_FORMAT_R8G8B8A8_UNORM, width, height, pitch, pixels, sizeof(pixels)};
    };
    writePicture("there.png", 1);
    takeProblems();
    EXPECT_FALSE(resources.addTexture("broken.png", "no picture", 10));
    EXPECT_FALSE(openFile("broken.png"));
    EXPECT_FALSE(resources.addTexture("there.png", "no picture", 10)) << "the file that is there stays";
    EXPECT_TRUE(resources.addTexture("there.png"));
    EXPECT_FALSE(resources.addTexture("../..", "no picture", 10));
    EXPECT_FALSE(resources.addTexture("null.png", nullptr, 10));
    for (const TexturePixels& wrong :
         {size(2, 3, 0), size(2, 2, 4), size(0, 1, 0), size(2, 2, 9), size(70000, 1, 0)})
        EXPECT_FALSE(resources.addTexture("raw.tga", wrong));
    EXPECT_TRUE(resources.addTexture("raw.tga", size(2, 2, 0)));
    EXPECT_EQ(resources.getResourcesExcludingFolders().size(), 2u);
    std::string texts;
    for (const Problem& problem : takeProblems())
        texts += problem.text + '\n';
    EXPECT_THAT(texts, HasSubstr("no file 'there.png' is made: the document has one of that name\n"));
    EXPECT_THAT(texts, HasSubstr("no file '' is made: it has no name\n"));
    EXPECT_THAT(texts, HasSubstr("no file 'null.png' is made: it has no bytes\n"));
    EXPECT_THAT(texts, HasSubstr("raw.tga: pixels of format 28, 2 by 3, in 16 bytes make no picture\n"));
}

TEST_F(DeviceResource, RenderTargetsHaveTheFormatAndNameOfTheirNumbers)
{
    using Resource = RenderTargetResource;
    Resource target;
    const struct
    {
        int format;
        unsigned expected;
    } formats[] = {
        {Resource::RGBA8, 87}, {Resource::RGBA32F, 2}, {Resource::D24S8, 87}, {Resource::R16F, 54}, {99, 87}};
    for (const auto& [format, expected] : formats) {
        ASSERT_TRUE(
            target.create(20, 10, static_cast<Resource::Format>(format), 1, 0, true, Resource::RGBA8));
        EXPECT_EQ(target.getRenderTarget()->getFormat(), expected);
    }
    EXPECT_EQ(target.getName(), "RenderTarget 20x10 Depthbuffer: Yes");
    ASSERT_TRUE(target.create(7, 5, Resource::RGBA8, 1, 0, false, Resource::D24S8));
    EXPECT_EQ(target.getName(), "RenderTarget 7x5 Depthbuffer: No");

    const RenderTarget* kept = target.getRenderTarget();
    for (const int width : {0, -1, 16385})
        EXPECT_FALSE(target.create(width, 5, Resource::RGBA8, 1, 0, false, Resource::D24S8));
    EXPECT_EQ(target.getRenderTarget(), kept);
    EXPECT_EQ(target.getName(), "RenderTarget 7x5 Depthbuffer: No");
}

TEST_F(DeviceResource, RenderTargetsBeyondTheDevicesMemoryAreNotMade)
{
    // 2 GiB each: few on a software device, and more than there is on any other.
    std::vector<SmartRef<RenderTargetResource>> targets;
    bool made = true;
    for (int i = 0; i < 100 && made; ++i) {
        targets.emplace_back(new RenderTargetResource());
        made = targets.back()->create(16384, 8192, RenderTargetResource::RGBA32F, 1, 0, false,
                                      RenderTargetResource::D24S8);
    }
    EXPECT_FALSE(made);
    takeProblems();
    EXPECT_TRUE(RenderTargetResource().create(2048, 2048, RenderTargetResource::RGBA32F, 1, 0, true,
                                              RenderTargetResource::D24S8))
        << "smaller ones still are";
}

TEST_F(DeviceResource, RenderTargetImporterMakesWhatItsPropertiesSay)
{
    SmartRef<RenderTargetResourceImporter> importer(new RenderTargetResourceImporter());
    std::string text = "kept";
    EXPECT_FALSE(importer->usesFile());
    EXPECT_FALSE(importer->getFileFilter(text));
    EXPECT_EQ(text, "kept");
    EXPECT_TRUE(importer->getTitle(text));
    EXPECT_EQ(text, "Import Render Target");

    const ImportResult made = importer->import("ignored", nullptr);
    ASSERT_EQ(made.status, ImportResult::Success);
    EXPECT_EQ(made.resource->getName(), "RenderTarget 256x256 Depthbuffer: Yes");
    EXPECT_EQ(made.resource->getImporter(), importer.get());

    importer->findGroup("Attributes")->findProperty("Width")->fromString("64");
    importer->findGroup("Depth Buffer")->findProperty("Depth Buffer")->fromString("0");
    EXPECT_EQ(importer->import(nullptr, made.resource.get()).resource, made.resource);
    EXPECT_EQ(made.resource->getName(), "RenderTarget 64x256 Depthbuffer: No");

    importer->findGroup("Attributes")->findProperty("Multisample Count")->fromString("999");
    const ImportResult failed = importer->import(nullptr, nullptr);
    EXPECT_EQ(failed.status, ImportResult::Failure);
    EXPECT_EQ(failed.message, "Unable to create rendertarget");
}

TEST_F(DeviceResource, AShaderThatFailsToCompileTakesTheOldOneWithIt)
{
    // Compiles only with the limits of lights that the resource defines.
    const char* source =
        "float4 VS(float4 p : POSITION) : SV_Position { return p; }\n"
        "#if POINTLIGHT_COUNT_MAX == 16 && DIRLIGHT_COUNT_MAX == 1 && SPOTLIGHT_COUNT_MAX == 8\n"
        "float4 PS() : SV_Target { return 1; }\n"
        "#endif\n";
    ShaderResource shader;
    EXPECT_EQ(shader.create(source, "VS", "PS"), "");
    EXPECT_NE(shader.getShader(), nullptr);

    EXPECT_THAT(shader.create("float4 VS(float4 p : POSITION) : SV_Position\n{ return q; }\n", "VS", "PS"),
                HasSubstr(":2: error:"));
    EXPECT_EQ(shader.getShader(), nullptr);

    EXPECT_EQ(shader.create("", "VS", "PS"), "Invalid shader code");
    EXPECT_EQ(shader.getShader(), nullptr);
}

TEST_F(DeviceResource, AShaderIncludesFilesOfItsDocumentAndNoOthers)
{
    const std::string stages = "float4 VS(float4 p : POSITION) : SV_Position { return p; }\n"
                               "float4 PS() : SV_Target { return tone; }\n";
    ASSERT_TRUE(test::writeFile(folder().file("tone.hlsl"), "static const float4 tone = 1;\n"));
    EXPECT_EQ(ShaderResource::check(("#include \"tone.hlsl\"\n" + stages).c_str(), "VS", "PS"), "");

    const test::TemporaryFolder elsewhere;
    const std::string outside = elsewhere.file("tone.hlsl");
    ASSERT_TRUE(test::writeFile(outside, "static const float4 tone = 1;\n"));
    EXPECT_THAT(ShaderResource::check(("#include \"" + outside + "\"\n" + stages).c_str(), "VS", "PS"),
                HasSubstr(":1: error:"));
}

} // namespace
