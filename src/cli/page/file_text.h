#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace parvex::cli {

/// The text that a file's bytes are, well-formed: as a byte order mark says, else UTF-8, else Windows-1252. Nothing
/// when it holds characters that no text has.
std::optional<std::string> TextOfFile(std::string_view bytes);

}  // namespace parvex::cli
