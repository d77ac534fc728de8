#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace parvex::jet {

/// A code page in which a Jet 3 file stores its texts. Used by one thread at a time.
class TextCodec {
 public:
  virtual ~TextCodec() = default;
  /// UTF-8 text of stored bytes.
  virtual std::string Decode(std::string_view bytes) = 0;
  /// Nothing when the code page lacks a character of the text.
  virtual std::optional<std::string> Encode(std::string_view utf8) = 0;
};

/// Finds a code page by its number; null when it is not known.
using CodePages = std::function<std::shared_ptr<TextCodec>(std::uint16_t number)>;

/// Knows 1252 alone, which needs no help of the platform.
std::shared_ptr<TextCodec> WesternCodePage(std::uint16_t number);

}  // namespace parvex::jet
