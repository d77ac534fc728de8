#pragma once

#include <iconv.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace parvex::xml {

/// The encoding that a document's declaration names, as written; empty without declaration or name. `text` is UTF-8 or
/// any other encoding in which ASCII characters are single bytes.
std::string_view DeclaredEncoding(std::string_view text);

struct Decoded {
  std::string text;      ///< UTF-8 without byte order mark
  std::string encoding;  ///< as declared
  std::string error;     ///< why the bytes could not be decoded; empty when they could
};

/// The text of a file: by its byte order mark, else by its declaration, else UTF-8. Bytes taken for UTF-8 are not
/// checked.
Decoded Decode(std::string_view bytes);

struct CloseConverter {
  void operator()(void* converter) const { iconv_close(converter); }
};
/// An iconv_t.
using Converter = std::unique_ptr<void, CloseConverter>;

/// An encoding that documents are written in.
class Encoding {
 public:
  /// Nothing for a name that this system does not know, and for encodings in which ASCII characters are not single
  /// bytes (UTF-16 excepted): a declaration in them could not be read back.
  static std::unique_ptr<Encoding> Named(std::string_view name);

  /// Whether every character can be written.
  bool IsUnicode() const { return unicode_; }
  bool Has(char32_t character);
  /// UTF-16 with byte order mark, others without; nothing when the text holds a character that the encoding lacks.
  std::optional<std::string> Encode(std::string_view text);

 private:
  Encoding() = default;
  Converter converter_;  // null: UTF-8, the text as it is
  std::string mark_;
  bool unicode_ = false;
  std::unordered_map<char32_t, bool> known_;
};

}  // namespace parvex::xml
