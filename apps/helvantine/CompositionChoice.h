// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/SmartRef.h>

#include <string>

namespace helvantine
{
class Composition;
class Document;
} // namespace helvantine

namespace helvantine::tool
{

/// The composition that a command works on: by name or id; an empty name takes the first that is no folder, or
/// the root if only that has effects. path is the document's, for the words. Returns a sentence for the user,
/// empty for success.
std::string chooseComposition(const Document& document, const std::string& path, const std::string& name,
                              SmartRef<Composition>& chosen);

} // namespace helvantine::tool
