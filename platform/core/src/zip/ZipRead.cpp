// SPDX-License-Identifier: MIT
#include <helvantine/core/ZipRead.h>

#include "zip/ZipArchive.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>
#include <helvantine/core/WinFile.h>

#include <cinttypes>

namespace helvantine
{

namespace
{

bool extractEntry(ZipArchive& archive, std::uint64_t index, const std::string& folder)
{
    const std::string& name = archive.getEntry(index).name;
    if (isFolderName(name) && makeRootedName(name.c_str()).empty())
        return true; // "./", the target itself
    const std::string path = resolveInside(folder, name.c_str());
    if (path.empty()) {
        reportProblem("zip", formatString("'%s' would leave '%s'", name.c_str(), folder.c_str()));
        return false;
    }
    if (isFolderName(name))
        return makeFolders(path.c_str());
    WinFile file;
    if (!makeFolders(getPath(path.c_str()).c_str()) || !file.create(path.c_str()))
        return false;
    if (archive.read(index, file) && file.close())
        return true;
    file.close();
    deleteFile(path.c_str()); // half a file must not pass for one
    return false;
}

} // namespace

void* ZipRead::open(const char* path)
{
    return ZipArchive::open(path).release();
}

bool ZipRead::extractFiles(void* handle, const char* folder)
{
    auto* archive = static_cast<ZipArchive*>(handle);
    if (!archive || !folder || !makeFolders(folder))
        return false;
    std::uint64_t total = 0;
    for (std::uint64_t i = 0; i < archive->getCount(); ++i) {
        std::string refusal = archive->getRefusal(i);
        if (refusal.empty()) // so the size is at most the total, and the sum can't wrap
            total += archive->getEntry(i).size;
        if (refusal.empty() && total > ziplimits::totalBytes)
            refusal =
                formatString("entries up to '%s' have %" PRIu64 " bytes, at most %" PRIu64 " are unpacked",
                             archive->getEntry(i).name.c_str(), total, ziplimits::totalBytes);
        if (!refusal.empty()) {
            reportProblem("zip", refusal);
            return false;
        }
        if (!extractEntry(*archive, i, folder))
            return false;
    }
    return true;
}

void ZipRead::close(void* handle)
{
    delete static_cast<ZipArchive*>(handle);
}

} // namespace helvantine
