#include "legacy_standin/late_bound/passed_collection.h"

#include "formats/text/text.h"
#include "seams/automation_error.h"

namespace parvex::standin {

using automation::Argument;
using automation::CollectionRef;
using automation::ObjectRef;
using automation::Value;

std::optional<PassedCollection> PassedCollection::From(const Value& value) {
  if (const auto* items = std::get_if<CollectionRef>(&value); items != nullptr && *items != nullptr) {
    return PassedCollection(value);
  }
  if (const auto* object = std::get_if<ObjectRef>(&value); object != nullptr && *object != nullptr) {
    try {
      if (std::holds_alternative<std::int32_t>((*object)->Get("Count"))) {
        return PassedCollection(value);
      }
    } catch (const AutomationError&) {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

std::size_t PassedCollection::Count() const {
  if (const auto* items = std::get_if<CollectionRef>(&collection_)) {
    return (*items)->size();
  }
  return static_cast<std::size_t>(std::get<std::int32_t>(std::get<ObjectRef>(collection_)->Get("Count")));
}

Value PassedCollection::At(std::size_t number) const {
  if (const auto* items = std::get_if<CollectionRef>(&collection_)) {
    return (*items)->at(number - 1).second.value;
  }
  return Item(static_cast<std::int32_t>(number));
}

std::optional<std::string> PassedCollection::KeyAt(std::size_t number) const {
  const auto* items = std::get_if<CollectionRef>(&collection_);
  return items == nullptr ? std::nullopt : std::optional((*items)->at(number - 1).first);
}

std::optional<Value> PassedCollection::Find(std::string_view key) const {
  if (const auto* items = std::get_if<CollectionRef>(&collection_)) {
    for (const auto& [name, item] : **items) {
      if (EqualIgnoringCase(name, key)) {
        return item.value;
      }
    }
    return std::nullopt;
  }
  try {
    return Item(std::string(key));
  } catch (const AutomationError&) {
    return std::nullopt;  // a collection has no other answer to a key it lacks
  }
}

Value PassedCollection::Item(const Value& which) const {
  Argument argument{which, false};
  return std::get<ObjectRef>(collection_)->Call("Item", {&argument, 1});
}

}  // namespace parvex::standin
