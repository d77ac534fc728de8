#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "masking/places.h"

namespace parvex::masking {

/// What is to be masked, as it was found in its own places, and where it stands elsewhere.
///
/// A name is looked for everywhere, letter case ignored, when it has three letters or digits and more, one of them a
/// letter, or seven digits; a description when it has eight; a price when it has a point and four digits. Nobody looks
/// for a name that is a word of the protocol: it is masked in its own places only. Around names of fewer than five
/// letters and digits, and those that are a part of a protocol's word, and numbers, nothing may stand that would make a
/// longer word of them.
class KnownNames {
 public:
  /// `text` stands in such a place. Nothing comes of one without letters and digits.
  void Add(Place place, std::u32string_view text);
  /// A word of the protocol, or what must stay for another reason.
  void AddProtocolText(std::string_view text);
  /// The same for the code of a product family; nothing comes of a text that is none.
  void AddFamily(std::string_view code);
  /// To be called when all is added, before anything is looked for.
  void Close();

  struct Found {
    std::size_t at = 0;
    std::size_t length = 0;
    bool isPrice = false;
  };
  /// Where names stand in a text, from left to right, the longest at each place.
  std::vector<Found> FindIn(std::u32string_view text) const;

  struct Name {
    std::u32string text;  ///< as it was found first
    Place place = Place::Name;
    bool isLookedFor = false;
    bool standsAlone = false;  ///< is not looked for inside longer words
  };
  const std::vector<Name>& All() const { return names_; }

 private:
  std::vector<Name> names_;
  std::set<std::u32string> known_;  // lowered, with the place in front
  std::u32string protocol_;         // lowered texts, each with a line end around it
  std::set<std::u32string> protocolWords_;
  std::unordered_map<std::uint64_t, std::vector<std::pair<std::u32string, std::size_t>>> byStart_;  // longest first
};

}  // namespace parvex::masking
