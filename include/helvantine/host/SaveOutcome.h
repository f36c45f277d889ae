// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace helvantine
{

/// How a save of a document went, for a host that shows or judges it. The report says the same in words.
struct SaveOutcome
{
    std::string file; ///< path that the document was to be saved to; empty as long as there was no save
    bool saved = false;
    std::string reason; ///< why it isn't saved, and the file that was there still is; empty if it is
    std::uint64_t missingBytes = 0; ///< about the room that the save lacked; 0 if that wasn't the reason
    std::vector<std::string> missingFiles; ///< of resources: not found, and so not in the saved document
};

} // namespace helvantine
