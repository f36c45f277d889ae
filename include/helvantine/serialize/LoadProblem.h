// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace helvantine
{

/// One thing that was wrong with a document that was read, for a host that shows or judges it.
struct LoadProblem
{
    enum class Kind
    {
        Damage,        ///< what no writer writes
        UnknownClass,  ///< of an effect or a node
        ResourceFile,  ///< a resource that its importer can't make
        LostLink,      ///< an end is missing, or can't hold the other's values
        UnorderedKeys, ///< the curve has put them in order
    };

    std::string file;         ///< path of the document or of the resource's file
    std::string record;       ///< kind of the innermost record, "document" outside of all
    std::string object;       ///< name of the nearest object, resource or composition around it; may be empty
    std::uint64_t offset = 0; ///< in the script, in bytes; 0 for what lies outside of it
    std::string found;        ///< like "count of 70000 nodes"
    std::string expected;     ///< like "at most 37 bytes"
    bool endsReading = false; ///< whether what follows in the script is lost
    Kind kind = Kind::Damage;
    /// The way to the object, as names from the outside in with "/" between them: a class's where there is no
    /// name (yet), the roots left out.
    std::string path;
};

} // namespace helvantine
