// SPDX-License-Identifier: MIT
#include "WriteFilm.h"

#include "CommandLine.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/Document.h>
#include <helvantine/host/ProjectSettings.h>

#include <cstdio>
#include <filesystem>

using namespace helvantine;

namespace
{

/// Where the document's files lie while it is worked on; gone at the end.
class CacheFolder
{
public:
    CacheFolder()
        : m_path(getTemporaryFolder() + "/helvantine-example-" + uniqueIdToString(generateUniqueId()) + "/")
    {
        makeFolders(m_path.c_str());
    }
    ~CacheFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    const std::string& getPath() const { return m_path; } ///< ends in a separator, as a document wants it

private:
    std::string m_path;
};

void fillDocument(Document& document, const Film& film)
{
    ProjectSettings& settings = *document.getProjectSettings();
    settings.setTitle(film.title);
    settings.setFrameRate(film.rate);
    settings.setWidth(film.width);
    settings.setHeight(film.height);

    CompositionBuilder builder(document, film.title, film.frames);
    film.fill(builder, builder.getRoot());
}

/// True if there was nothing to tell.
bool tellProblems()
{
    const std::vector<Problem> problems = takeProblems();
    for (const Problem& problem : problems)
        std::fprintf(stderr, "%s: %s\n", problem.module.c_str(), problem.text.c_str());
    return problems.empty();
}

} // namespace

int writeFilm(const Film& film, int argc, char** argv)
{
    if (const auto exitCode = answerUsage(argc, argv, "DOCUMENT", 1))
        return *exitCode;
    const CacheFolder cache;
    if (!film.paint(cache.getPath())) {
        std::fprintf(stderr, "%s: the pictures can't be written\n", cache.getPath().c_str());
        return 1;
    }
    // The folder of the executable is where the plugin libraries lie. The device is a hidden one: with it the
    // pictures are loaded as they are imported, and one that can't be read is told at once.
    Application application(getExecutableFolder().c_str(), true);
    application.newDocument(cache.getPath().c_str());
    fillDocument(*application.getDocument(), film);
    makeFolders(getPath(argv[1]).c_str());
    application.saveDocument(argv[1]);
    return tellProblems() ? 0 : 1;
}
