// SPDX-License-Identifier: MIT
#pragma once

#include "Json.h"

#include <string>

namespace helvantine
{
class Document;
}

namespace helvantine::tool
{

/// What a document holds; docs/inspecting.md tells the keys, which are stable.
Json describeDocument(const std::string& path, const Document& document);

} // namespace helvantine::tool
