// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace helvantine::tool
{

/// Keys stay in the order in which they are written here.
using Json = nlohmann::ordered_json;

/// Indented. Names come from documents: bytes that are no UTF-8 become U+FFFD.
inline std::string toText(const Json& json)
{
    return json.dump(2, ' ', false, Json::error_handler_t::replace);
}

/// A text from a document, fit for a terminal: control characters become question marks.
inline std::string printable(std::string text)
{
    for (char& character : text) {
        if (static_cast<unsigned char>(character) < ' ' || character == '\x7f')
            character = '?';
    }
    return text;
}

} // namespace helvantine::tool
