// SPDX-License-Identifier: MIT
#include <helvantine/core/FileSystem.h>
#include <helvantine/core/Keyframe.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/ZipRead.h>
#include <helvantine/core/ZipVirtualFileSystem.h>
#include <helvantine/core/ZipWrite.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/testsupport/ProjectTest.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

class ProgressLog final : public FxSerializerListener
{
public:
    void onProgress(unsigned done, unsigned total) override
    {
        m_done = done;
        m_total = total;
        ++m_calls;
    }

    unsigned m_done = 0;
    unsigned m_total = 0;
    unsigned m_calls = 0;
};

class SaveLoadTest : public ProjectTest
{
protected:
    std::string save(const std::string& name)
    {
        application().saveDocument(m_place.file(name).c_str());
        return readFile(m_place.file(name));
    }
    void load(const std::string& name, FxSerializerListener* listener = nullptr)
    {
        application().loadDocument(m_place.file(name).c_str(), m_cache.getPath().c_str(), listener);
    }
    Composition& root() { return *document().getCompositionManager()->getRoot(); }

    TemporaryFolder m_place; ///< of the documents
    TemporaryFolder m_cache; ///< a second one, for what is loaded
};

/// Two keys in each mode, with every number set.
void addKeys(PropertyBase& property)
{
    property.enableKeyframe(true);
    property.m_keyframe->setPreOOR(KeyframeOOR::Oscillate);
    property.m_keyframe->setPostOOR(KeyframeOOR::CycleOffset);
    for (unsigned i = 0; i < 8; ++i) {
        const float f = static_cast<float>(i);
        Key* key = property.m_keyframe->createKey();
        key->time = 0.5f * f;
        key->mode = i % 4;
        key->paramA = 0.1f * f;
        key->paramB = 0.2f;
        key->paramC = -0.3f;
        key->paramD = 0.4f;
        key->paramE = 0.5f;
        key->vectorA = Vec4(f, 1, 2, 3);
        key->vectorB = Vec4(4, f, 6, 7);
        key->tag = static_cast<int>(i) - 3;
        for (unsigned c = 0; c < property.getComponentCount(); ++c)
            key->values[c] = f + 0.25f * static_cast<float>(c);
        property.m_keyframe->addKey(key, false);
    }
    property.m_keyframe->sort();
}

/// While it lives, no file of this process can grow beyond a size.
class SmallDisk
{
public:
    explicit SmallDisk(rlim_t size)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit small = {size, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before;
};

Resource* addResource(Document& document, ResourceImporter* importer, const char* filename)
{
    const SmartRef<ResourceImporter> holder(importer);
    const ImportResult result = importer->import(filename, nullptr);
    Resource* resource = result.resource ? result.resource.get() : importer->createResource();
    resource->setImporter(importer);
    document.getResourceManager()->getRoot()->addResource(resource);
    return resource;
}

template <class T>
T* addEffect(Object& parent, const char* name, int start, int end)
{
    T* effect = createPluginOfType<T>(T::s_plugininfo.id);
    effect->onInit();
    effect->setName(name);
    effect->setStart(start);
    effect->setEnd(end);
    parent.addObject(effect, -1);
    return effect;
}

PropertyBase& findProperty(Effect& effect, const char* group, const char* name)
{
    return *effect.findGroup(group)->findProperty(name);
}

/// Settings, resources, nested layers, animated and linked properties, a child composition.
void fillProject(Document& document, Composition& composition, const std::string& picture)
{
    document.getProjectSettings()->setTitle("Everything");
    document.getProjectSettings()->setFrameRate(25);
    document.getProjectSettings()->setWidth(320);
    addResource(document, new RenderTargetResourceImporter, nullptr)->setName("target");
    Resource* texture = addResource(document, new TextureResourceImporter, picture.c_str());

    Layer* layer = addEffect<Layer>(*composition.m_rootEffect, "outer", 5, 90);
    TextureEffect* source = addEffect<TextureEffect>(*layer, "source", 10, 60);
    findProperty(*source, "Attributes", "Texture").fromString(uniqueIdToString(texture->getId()).c_str());
    TextureEffect* target = addEffect<TextureEffect>(*layer, "target", -10, 60);
    target->setEnabled(false);
    for (const auto& [id, property] : source->m_properties) {
        if (property->canKeyframe() && property->m_type != KindBool)
            addKeys(*property);
    }
    composition.m_schematics->addLink(new PropertyLink(&findProperty(*source, "Attributes", "Color"),
                                                       &findProperty(*target, "UV", "UV-Rect")));
    composition.m_schematics->addLink(new PropertyLink(&findProperty(*source, "Transformation", "Position"),
                                                       &findProperty(*target, "Transformation", "Rotation")));

    Composition* child = new Composition(true, true);
    child->setName("child");
    composition.addComposition(child);
}

} // namespace

TEST_F(SaveLoadTest, ComesBackByteByByte)
{
    const std::string picture = m_place.file("picture.png");
    ASSERT_TRUE(writePng(picture, Image(4, 4, Vec4(1, 0, 0, 1))));
    fillProject(document(), composition(), picture);
    const std::string first = save("first");
    ASSERT_FALSE(first.empty());

    ProgressLog progress;
    load("first", &progress);
    EXPECT_EQ(progress.m_done, progress.m_total) << "the total of the save is that of the load";
    EXPECT_EQ(progress.m_calls, progress.m_done);
    EXPECT_EQ(document().getProjectSettings()->getTitle(), "Everything");
    ASSERT_EQ(root().m_compositions.size(), 1u);
    const Composition& loaded = *root().m_compositions[0];
    EXPECT_EQ(loaded.m_schematics->m_links.size(), 2u);
    EXPECT_EQ(loaded.getEndFrame(), 90);
    EXPECT_EQ(readFile(m_cache.file(picture.substr(1))), readFile(picture)) << "resource files travel along";

    EXPECT_EQ(save("second"), first);
}

TEST_F(SaveLoadTest, AnArchiveWithoutScriptLeavesAnEmptyDocument)
{
    document().getProjectSettings()->setTitle("before");
    ASSERT_TRUE(writeFile(m_place.file("text"), "no archive"));
    for (const auto& [name, words] :
         {std::pair("text", ": holds no Helvantine.Script"), std::pair("absent", ": no such file")})
    {
        takeProblems();
        load(name);
        EXPECT_EQ(document().getProjectSettings()->getTitle(), "Untitled Project") << name;
        const auto problems = takeProblems();
        ASSERT_FALSE(problems.empty()) << name;
        EXPECT_EQ(problems.back().text, m_place.file(name) + words);
    }
}

TEST_F(SaveLoadTest, AScriptLeftInTheCacheFolderIsNotTakenForTheDocuments)
{
    document().getProjectSettings()->setTitle("other");
    save("other");
    load("other");
    ASSERT_EQ(document().getProjectSettings()->getTitle(), "other");
    ASSERT_TRUE(ZipWrite::close(ZipWrite::open(m_place.file("empty").c_str(), true)));
    for (const char* name : {"empty", "absent"}) {
        load(name);
        EXPECT_EQ(document().getProjectSettings()->getTitle(), "Untitled Project") << name;
    }
}

TEST_F(SaveLoadTest, SavingUnderAnotherNameStaysWithTheOldArchive)
{
    save("first");
    load("first");
    save("second");
    EXPECT_EQ(document().getDocumentPath(), m_place.file("first"));
    EXPECT_TRUE(document().getZipVfs()->isOpen());
}

TEST_F(SaveLoadTest, AFailedSaveLeavesThePreviousDocument)
{
    const std::string first = save("first");
    fillProject(document(), composition(), m_place.file("absent.png"));
    const auto expectKept = [&](const std::string& reason) {
        EXPECT_EQ(save("first"), first) << reason;
        const SaveOutcome& outcome = document().getSaveOutcome();
        EXPECT_EQ(outcome.file, m_place.file("first"));
        EXPECT_FALSE(outcome.saved);
        EXPECT_EQ(outcome.reason, reason);
        EXPECT_EQ(outcome.missingBytes, 0u);
        const std::vector<Problem> problems = takeProblems();
        ASSERT_EQ(problems.size(), 1u) << reason;
        EXPECT_EQ(problems[0].text, m_place.file("first") + ": isn't saved: " + reason);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_place.getPath()), {}), 1)
            << reason << ": something was left beside it";
    };
    takeProblems();
    {
        const SmallDisk disk(8192);
        expectKept("can't write to '" + folder().file("Helvantine.Script") + "': File too large");
    }
    std::filesystem::remove_all(folder().getPath());
    const std::string inTheWay = folder().getPath().substr(0, folder().getPath().size() - 1);
    ASSERT_TRUE(writeFile(inTheWay, "a file"));
    expectKept("can't make folder '" + folder().getPath() + "': File exists");
    std::filesystem::remove(inTheWay);
    EXPECT_NE(save("first"), first) << "the folder is made";
}

TEST_F(SaveLoadTest, AMissingFileIsOneMessageEachTime)
{
    fillProject(document(), composition(), "absent.png");
    takeProblems();
    save("first");
    EXPECT_TRUE(document().getSaveOutcome().saved);
    EXPECT_EQ(document().getSaveOutcome().missingFiles, std::vector<std::string>{"absent.png"});
    std::vector<Problem> problems = takeProblems();
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].text, m_place.file("first") + ": saved without 'absent.png', which isn't there");
}

TEST_F(SaveLoadTest, WithoutACacheFolderASaveTouchesNothingElse)
{
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(m_cache.getPath());
    ASSERT_TRUE(writeFile("Helvantine.Script", "the user's own"));
    application().newDocument(nullptr);
    document().getProjectSettings()->setTitle("unplaced");
    save("first");
    EXPECT_TRUE(document().getSaveOutcome().saved);
    EXPECT_EQ(readFile("Helvantine.Script"), "the user's own");
    EXPECT_EQ(g_fileSystem->openFileInside("Helvantine.Script"), nullptr)
        << "the working folder is on the stack";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_place.getPath()), {}), 1);

    application().loadDocument(m_place.file("first").c_str(), nullptr, nullptr);
    EXPECT_EQ(document().getProjectSettings()->getTitle(), "unplaced");
    std::filesystem::current_path(before);
}

TEST_F(SaveLoadTest, ACacheFolderIsMadeAndNeedsNoSeparator)
{
    const std::string cache = m_cache.file("new/cache");
    application().newDocument(cache.c_str());
    EXPECT_EQ(document().getCacheFolder(), cache);
    takeProblems();
    save("first");
    EXPECT_TRUE(document().getSaveOutcome().saved);
    EXPECT_TRUE(takeProblems().empty());
    EXPECT_TRUE(std::filesystem::exists(cache + "/Helvantine.Script"));
}

TEST_F(SaveLoadTest, ARefusedEntryIsNamedWithItsReason)
{
    std::filesystem::create_directory(folder().file("xx"));
    ASSERT_TRUE(writeFile(folder().file("xx/evil"), "evil"));
    addResource(document(), new TextureResourceImporter, "xx/evil");
    std::string bytes = save("first");
    for (size_t at = bytes.find("xx/evil"); at != bytes.npos; at = bytes.find("xx/evil", at + 1)) {
        if (bytes[at - 1] == 0) // a name of the archive
            bytes.replace(at, 2, "..");
    }
    ASSERT_TRUE(writeFile(m_place.file("first"), bytes));
    load("first");
    ASSERT_FALSE(document().getLoadProblems().empty());
    EXPECT_EQ(document().getLoadProblems()[0].found,
              "'../evil' in '" + m_place.file("first") + "' would leave its folder");
}

TEST_F(SaveLoadTest, AScriptCutAnywhereIsReadUpToThere)
{
    fillProject(document(), composition(), m_place.file("absent.png"));
    save("whole");
    load("whole");
    const std::string script = readFile(m_cache.file("Helvantine.Script"));
    ASSERT_GT(script.size(), 1000u);

    for (size_t size = 0; size < script.size(); size += 37) {
        ASSERT_TRUE(writeFile(m_cache.file("Helvantine.Script"), script.substr(0, size)));
        takeProblems();
        application().loadDocument(nullptr, m_cache.getPath().c_str(), nullptr);
        EXPECT_FALSE(takeProblems().empty()) << "cut at " << size;
    }
}

TEST_F(SaveLoadTest, WhatWasWrongIsToldAsData)
{
    addEffect<TextureEffect>(*addEffect<Layer>(*composition().m_rootEffect, "outer", 0, 9), "inner", 0, 9);
    save("whole");
    load("whole");
    EXPECT_TRUE(document().getLoadProblems().empty());
    const std::string path = m_cache.file("Helvantine.Script");
    const std::string script = readFile(path);
    const auto loadScript = [&](const std::string& bytes) {
        ASSERT_TRUE(writeFile(path, bytes));
        application().loadDocument(nullptr, m_cache.getPath().c_str(), nullptr);
    };
    const auto describe = [&] {
        std::string text;
        for (const LoadProblem& problem : document().getLoadProblems())
            text += problem.file + '|' + problem.record + '|' + problem.path + '|' +
                    std::to_string(problem.offset) + '|' + problem.found + '|' + problem.expected +
                    (problem.endsReading ? "|end\n" : "\n");
        return text;
    };

    loadScript(script.substr(0, script.size() - 1));
    EXPECT_EQ(describe(), "|document||" + std::to_string(script.size() - 4) +
                              "|integer of 4 bytes|at most 3 bytes|end\n");

    std::string unknown = script;
    const size_t classId = script.find(std::string(1, '\5') + std::string(3, '\0') + "inner") - 32;
    unknown[classId] ^= 1;
    loadScript(unknown);
    EXPECT_EQ(describe(),
              "|Layer|Main/outer|" + std::to_string(classId + 16) + "|effect of unknown class " +
                  uniqueIdToString(*reinterpret_cast<const UniqueId*>(unknown.substr(classId, 16).data())) +
                  " left out|class of an effect that is loaded\n");

    std::string name = script;
    name[classId + 35] = '\x7F'; // the length of the inner effect's name
    loadScript(name);
    EXPECT_EQ(describe(), "|TextureEffect|Main/outer/TextureEffect|" + std::to_string(classId + 36) +
                              "|string of " + std::to_string(0x7F000005) + " bytes|at most " +
                              std::to_string(script.size() - classId - 36) + " bytes|end\n");

    std::filesystem::create_symlink(m_place.file("whole"), m_place.file("link"));
    load("link"); // the script that was unpacked before is read, but not the archive
    EXPECT_EQ(describe().substr(0, describe().find('\n')),
              m_place.file("link") + "|document||0|no archive|a regular file with a zip archive|end");
}

TEST_F(SaveLoadTest, ASaveBringsBackFilesThatTheCacheFolderHasLost)
{
    const std::string picture = m_place.file("picture.png");
    ASSERT_TRUE(writePng(picture, Image(4, 4, Vec4(1, 0, 0, 1))));
    addResource(document(), new TextureResourceImporter, picture.c_str());
    const std::string first = save("first");
    load("first");
    ASSERT_TRUE(std::filesystem::remove(picture));
    ASSERT_TRUE(std::filesystem::remove(m_cache.file(picture.substr(1))));
    EXPECT_EQ(save("first"), first);
}

TEST_F(SaveLoadTest, EqualNamesKeepTheirOrder)
{
    for (int i = 0; i < 40; ++i) {
        root().addComposition(new Composition(true, true));
        const SmartRef<Resource> folder(new Resource);
        folder->setIsFolder(true);
        document().getResourceManager()->getRoot()->addResource(folder.get());
    }
    const std::string first = save("first");
    load("first");
    EXPECT_EQ(save("second"), first);
}

TEST_F(SaveLoadTest, WhatIsNoRegularFileIsNotOpened)
{
    ASSERT_EQ(mkfifo(m_place.file("pipe").c_str(), 0600), 0);
    for (const std::string& path : {m_place.file("pipe"), m_place.getPath(), std::string("/dev/zero")}) {
        application().loadDocument(path.c_str(), m_cache.getPath().c_str(),
                                   nullptr); // would wait for the pipe
        ASSERT_FALSE(document().getLoadProblems().empty()) << path;
        EXPECT_EQ(document().getLoadProblems()[0].found, "no archive") << path;
    }
}

TEST_F(SaveLoadTest, RefusesAFormatOfTheFuture)
{
    save("whole");
    load("whole");
    std::string script = readFile(m_cache.file("Helvantine.Script"));
    script[0] = 8;
    ASSERT_TRUE(writeFile(m_cache.file("Helvantine.Script"), script));
    takeProblems();
    application().loadDocument(nullptr, m_cache.getPath().c_str(), nullptr);
    const auto problems = takeProblems();
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_NE(problems[0].text.find("format version 8, up to 7 can be read"), std::string::npos)
        << problems[0].text;
}
