// SPDX-License-Identifier: MIT
#include <helvantine/core/Report.h>
#include <helvantine/resource/MaterialShaderResource.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/ShaderResource.h>
#include <helvantine/resource/TextureResource.h>
#include <helvantine/testsupport/TemporaryFolder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace helvantine;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

SmartRef<Resource> makeResource(const char* name, bool isFolder = false)
{
    SmartRef<Resource> resource(new Resource());
    resource->setName(name);
    resource->setIsFolder(isFolder);
    return resource;
}

std::vector<std::string> takeTexts()
{
    std::vector<std::string> result;
    for (const Problem& problem : takeProblems())
        result.push_back(problem.text);
    return result;
}

std::vector<std::string> names(const std::vector<SmartRef<Resource>>& resources)
{
    std::vector<std::string> result;
    for (const auto& resource : resources)
        result.push_back(resource->getName());
    return result;
}

TEST(ResourceTree, FoldersComeFirstAndNamesDescendInByteOrder)
{
    const SmartRef<Resource> root = makeResource("", true);
    for (const char* name : {"a", "zzz", "B", "b"})
        root->addResource(makeResource(name).get());
    root->addResource(makeResource("alpha", true).get());
    root->addResource(makeResource("zeta", true).get());
    EXPECT_THAT(names(root->getChildren()), ElementsAre("zeta", "alpha", "zzz", "b", "a", "B"));

    // A new name counts with the next sorting only.
    root->getChildren()[2]->setName("C");
    EXPECT_EQ(root->getChildren()[2]->getName(), "C");
    root->sort();
    EXPECT_THAT(names(root->getChildren()), ElementsAre("zeta", "alpha", "b", "a", "C", "B"));
}

TEST(ResourceTree, RemovesTheFirstChildOfTheSameIdOnly)
{
    const SmartRef<Resource> root = makeResource("", true);
    const SmartRef<Resource> child = makeResource("child");
    const SmartRef<Resource> stranger = makeResource("stranger");
    const SmartRef<Resource> elsewhere = makeResource("elsewhere", true);
    root->addResource(child.get());
    elsewhere->addResource(stranger.get());

    root->removeResource(stranger.get());
    EXPECT_EQ(stranger->getParent(), elsewhere.get());
    EXPECT_EQ(root->getChildren().size(), 1u);

    root->removeResource(child.get());
    EXPECT_EQ(child->getParent(), nullptr);
    EXPECT_THAT(root->getChildren(), IsEmpty());
}

TEST(ResourceTree, ResourcesMoveWithWhatIsBelowThem)
{
    takeProblems();
    ResourceManager manager(nullptr);
    Resource* pictures = manager.addFolder("pictures");
    Resource* old = manager.addFolder("old", pictures);
    Resource* sounds = manager.addFolder("sounds");
    const SmartRef<TextureResource> texture(new TextureResource());
    texture->setName("texture");
    old->addResource(texture.get());
    ASSERT_EQ(manager.findResourceOfType<TextureResource>(texture->getId()), texture.get());

    EXPECT_TRUE(old->moveTo(*sounds));
    EXPECT_TRUE(texture->moveTo(*manager.getRoot()));
    EXPECT_TRUE(texture->moveTo(*manager.getRoot())) << "where it is";
    EXPECT_THAT(names(manager.getRoot()->getChildren()), ElementsAre("sounds", "pictures", "texture"));
    EXPECT_THAT(names(sounds->getChildren()), ElementsAre("old"));
    EXPECT_THAT(names(pictures->getChildren()), IsEmpty());
    EXPECT_EQ(texture->getParent(), manager.getRoot());
    EXPECT_EQ(texture->getRefCount(), 2);
    EXPECT_EQ(manager.findResourceOfType<TextureResource>(texture->getId()), texture.get());

    EXPECT_FALSE(sounds->moveTo(*old));
    EXPECT_FALSE(sounds->moveTo(*sounds));
    EXPECT_FALSE(manager.getRoot()->moveTo(*sounds));
    EXPECT_FALSE(texture->moveTo(*ResourceManager(nullptr).getRoot()));
    EXPECT_THAT(takeTexts(),
                ElementsAre("'sounds' isn't moved to 'old': that is or lies below the resource itself",
                            "'sounds' isn't moved to 'sounds': that is or lies below the resource itself",
                            "'' isn't moved to 'sounds': it is in no folder",
                            "'texture' isn't moved to '': that is in another tree"));
    EXPECT_EQ(texture->getParent(), manager.getRoot());
}

TEST(ResourceTree, FindsItselfFoldersAndWhatTheyHold)
{
    ResourceManager manager(nullptr);
    const SmartRef<Resource> folder = makeResource("folder", true);
    const SmartRef<Resource> inner = makeResource("inner");
    manager.getRoot()->addResource(folder.get());
    manager.getRoot()->addResource(makeResource("outer").get());
    folder->addResource(inner.get());
    folder->addResource(makeResource("empty", true).get());

    EXPECT_EQ(manager.getRoot()->findResource(manager.getRoot()->getId()), manager.getRoot());
    EXPECT_EQ(manager.getRoot()->findResource(folder->getId()), folder.get());
    EXPECT_EQ(manager.getRoot()->findResource(inner->getId()), inner.get());
    EXPECT_EQ(manager.getRoot()->findResource(generateUniqueId()), nullptr);
    EXPECT_THAT(names(manager.getResourcesExcludingFolders()), ElementsAre("inner", "outer"));
}

TEST(ResourceManagerTest, TypedLookUpPrefersTheTreeAndLooksPastWrongTypes)
{
    ResourceManager manager(nullptr);
    const SmartRef<TextureResource> texture(new TextureResource());
    const UniqueId id = texture->getId();
    manager.getRoot()->addResource(texture.get());
    const SmartRef<ShaderResource> shader(new ShaderResource());
    manager.addTemporaryResource(id, shader.get());
    EXPECT_EQ(manager.findResourceOfType<TextureResource>(id), texture.get());
    EXPECT_EQ(manager.findResourceOfType<ShaderResource>(id), shader.get());
    EXPECT_EQ(manager.findResourceOfType<MaterialShaderResource>(id), nullptr);

    const SmartRef<TextureResource> other(new TextureResource());
    manager.addTemporaryResource(id, other.get());
    EXPECT_EQ(manager.findResourceOfType<ShaderResource>(id), nullptr);
    EXPECT_EQ(manager.findResourceOfType<TextureResource>(id), texture.get());
    manager.getRoot()->removeResource(texture.get());
    EXPECT_EQ(manager.findResourceOfType<TextureResource>(id), other.get());
    manager.removeTemporaryResource(id);
    manager.removeTemporaryResource(id);
    EXPECT_EQ(manager.findResourceOfType<TextureResource>(id), nullptr);
}

TEST(ResourceManagerTest, LookUpsFollowEveryEditOfTheTree)
{
    ResourceManager manager(nullptr);
    const SmartRef<Resource> folder = makeResource("folder", true);
    const SmartRef<Resource> inner(new TextureResource());
    manager.getRoot()->addResource(folder.get());
    EXPECT_EQ(manager.findResourceOfType<TextureResource>(inner->getId()), nullptr);
    folder->addResource(inner.get());
    const UniqueId firstId = inner->getId(), id = generateUniqueId();
    EXPECT_EQ(manager.findResourceOfType<TextureResource>(firstId), inner.get());
    inner->setId(id);
    EXPECT_EQ(manager.findResourceOfType<TextureResource>(firstId), nullptr);
    EXPECT_EQ(manager.findResourceOfType<TextureResource>(id), inner.get());

    const SmartRef<Resource> twin(new TextureResource());
    twin->setId(id);
    manager.getRoot()->addResource(twin.get()); // behind the folder
    EXPECT_EQ(manager.findResourceOfType<TextureResource>(id), inner.get());
    manager.getRoot()->removeResource(folder.get());
    EXPECT_EQ(manager.findResourceOfType<TextureResource>(id), twin.get());
}

TEST(ResourceManagerTest, LookUpsFollowIdsOfResourcesThatWereMoved)
{
    ResourceManager manager(nullptr);
    const SmartRef<Resource> folder = makeResource("folder", true);
    manager.getRoot()->addResource(folder.get());
    std::vector<SmartRef<Resource>> textures;
    for (int i = 0; i < 9; ++i) {
        const SmartRef<Resource> texture(new TextureResource());
        manager.getRoot()->addResource(texture.get());
        folder->addResource(texture.get());
        manager.getRoot()->removeResource(texture.get()); // clears the parent that it just got
        textures.push_back(texture);
    }
    EXPECT_EQ(manager.findResourceOfType<TextureResource>(textures[0]->getId()), textures[0].get());
    for (const SmartRef<Resource>& changed : textures) {
        changed->setId(generateUniqueId());
        for (const SmartRef<Resource>& texture : textures)
            EXPECT_EQ(manager.findResourceOfType<TextureResource>(texture->getId()), texture.get());
    }

    // Outside of all trees, whether taken out or left behind by a folder, ids change for free.
    folder->removeResource(textures[0].get());
    SmartRef<Resource> gone = makeResource("gone", true);
    gone->addResource(textures[0].get());
    gone = nullptr;
    const std::uint32_t edits = Resource::getTreeEdits();
    textures[0]->setId(generateUniqueId());
    EXPECT_EQ(Resource::getTreeEdits(), edits);
}

TEST(ResourceManagerTest, CopiesFilesBelowTheCacheFolderUnderTheirWholePath)
{
    const test::TemporaryFolder sources;
    const std::string source = sources.file("a.txt");
    ASSERT_TRUE(test::writeFile(source, "text"));
    // The second way leads up to the root of the disk and down again.
    for (const std::string& path : {source, "../../../../../../../../../../../.." + source}) {
        const test::TemporaryFolder cache;
        const ResourceManager manager(cache.getPath().c_str());
        manager.copyResourceFilesToCache({"/no/such/file.png", path});
        EXPECT_EQ(test::readFile(cache.getPath() + source), "text") << path;
    }
    for (const char* name : {"new", "new/deep/"}) {
        const test::TemporaryFolder place;
        ResourceManager(place.file(name).c_str()).copyResourceFilesToCache({source});
        EXPECT_EQ(test::readFile(place.file(name) + source), "text") << "into a folder that isn't there yet";
    }
}

} // namespace
