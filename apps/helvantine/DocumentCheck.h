// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace helvantine
{
class Composition;
class Document;
} // namespace helvantine

namespace helvantine::tool
{

/// One thing that is wrong with a document.
struct Finding
{
    const char* code;   ///< one of those that docs/inspecting.md lists; they don't change
    std::string path;   ///< where it is, as in ObjectPath.h; empty for the document as a whole
    std::string found;  ///< like "runs for -5 frames"
    std::string advice; ///< what to do, as an imperative
};

/// All that is wrong with a document that was read, in the order: reading, resources, compositions.
std::vector<Finding> checkDocument(const Document& document);

/// What is wrong with the links of a composition, those of its children left out.
void checkGraph(const Composition& composition, std::vector<Finding>& findings);

} // namespace helvantine::tool
