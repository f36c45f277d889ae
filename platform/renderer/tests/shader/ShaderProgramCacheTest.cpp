// SPDX-License-Identifier: MIT
#include "ShaderFixture.h"

#include "shader/ShaderProgramCode.h"
#include "shader/ShaderProgramFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace helvantine
{

namespace
{

namespace fs = std::filesystem;

class ShaderProgramCacheTest : public ShaderTest
{
protected:
    void SetUp() override { fs::remove_all(m_folder.parent_path()); }
    void TearDown() override { fs::remove_all(m_folder.parent_path()); }

    /// A cache of a process of its own, as far as memory goes.
    ShaderProgramPtr get(const ShaderRequest& request, unsigned compiled, unsigned loaded)
    {
        ShaderProgramCache cache(m_folder.string(), m_options);
        std::string errors;
        ShaderProgramPtr program = cache.get(request, errors);
        EXPECT_EQ(cache.getCounts().compiled, compiled) << errors;
        EXPECT_EQ(cache.getCounts().loaded, loaded);
        return program;
    }

    std::vector<fs::path> files() const
    {
        std::vector<fs::path> files;
        if (fs::exists(m_folder))
            for (const auto& entry : fs::directory_iterator(m_folder))
                files.push_back(entry.path());
        return files;
    }

    fs::path m_folder =
        fs::temp_directory_path() / ("shader-cache-test-" + std::to_string(getpid())) / "shaders";
    ShaderHelperOptions m_options; ///< programs are compiled in this process
    ShaderRequest m_request = requestOf(plainVertex + R"(
cbuffer Values : register(b1) { float4 value; };
Texture2D picture : register(t2);
float4 PS(float2 uv : TEXCOORD3) : SV_Target { return value + uv.x + picture.Load(int3(0, 0, 0)); }
)");
};

std::string readFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const fs::path& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

TEST_F(ShaderProgramCacheTest, MemoryHoldsAProgramAsLongAsSomeoneUsesIt)
{
    ShaderProgramCache cache("", m_options);
    std::string errors;
    ShaderProgramPtr first = cache.get(m_request, errors);
    ShaderProgramPtr second = cache.get(m_request, errors);
    EXPECT_EQ(first, second);
    EXPECT_EQ(cache.getCounts().shared, 1u);

    first.reset();
    second.reset();
    cache.get(m_request, errors);
    EXPECT_EQ(cache.getCounts().compiled, 2u);
}

TEST_F(ShaderProgramCacheTest, FilesOutliveTheProcess)
{
    ShaderProgramPtr made = get(m_request, 1, 0);
    ShaderProgramPtr read = get(m_request, 0, 1);

    EXPECT_EQ(files().size(), 1u);
    EXPECT_EQ(read->vertexWords, made->vertexWords);
    EXPECT_EQ(read->pixelWords, made->pixelWords);
    EXPECT_EQ(read->pixelEntry, "PS");
    EXPECT_EQ(read->bindings, made->bindings);
    EXPECT_EQ(read->vertexInputs, made->vertexInputs);
    EXPECT_EQ(read->pixelOutputs, made->pixelOutputs);
    EXPECT_EQ(read->hash, made->hash);
}

TEST_F(ShaderProgramCacheTest, WhateverGoesIntoAProgramIsPartOfItsKey)
{
    ShaderRequest request = m_request;
    request.includer = [](const std::string&, std::string& text) { return text = "#define V 1\n", true; };
    request.pixelSource = "#include \"v.hlsl\"\nfloat4 PS() : SV_Target { return V; }\n";
    get(request, 1, 0);
    get(request, 0, 1);
    request.includer = [](const std::string&, std::string& text) { return text = "#define V 2\n", true; };
    get(request, 1, 0);
    request.macros = {{"A", "1"}};
    get(request, 1, 0);
    request.macros = {{"A", "2"}};
    get(request, 1, 0);
    request.vertexSource += " ";
    get(request, 1, 0);
    request.name = "another name";
    get(request, 0, 1);
}

TEST_F(ShaderProgramCacheTest, DamagedFilesAreMadeAnew)
{
    get(m_request, 1, 0);
    fs::path path = files().at(0);
    const std::string good = readFile(path);
    for (size_t size : {size_t(0), size_t(7), size_t(31), size_t(32), good.size() / 2, good.size() - 1}) {
        SCOPED_TRACE(size);
        writeFile(path, good.substr(0, size));
        get(m_request, 1, 0);
        EXPECT_EQ(readFile(path), good);
    }
    for (size_t at : {size_t(0), size_t(4), size_t(9), size_t(20), size_t(40), good.size() - 1}) {
        SCOPED_TRACE(at);
        std::string bad = good;
        bad[at] = char(bad[at] ^ 1);
        writeFile(path, bad);
        get(m_request, 1, 0);
    }
    fs::remove(path);
    get(m_request, 1, 0);
    EXPECT_EQ(files().size(), 1u) << "no temporary file stays";
}

TEST_F(ShaderProgramCacheTest, WhatIsNoProgramIsNotRead)
{
    get(m_request, 1, 0);
    const fs::path path = files().at(0);
    fs::resize_file(path, uintmax_t(1) << 40);
    get(m_request, 1, 0);
    EXPECT_LT(fs::file_size(path), 100000u);

    fs::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    get(m_request, 1, 0);
    get(m_request, 0, 1);
}

TEST_F(ShaderProgramCacheTest, FilesThatWritersLeftUnfinishedGoAfterAnHour)
{
    fs::create_directories(m_folder);
    const auto now = fs::file_time_type::clock::now();
    for (const char* name : {"new-old", "new-fresh", "news"})
        writeFile(m_folder / name, "half a program");
    fs::last_write_time(m_folder / "new-old", now - std::chrono::hours(2));
    fs::last_write_time(m_folder / "news", now - std::chrono::hours(2));

    get(m_request, 1, 0);

    EXPECT_FALSE(fs::exists(m_folder / "new-old"));
    EXPECT_TRUE(fs::exists(m_folder / "new-fresh")) << "someone may be writing it";
    EXPECT_TRUE(fs::exists(m_folder / "news")) << "not ours";
}

TEST_F(ShaderProgramCacheTest, TheOlderHalfGoesWhenTheFolderIsTooLarge)
{
    fs::create_directories(m_folder);
    const auto now = fs::file_time_type::clock::now();
    for (int age = 0; age < 4; ++age) {
        const fs::path path = m_folder / (std::string(1, char('a' + age)) + ".program");
        writeFile(path, std::string(100, 'x'));
        fs::last_write_time(path, now - std::chrono::hours(age));
    }
    tidyShaderFolder(m_folder.string(), 400);
    EXPECT_EQ(files().size(), 4u);
    tidyShaderFolder(m_folder.string(), 399);
    EXPECT_EQ(files().size(), 2u);
    EXPECT_TRUE(fs::exists(m_folder / "a.program"));
    EXPECT_TRUE(fs::exists(m_folder / "b.program"));
}

TEST_F(ShaderProgramCacheTest, ContentThatCannotBeIsRefusedEvenWithARightChecksum)
{
    ShaderProgramPtr made = get(m_request, 1, 0);
    Hash128 key{1, 2};
    ShaderProgram program = *made;
    EXPECT_TRUE(decodeShaderProgram(key, encodeShaderProgram(key, program)));
    EXPECT_FALSE(decodeShaderProgram(Hash128{1, 3}, encodeShaderProgram(key, program))) << "another key";
    program.bindings[0].kind = ShaderBindingKind(9);
    EXPECT_FALSE(decodeShaderProgram(key, encodeShaderProgram(key, program))) << "an unknown kind";
    program = *made;
    program.bindings[0] = {};
    program.bindings[0].stages = pixelStageBit;
    program.bindings[0].slot = constantRegisterCount;
    program.bindings[0].binding = pixelConstantBindingBase + constantRegisterCount;
    EXPECT_FALSE(decodeShaderProgram(key, encodeShaderProgram(key, program))) << "a slot that isn't there";
    program = *made;
    program.bindings.resize(maxShaderBindings + 1, program.bindings[0]);
    EXPECT_FALSE(decodeShaderProgram(key, encodeShaderProgram(key, program))) << "more than a set holds";
    program = *made;
    program.pixelWords.pop_back();
    EXPECT_FALSE(decodeShaderProgram(key, encodeShaderProgram(key, program))) << "a module cut short";
}

TEST_F(ShaderProgramCacheTest, FailuresLeaveNoFile)
{
    get(requestOf("broken"), 0, 0);
    EXPECT_TRUE(files().empty());

    writeFile(m_folder.parent_path() / "x", "");
    fs::create_directories(m_folder.parent_path());
    writeFile(m_folder, "a file where the folder should be");
    EXPECT_TRUE(get(m_request, 1, 0)) << "a cache that can't be written costs nothing but time";
}

TEST(Hash128Test, IsTheSameEverywhere)
{
    EXPECT_EQ(hashBytes("", 0), (Hash128{0, 0}));
    EXPECT_EQ(hashBytes("hello", 5).toString(), "5b1e906a48ae1d19cbd8a7b341bd9b02");
    Hasher128 first;
    first.add("ab");
    first.add("c");
    Hasher128 second;
    second.add("a");
    second.add("bc");
    EXPECT_NE(first.finish(), second.finish());
}

TEST_F(ShaderProgramCacheTest, CompilesBesideTheCaller)
{
    ShaderProgramCache cache(m_folder.string(), m_options);
    ShaderRequest bad = m_request;
    bad.pixelEntry = "Missing";
    ShaderProgramCache::Pending pending[2];
    cache.begin(m_request, pending[0]);
    cache.begin(bad, pending[1]);
    for (ShaderProgramCache::Pending& each : pending) {
        while (!cache.isFinished(each))
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(pending[0].errors, "");
    EXPECT_EQ(pending[1].program, nullptr);
    EXPECT_NE(pending[1].errors, "");
    std::string errors;
    EXPECT_EQ(cache.get(m_request, errors), pending[0].program);
    EXPECT_EQ(cache.getCounts().compiled, 1u);
    EXPECT_EQ(cache.getCounts().shared, 1u);

    ShaderProgramCache::Pending known;
    cache.begin(m_request, known);
    EXPECT_TRUE(cache.isFinished(known)) << "nothing is left to do";
    EXPECT_EQ(known.program, pending[0].program);
}

} // namespace

} // namespace helvantine
