#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "masking/known_names.h"
#include "masking/letters.h"
#include "masking/places.h"
#include "masking/text_view.h"

namespace parvex::masking {

/// Goes through texts and files down to the last layer: markup, ini files, registry files and rich text; archives and
/// databases; Base64; one inside the other. At first it collects what is to be masked, and changes nothing but
/// what it cannot look into; then it masks that. What it cannot look into becomes zeros.
///
/// An AutomationError (5) where that goes deeper, or is larger, than any honest case.
class Masker {
 public:
  struct Options {
    bool keepPrices = false;
  };

  Masker(KnownNames& names, const Options& options) : names_(names), options_(options) {}
  /// From now on it masks.
  void MaskWith(const Key& key);
  /// From now on it changes nothing, and notes what it finds that should have been masked.
  void Check();
  const std::set<std::u32string>& Left() const { return left_; }

  /// A text in UTF-8 that stands in such a place.
  std::string Text(std::string_view text, Place place = Place::Other);
  /// A path, or a name of a file. Its components may be separated by either slash.
  std::string Path(std::string_view path) { return Text(path, Place::Path); }
  /// The bytes of a document.
  std::string Bytes(std::string_view bytes) { return Bytes(bytes, Place::Other); }
  /// The bytes of a file or of an archive's entry of that name. A text without any form that is known is free text, of
  /// which no word stays, unless the protocol says what stands in a file of that name.
  std::string File(std::string_view name, std::string_view bytes);

  /// What `text` becomes where it is masked as a whole.
  std::u32string Masked(std::u32string_view text, Place place);

  enum class Work : std::uint8_t { Collect, Mask, Check };
  Work Now() const { return work_; }

 private:
  friend class TextWalk;

  // Nothing where it is no archive, or text.
  std::optional<std::string> Archive(std::string_view bytes);
  std::optional<std::string> EncodedText(std::string_view bytes, Place place);
  std::optional<std::string> LookedInto(std::string_view bytes, Place place);
  std::string Bytes(std::string_view bytes, Place place);
  std::string Database(std::string_view bytes);
  /// The masked bytes of Base64, in Base64; empty where it stays what it is. `isSure` is whether it can be nothing
  /// else.
  std::string Packed(std::string_view base64, bool isSure);

  KnownNames& names_;
  Options options_;
  Letters letters_{Key{}};
  Work work_ = Work::Collect;
  std::set<std::u32string> left_;
  int depth_ = 0;
  std::uint64_t unpacked_ = 0;
  std::set<std::string, std::less<>> files_;  ///< short ones, to know them again in Base64
};

}  // namespace parvex::masking
