// SPDX-License-Identifier: MIT
#include "SystemFaults.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/testsupport/ProjectTest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

/// A document that was loaded from its file and then changed; processes of its own save it, and die over it.
class SafeSaveTest : public ProjectTest
{
protected:
    void SetUp() override
    {
        std::mt19937 random(1);
        std::string noise(200000, '\0'); // several writes, packed or not
        std::generate(noise.begin(), noise.end(), [&] { return static_cast<char>(random()); });
        ASSERT_TRUE(writeFile(m_other.file("noise.png"), noise));
        const SmartRef<ResourceImporter> importer(new TextureResourceImporter);
        importer->import(m_other.file("noise.png").c_str(), nullptr); // fails without a device, but is noted
        const SmartRef<Resource> resource(importer->createResource());
        resource->setImporter(importer.get());
        document().getResourceManager()->getRoot()->addResource(resource.get());

        application().saveDocument(m_path.c_str());
        m_old = readFile(m_path);
        application().loadDocument(m_path.c_str(), m_other.getPath().c_str(), nullptr);
        document().getProjectSettings()->setTitle("changed");
        application().saveDocument(m_other.file("document").c_str());
        m_new = readFile(m_other.file("document"));
        ASSERT_GT(m_old.size(), 200000u);
        ASSERT_GT(m_new.size(), 200000u);
        takeProblems();
    }

    /// Starts a process that saves. It exits with 0, or with 1 if it has reported something.
    pid_t startSave(Fault fault, int call, int error)
    {
        const pid_t child = fork();
        if (child == 0) {
            takeProblems();
            beginFaults(fault, call, error);
            application().saveDocument(m_path.c_str());
            endFaults();
            _exit(takeProblems().empty() ? 0 : 1);
        }
        return child;
    }
    static int wait(pid_t child)
    {
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    int save(Fault fault = Fault::None, int call = -1, int error = 0)
    {
        return wait(startSave(fault, call, error));
    }
    int countCalls()
    {
        beginFaults(Fault::None, -1, 0);
        application().saveDocument(m_path.c_str());
        const int calls = endFaults();
        restoreOld();
        return calls;
    }

    void restoreOld() { ASSERT_TRUE(writeFile(m_path, m_old)); }
    bool isOld() const { return readFile(m_path) == m_old; }
    bool isNew() const { return readFile(m_path) == m_new; }
    /// A save that nothing disturbs: it works, and clears away what the ones before it have left.
    void expectRecovery()
    {
        EXPECT_EQ(save(), 0);
        EXPECT_TRUE(isNew());
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_place.getPath()), {}), 1);
    }

    TemporaryFolder m_place; ///< of the document alone
    TemporaryFolder m_other; ///< what is loaded, and what belongs nowhere else
    std::string m_path = m_place.file("document");
    std::string m_old; ///< the document's bytes before a save, and after it
    std::string m_new;
};

} // namespace

TEST_F(SafeSaveTest, KilledAtAnyCallItLeavesAWholeDocument)
{
    const int calls = countCalls();
    ASSERT_GT(calls, 20);
    for (const Fault fault : {Fault::Kill, Fault::KillHalf}) {
        bool wasNew = false;
        for (int call = 0; call < calls; ++call) {
            restoreOld();
            EXPECT_EQ(save(fault, call), -1) << "survived call " << call;
            EXPECT_TRUE(isOld() || isNew()) << "killed in place of call " << call;
            EXPECT_TRUE(isNew() || !wasNew) << "call " << call << " takes the new one back";
            wasNew = isNew();
        }
        EXPECT_TRUE(wasNew) << "what follows the renaming is only cleaning";
    }
    expectRecovery();
}

TEST_F(SafeSaveTest, KilledAtAnyTimeItLeavesAWholeDocument)
{
    const double start = getTime();
    save();
    const double duration = getTime() - start;
    std::mt19937 random(std::random_device{}());
    std::uniform_real_distribution<double> delay(0, 1.1 * duration * 1e6);
    int kept = 0;
    int replaced = 0;
    for (int round = 0; round < 300; ++round) {
        restoreOld();
        const pid_t child = startSave(Fault::None, -1, 0);
        usleep(static_cast<useconds_t>(delay(random)));
        kill(child, SIGKILL);
        wait(child);
        ASSERT_TRUE(isOld() || isNew()) << "round " << round;
        ++(isOld() ? kept : replaced);
    }
    EXPECT_GT(kept, 0);
    RecordProperty("kept", kept);
    RecordProperty("replaced", replaced);
    expectRecovery();
}

TEST_F(SafeSaveTest, ACallThatFailsCostsAtMostTheSave)
{
    const int calls = countCalls();
    for (const int error : {ENOSPC, EIO}) {
        for (int call = 0; call < calls; ++call) {
            restoreOld();
            const int result = save(Fault::Fail, call, error);
            ASSERT_NE(result, -1) << "call " << call << " kills the process";
            EXPECT_TRUE(isNew() || (isOld() && result == 1))
                << "after call " << call << " failed with " << error << (isOld() ? " in silence" : "");
        }
    }
    expectRecovery();
}

TEST_F(SafeSaveTest, AFileThatOnlyTheArchiveHasComesWholeOrTheSaveFails)
{
    const std::string source = m_other.file("noise.png");
    const std::string cached = m_other.file(source.substr(1));
    const auto lose = [&] {
        deleteFile(source.c_str());
        deleteFile(cached.c_str());
    };
    lose();
    const int calls = countCalls();
    for (int call = 0; call < calls; ++call) {
        restoreOld();
        lose();
        const int result = save(Fault::Fail, call, ENOSPC);
        EXPECT_TRUE(isNew() || (isOld() && result == 1)) << "call " << call;
    }
    lose();
    expectRecovery();
}

TEST_F(SafeSaveTest, ProcessesThatSaveAtOnceLeaveEachOtherAlone)
{
    for (int round = 0; round < 20; ++round) {
        restoreOld();
        std::vector<pid_t> children;
        for (int i = 0; i < 4; ++i)
            children.push_back(startSave(Fault::None, -1, 0));
        for (const pid_t child : children)
            EXPECT_EQ(wait(child), 0);
        EXPECT_TRUE(isNew());
    }
    const std::string foreign = m_place.file(".helvantine-save-of mine");
    ASSERT_TRUE(writeFile(foreign, "not the runtime's"));
    EXPECT_EQ(save(), 0);
    EXPECT_TRUE(std::filesystem::remove(foreign)) << "only what a save has made is cleared away";
    expectRecovery();
}

TEST_F(SafeSaveTest, ADiskThatIsFullIsSaidOnceWithTheRoomThatIsMissing)
{
    pretendRoom(300000);
    beginFaults(Fault::Fail, countCalls() / 2, ENOSPC);
    application().saveDocument(m_path.c_str());
    endFaults();
    pretendRoom(0);
    const SaveOutcome& outcome = document().getSaveOutcome();
    EXPECT_FALSE(outcome.saved);
    EXPECT_GT(outcome.missingBytes, 100000u) << "as it is and packed, the noise takes 400,000 bytes";
    EXPECT_LT(outcome.missingBytes, 110000u);
    const std::vector<Problem> problems = takeProblems();
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].text, m_path + ": isn't saved: " + outcome.reason + "; about " +
                                    std::to_string(outcome.missingBytes) + " bytes of room are missing");
    EXPECT_NE(outcome.reason.find("No space left on device"), std::string::npos) << outcome.reason;
}
