#include "cli/page/file_text.h"

#include <algorithm>

#include "formats/text/encoded_text.h"
#include "formats/text/unicode.h"
#include "formats/text/windows_1252.h"

namespace parvex::cli {

std::optional<std::string> TextOfFile(std::string_view bytes) {
  std::optional<std::string> text = MarkedText(bytes);
  text = text ? WellFormed(*text) : IsWellFormed(bytes) ? std::string(bytes) : posix::Windows1252().FromAnsi(bytes);
  const bool isText = std::ranges::all_of(*text, [](char c) {
    return static_cast<unsigned char>(c) >= 0x20 || c == '\t' || c == '\r' || c == '\n' || c == '\f';
  });
  return isText ? text : std::nullopt;
}

}  // namespace parvex::cli
