// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace helvantine
{
class Composition;
class Object;
class PropertyBase;
class Resource;
} // namespace helvantine

namespace helvantine::tool
{

// Where things stand in a document, as names from the outside in with "/" between them. A thing without a name
// goes by its class. The roots are left out.

std::string getPath(const Composition& composition);
std::string getPath(const Composition& composition, const Object& effectOrNode);
std::string getPath(const Resource& resource);

/// The effect, node or importer that has the property; null for none.
const Object* getOwner(const PropertyBase& property);
std::string getPath(const Composition& composition, const PropertyBase& property);

} // namespace helvantine::tool
