#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace parvex::cli {

/// Text from outside as a terminal may get it: what would control the terminal, or turn the direction of writing round,
/// appears as U+FFFD, line breaks and tabs as a blank.
std::string Printable(std::string_view text);

/// A JSON document in which such characters stand as \u00NN: the same document, but nothing that controls a terminal.
std::string EscapedJson(std::string_view json);

/// "1 tag", "2 tags"
std::string Counted(std::size_t count, const std::string& noun);

}  // namespace parvex::cli
