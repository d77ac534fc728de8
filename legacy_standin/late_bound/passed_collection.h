#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "seams/automation.h"

namespace parvex::standin {

/// A keyed collection as a component was given it: one of its own process, or one behind late binding, which can be
/// asked for its Count and for an Item by number or key and cannot list its keys.
class PassedCollection {
 public:
  /// Nothing when the value is no collection: neither kind, or an object without Count.
  static std::optional<PassedCollection> From(const automation::Value& value);

  std::size_t Count() const;
  /// The item at 1 to Count().
  automation::Value At(std::size_t number) const;
  /// The key of that item; nothing where keys cannot be listed.
  std::optional<std::string> KeyAt(std::size_t number) const;
  /// The item of a key, letter case ignored; nothing when there is none.
  std::optional<automation::Value> Find(std::string_view key) const;

 private:
  explicit PassedCollection(automation::Value collection) : collection_(std::move(collection)) {}
  automation::Value Item(const automation::Value& which) const;

  automation::Value collection_;
};

}  // namespace parvex::standin
