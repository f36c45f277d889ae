// SPDX-License-Identifier: MIT
#include <helvantine/resource/ResourceImporter.h>

#include <helvantine/core/Report.h>
#include <helvantine/resource/Resource.h>

#include <utility>

namespace helvantine
{

ImportResult::ImportResult() = default;

ImportResult::ImportResult(Resource* made) : status(Success), resource(made) {}

ImportResult::ImportResult(std::string whyNot) : message(std::move(whyNot)) {}

ImportResult::ImportResult(const ImportResult&) = default;

ImportResult& ImportResult::operator=(const ImportResult&) = default;

ImportResult::~ImportResult() = default;

void ResourceImporter::checkIsHeld(const Resource* existing)
{
    if (existing && existing->getRefCount() == 0)
        reportProblem("resource", "'" + existing->getName() +
                                      "' is imported into while no SmartRef holds it: it "
                                      "goes with the result of the import");
}

} // namespace helvantine
