#pragma once

#include <string>
#include <string_view>

namespace parvex {

/// The machine's ANSI code page.
class CodePage {
 public:
  virtual ~CodePage() = default;
  /// Bytes of a UTF-8 text; a character that the code page lacks becomes "?".
  virtual std::string ToAnsi(std::string_view text) = 0;
  /// UTF-8 text of bytes; every byte gives a character, so that nothing is lost on the way there and back.
  virtual std::string FromAnsi(std::string_view bytes) = 0;
};

}  // namespace parvex
