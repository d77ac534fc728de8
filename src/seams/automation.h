#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace parvex::automation {

// Late-bound objects: created by programmatic identifier, driven by member name.

class Object;
using ObjectRef = std::shared_ptr<Object>;  // null is the empty reference

struct Argument;
/// An ordered collection of items with string keys.
using KeyedItems = std::vector<std::pair<std::string, Argument>>;
using CollectionRef = std::shared_ptr<KeyedItems>;

using Value = std::variant<std::monostate, bool, std::int32_t, double, std::string, ObjectRef, CollectionRef>;

struct Argument {
  Value value;
  /// Passed by reference: the object may replace the value.
  bool byReference = false;
};

/// Every failure (unknown member, refused value) is an AutomationError that names the object and the member. An error
/// that the object raises itself has the description that the object gives it.
class Object {
 public:
  virtual ~Object() = default;
  /// How the journal calls the object: its programmatic identifier, or the parent's name, a dot and the member.
  virtual std::string Name() const = 0;
  virtual Value Get(std::string_view member) = 0;
  virtual void Put(std::string_view member, const Value& value) = 0;
  virtual Value Call(std::string_view member, std::span<Argument> arguments) = 0;
};

class Automation {
 public:
  virtual ~Automation() = default;
  /// A new object; "object can't be created" (429) when nothing of that programmatic identifier is registered.
  virtual ObjectRef Create(std::string_view programmaticId) = 0;
};

}  // namespace parvex::automation
