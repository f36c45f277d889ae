// SPDX-License-Identifier: MIT
#include <helvantine/core/MemoryBuffer.h>
#include <helvantine/core/Report.h>
#include <helvantine/resource/FileResourceImporter.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResource.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/testsupport/ProjectTest.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace helvantine;
using testing::ElementsAre;

namespace strange
{

/// An importer of a library that the reading application doesn't have.
class StrangeImporter : public FileResourceImporter
{
    HELVANTINE_PLUGIN_CLASS(StrangeImporter)

    StrangeImporter() : FileResourceImporter("", "") {}

protected:
    Resource* newResource() const override { return new TextureResource(); }
    const TypeInfo* getResourceType() const override { return &TextureResource::m_typeInfo; }
    bool load(Resource&, const char*) const override { return false; }
};

HELVANTINE_PLUGIN_RECORDS(StrangeImporter, ResourceImporter, PluginResourceImporter,
                          "11111111-2222-3333-4444-555555555555", "", "Strange", false)

} // namespace strange

namespace
{

/// An application without a device: no resource has a payload, and every import fails.
class ResourceSerialize : public test::ProjectTest
{
protected:
    static std::string write(ResourceManager& manager, int version = 7)
    {
        MemoryBuffer buffer(4096, 4096);
        FxSerializer serializer("", &buffer, true, nullptr);
        serializer.setVersion(version);
        manager.serialize(serializer);
        return std::string(reinterpret_cast<const char*>(buffer.getData()), buffer.getSize());
    }

    static bool read(const std::string& bytes, ResourceManager& manager, int version = 7)
    {
        MemoryBuffer buffer(4096, 4096);
        buffer.write(bytes.data(), bytes.size());
        buffer.seek(0);
        FxSerializer serializer("", &buffer, false, nullptr);
        serializer.setVersion(version);
        manager.serialize(serializer);
        return !serializer.failed() && serializer.m_in.bytesLeft() == 0;
    }

    static Resource* add(Resource* parent, const char* name, ResourceImporter* importer)
    {
        SmartRef<Resource> resource(importer ? importer->createResource() : new Resource());
        resource->setName(name);
        resource->setIsFolder(!importer);
        resource->setImporter(importer);
        parent->addResource(resource.get());
        return resource.get();
    }

    /// Every kind of record.
    static void fill(ResourceManager& manager)
    {
        Resource* folder = add(manager.getRoot(), "folder", nullptr);
        folder->setExpanded(false);
        SmartRef<TextureResourceImporter> texture(new TextureResourceImporter());
        texture->import("/no/such/picture.png", nullptr);
        add(add(folder, "picture", texture.get()), "below the picture", nullptr);
        SmartRef<RenderTargetResourceImporter> target(new RenderTargetResourceImporter());
        target->findGroup("Attributes")->findProperty("Width")->fromString("77");
        add(folder, "target", target.get());
        SmartRef<strange::StrangeImporter> strange(new strange::StrangeImporter());
        strange->import("strange.bin", nullptr);
        strange->findGroup("Attributes")->findProperty("Filename")->m_viewSize = 99;
        add(manager.getRoot(), "stranger", strange.get());
    }
};

TEST_F(ResourceSerialize, NothingIsLostWhenNothingCanBeImported)
{
    ResourceManager written(nullptr);
    fill(written);
    const std::string bytes = write(written);
    ResourceManager manager(nullptr);
    ASSERT_TRUE(read(bytes, manager));

    const Resource* folder = manager.getRoot()->getChildren()[0].get();
    const UniqueId pictureId = written.getRoot()->getChildren()[0]->getChildren()[1]->getId();
    const auto* picture = manager.findResourceOfType<TextureResource>(pictureId);
    ASSERT_NE(picture, nullptr);
    EXPECT_FALSE(folder->isExpanded());
    EXPECT_EQ(picture->getParent(), folder);
    EXPECT_EQ(picture->getName(), "picture");
    EXPECT_EQ(picture->getTexture(), nullptr);
    EXPECT_THAT(picture->getFiles(), ElementsAre("/no/such/picture.png"));
    EXPECT_EQ(picture->getChildren().size(), 1u);
    EXPECT_THAT(manager.getRoot()->getChildren()[1]->getFiles(), ElementsAre("strange.bin"));
    EXPECT_EQ(write(manager), bytes);
}

TEST_F(ResourceSerialize, TellsWhatCouldNotBeImported)
{
    ResourceManager written(nullptr);
    fill(written);
    takeProblems();
    ResourceManager manager(nullptr);
    ASSERT_TRUE(read(write(written), manager));

    std::vector<std::string> texts;
    for (const Problem& problem : takeProblems()) {
        if (problem.module == "resource")
            texts.push_back(problem.text);
    }
    EXPECT_THAT(texts, ElementsAre("target: Unable to create rendertarget",
                                   "picture: file '/no/such/picture.png' can't be loaded",
                                   "stranger: nothing here knows its importer's class "
                                   "11111111-2222-3333-4444-555555555555"));
}

TEST_F(ResourceSerialize, DescriptionsBelongToOldVersions)
{
    ResourceManager written(nullptr);
    written.getRoot()->setDescription("old words");
    ResourceManager old(nullptr);
    ASSERT_TRUE(read(write(written, 5), old, 5));
    EXPECT_EQ(old.getRoot()->getDescription(), "old words");
    ResourceManager current(nullptr);
    ASSERT_TRUE(read(write(written, 6), current, 6));
    EXPECT_EQ(current.getRoot()->getDescription(), "");
}

TEST_F(ResourceSerialize, AResourceWithoutARecipeIsSavedAsAFolder)
{
    ResourceManager written(nullptr);
    SmartRef<TextureResource> texture(new TextureResource());
    texture->setName("orphan");
    written.getRoot()->addResource(texture.get());
    ResourceManager manager(nullptr);
    ASSERT_TRUE(read(write(written), manager));
    const Resource* found = manager.getRoot()->findResource(texture->getId());
    ASSERT_NE(found, nullptr);
    EXPECT_TRUE(found->isFolder());
}

TEST_F(ResourceSerialize, StopsAtATruncatedStreamAndKeepsWhatItHasRead)
{
    ResourceManager written(nullptr);
    fill(written);
    const std::string bytes = write(written);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        ResourceManager manager(nullptr);
        EXPECT_FALSE(read(bytes.substr(0, size), manager)) << size;
    }
    ResourceManager manager(nullptr);
    EXPECT_FALSE(read(bytes.substr(0, bytes.size() - 1), manager));
    EXPECT_EQ(manager.getRoot()->getChildren().size(), 2u);
}

TEST_F(ResourceSerialize, RefusesFoldersNestedWithoutEnd)
{
    ResourceManager written(nullptr);
    Resource* parent = written.getRoot();
    for (int depth = 0; depth < 1000; ++depth)
        parent = add(parent, "", nullptr);
    ResourceManager manager(nullptr);
    EXPECT_FALSE(read(write(written), manager));
}

} // namespace
