#pragma once

#include <string>

namespace parvex::cli {

/// Base64 of a file's bytes on standard output, one line feed behind it; nothing for an empty file.
void EncodeToOutput(const std::string& fileName);
/// The bytes of a file's Base64 text on standard output. The text is read as it stands, a line feed at its end
/// included.
void DecodeToOutput(const std::string& fileName);

}  // namespace parvex::cli
