// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/UniqueId.h>

#include <string>
#include <string_view>
#include <vector>

namespace helvantine
{
class Composition;
class Document;
class Object;
class PropertyBase;
class PropertyContext;
class RenderTargetResource;
class Resource;
class SchematicsNode;
class TypedObject;
} // namespace helvantine

namespace helvantine::tool
{

class ShaderReview;

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

// Its parts. Compositions are looked at without their children.

/// What was wrong with the document as it was read, but for resources that nothing could be made of.
void checkReading(const Document& document, std::vector<Finding>& findings);
/// What inputs of an effect, a node or an importer name as resources. `path` is the owner's.
void checkReferences(const Object& owner, const std::string& path, std::vector<Finding>& findings);
/// The numbers that a render target is made from; other resources have nothing to find.
void checkTargetNumbers(const Resource& resource, std::vector<Finding>& findings);
/// Effects that read a render target while they draw into it.
void checkTargets(const Composition& composition, std::vector<Finding>& findings);
/// Render targets that are read or drawn onto while they hold something of an earlier frame.
void checkCarriedTargets(const Composition& composition, std::vector<Finding>& findings);
/// Links and rings of them.
void checkGraph(const Composition& composition, std::vector<Finding>& findings);
/// The text of a node that compiles one, and what its program reads; others have nothing to find.
void checkShaderText(const SchematicsNode& node, const std::string& path, const ShaderReview& review,
                     std::vector<Finding>& findings);

/// The first input of that name, without a word where there is none; null then.
PropertyBase* findInput(const PropertyContext& owner, const char* name);
/// The render target that an input of the effect names; null for none.
const RenderTargetResource* findTarget(const Object& effect, const char* name);
/// Whether a plugin library here has the class.
bool isClassKnown(const UniqueId& id);
/// Whether the object is of the class of that name, or of one derived from it.
bool isOfClass(const TypedObject& object, std::string_view name);

} // namespace helvantine::tool
