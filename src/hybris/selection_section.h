#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "hybris/counter16.h"
#include "seams/platform.h"

namespace parvex {

/// One section of the quote builder's output file QBOutput.ini, which says what was selected. A section is named by a
/// word followed directly by the tag's number (PartNumber1, Accessory1). In it, a line of a list has keys of a fixed
/// text followed directly by the line's number (Description:1); numbers start at 1, and the first one without its key
/// ends the list, so that what stands behind a gap is deliberately never read.
///
/// A value has at most 254 characters. A missing file or section reads as one without keys. The file is looked at once,
/// when the section is opened.
class SelectionSection {
 public:
  SelectionSection(const Platform& platform, std::string_view qbOutputFile, std::string_view word,
                   std::int32_t tagIndex);

  std::string Text(std::string_view key, std::string_view fallback = "");
  std::int32_t Integer(std::string_view key, std::int32_t fallback);

  /// The value of the key `prefix` and `number`, empty when there is none.
  std::string Numbered(std::string_view prefix, std::int32_t number);

  /// Walks a list: calls `item` with the number and the value of each `prefix` key. `counted` names the items for the
  /// overflow error (6), which the 32768th one raises; a list of 32767 is complete, so looking for one more is no
  /// error.
  template <class Item>
  void ForEach(std::string_view prefix, const char* counted, Item item) {
    Counter16 count(counted);
    for (;;) {
      std::string value = Numbered(prefix, count.Value() + 1);
      if (value.empty()) {
        return;
      }
      item(count.Advance(), std::move(value));
    }
  }

 private:
  std::unique_ptr<ProfileSection> section_;
  std::string key_;  // kept for its memory: a unit with thousands of lines builds a key for each of its values
};

}  // namespace parvex
