#pragma once

#include "seams/code_page.h"

namespace parvex::posix {

/// Windows-1252. The five bytes without a character (81, 8D, 8F, 90, 9D) stand for the control characters of the same
/// number, as on Windows, so that every byte travels there and back. A character beyond the code page becomes one "?"
/// for each of its UTF-16 units, so two for a surrogate pair; no look-alike is put in its place.
class Windows1252 : public CodePage {
 public:
  std::string ToAnsi(std::string_view text) override;
  std::string FromAnsi(std::string_view bytes) override;
  bool IsSingleByte() override { return true; }
};

}  // namespace parvex::posix
