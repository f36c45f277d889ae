// SPDX-License-Identifier: MIT
#include <helvantine/resource/ResourceImporter.h>

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

} // namespace helvantine
