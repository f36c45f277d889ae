// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"
#include "shader/ShaderRequest.h"

#include <future>
#include <map>
#include <memory>
#include <string>

namespace helvantine
{

class ShaderCompiler;
struct ShaderHelperOptions;
struct ShaderSource;

/// Compiled programs by content: sources, included texts, entry points, macros and compiler version.
///
/// In memory an entry lives as long as someone holds its program, so editing a shader piles up nothing; the
/// files outlive the process. A file can be deleted at any time, two processes may share the folder, and a
/// file that is damaged or of another version is made anew. A failed compile is kept nowhere, but for those
/// that the compiler itself doesn't try again.
class ShaderProgramCache
{
public:
    /// The folder is made when the first file is written. Empty: no files.
    ShaderProgramCache(std::string folder, const ShaderHelperOptions& options);
    ~ShaderProgramCache();

    ShaderProgramCache(const ShaderProgramCache&) = delete;
    ShaderProgramCache& operator=(const ShaderProgramCache&) = delete;

    /// "shaders" in this user's cache folder; empty if there is none.
    static std::string defaultFolder();

    /// Programs in memory stay.
    void setFolder(std::string folder);

    /// Starts the compiler's process, without waiting for it, if compiling lies ahead: when no program is on disk.
    /// One that is missing is reported in either case.
    void prepare();

    /// The program, compiled now if it is neither in memory nor on disk. Null on failure, with lines of the
    /// form `name:line: error: …` in `errors`; emptied on success.
    ShaderProgramPtr get(const ShaderRequest& request, std::string& errors);

    /// A program on its way.
    struct Pending
    {
        Hash128 key;
        ShaderProgramPtr program; ///< null while it isn't finished, or on failure
        std::string errors;       ///< belongs to the thread while that compiles
        /// Invalid once it was taken, or if nothing is compiled. Last, since it waits for the thread as it goes.
        std::future<ShaderProgramPtr> result;
    };

    /// Does what get does, but compiles on a thread of its own. The caller keeps `pending` where it is, asks
    /// isFinished now and then, and waits for that thread by destroying it.
    void begin(const ShaderRequest& request, Pending& pending);
    bool isFinished(Pending& pending);

    /// How many programs were compiled, read from files, and found in memory.
    struct Counts
    {
        unsigned compiled = 0;
        unsigned loaded = 0;
        unsigned shared = 0;
    };
    const Counts& getCounts() const { return m_counts; }

private:
    /// What is known without compiling: true with the program, or with errors of the texts.
    bool find(const ShaderRequest& request, ShaderSource& vertex, ShaderSource& pixel, Pending& pending);
    void keep(const Pending& pending);
    ShaderProgramPtr findInMemory(const Hash128& key);
    void remember(const Hash128& key, const ShaderProgramPtr& program);

    void write(const Hash128& key, const ShaderProgram& program);

    std::string m_folder;
    bool m_isTidy = false; ///< what is too old or too much was taken out of the folder
    std::unique_ptr<ShaderCompiler> m_compiler;
    std::map<Hash128, std::weak_ptr<const ShaderProgram>> m_programs;
    Counts m_counts;
};

} // namespace helvantine
