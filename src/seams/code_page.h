#pragma once

#include <string>
#include <string_view>

namespace parvex {

/// The machine's ANSI code page. A conversion that the machine cannot carry out is an AutomationError (5).
class CodePage {
 public:
  virtual ~CodePage() = default;
  /// Bytes of a UTF-8 text; a character that the code page lacks becomes "?".
  virtual std::string ToAnsi(std::string_view text) = 0;
  /// UTF-8 text of bytes. In a code page of single bytes every byte gives a character, so that nothing is lost on the
  /// way there and back; in UTF-8, and others of several bytes, what is no character becomes U+FFFD or the like.
  virtual std::string FromAnsi(std::string_view bytes) = 0;
  /// Whether every byte is a character of its own. Where not, the second byte of a character may look like an ASCII
  /// one.
  virtual bool IsSingleByte() = 0;
};

}  // namespace parvex
