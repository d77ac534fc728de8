#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "formats/json/bounded_json.h"

namespace parvex::standin {

using parvex::Json;

/// A file of more bytes is refused, and so is one of more values, which are thousands of units.
inline constexpr std::size_t kLongestJsonFile = 32u << 20;
inline constexpr std::size_t kMostJsonFileValues = 500'000;

/// The parsed text; an AutomationError (5) that names `fileName` and what is wrong when it is no JSON, or more than
/// ParseBoundedJson reads.
Json ParseJson(std::string_view text, std::string_view fileName);

/// The members of one object of a JSON file, taken by name. Whatever does not fit is an AutomationError (5) that names
/// the file, the member with its place in the file, what was wanted and the value that was found.
class JsonMembers {
 public:
  JsonMembers(std::string fileName, std::string place, const Json& object);

  bool Has(const std::string& key) const { return rest_.contains(key); }
  /// The member's value, null when it is not there.
  Json Take(const std::string& key);
  /// The member's value, empty when it is not there.
  std::string TakeText(const std::string& key);
  bool TakeFlag(const std::string& key, bool fallback);
  /// The member's items, none when it is not there.
  Json TakeList(const std::string& key);
  /// The members of an object, none when it is not there.
  JsonMembers TakeObject(const std::string& key);

  /// Refuses what nobody has taken: a misspelt key must not go unnoticed.
  void Finish() const;

  /// The member's place in the file, for example "units[2].stored".
  std::string PlaceOf(const std::string& key) const;
  [[noreturn]] void Refuse(const std::string& place, const std::string& wanted, const Json& value) const;

  const std::string& FileName() const { return fileName_; }

 private:
  std::string fileName_;
  std::string place_;
  Json rest_;
};

}  // namespace parvex::standin
