// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace helvantine
{
class Composition;
class Document;
class Object;
class PropertyBase;
class ShaderNode;
class ShaderResource;
struct ProgramBindings;
struct ShaderReflection;
} // namespace helvantine

namespace helvantine::tool
{

/// Looks at what the programs of a document's shader nodes read, and at what the effects bind that draw with them.
///
/// Which effects these are follows from what properties name and what links may hand on; it is found out once.
class ShaderReview
{
public:
    explicit ShaderReview(const Document& document);

    /// Something that compiles and hardly means what its author thinks.
    struct Remark
    {
        const char* code; ///< of a Finding
        unsigned line;    ///< of the node's text
        std::string found;
        std::string advice;
    };

    /// Of the text that the node has; nothing if that doesn't compile.
    std::vector<Remark> review(const ShaderNode& node) const;
    /// What the compiler warns of in that text, in lines such as `shader:12: warning: …`.
    static std::string getCompilerWarnings(const ShaderNode& node);
    /// Both, as the compiler says it.
    std::string getWarnings(const ShaderNode& node) const;

private:
    /// An effect that a program is drawn with.
    struct User
    {
        std::string path;
        const char* className;
        const ProgramBindings* bindings;
    };

    using Links =
        std::unordered_multimap<const PropertyBase*, const PropertyBase*>; ///< from target to source

    void addNodes(const Composition& composition);
    void addUsers(const Composition& composition);
    void addUser(const Links& links, const PropertyBase& property, const User& user);
    static void addShared(const ShaderReflection& reflection, std::vector<Remark>& remarks);
    static void addUnbound(const ShaderReflection& reflection, const User& user,
                           std::vector<Remark>& remarks);
    const ShaderNode* findMaker(const PropertyBase& property) const;

    std::map<const ShaderResource*, const ShaderNode*> m_makers;
    std::map<const ShaderNode*, std::vector<User>> m_users;
};

} // namespace helvantine::tool
