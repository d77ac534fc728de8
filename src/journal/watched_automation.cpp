#include "journal/watched_automation.h"

#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace parvex::journal {
namespace {

using automation::Argument;
using automation::CollectionRef;
using automation::KeyedItems;
using automation::Object;
using automation::ObjectRef;
using automation::Value;

// Every automation line has all keys, whatever the operation, so that a reader need not ask for each.
Json AutomationLine(const std::string& object, const char* op, std::string_view member = {},
                    Json args = Json::array()) {
  return {{"kind", "automation"},          {"object", object},        {"op", op},
          {"member", std::string(member)}, {"args", std::move(args)}, {"result", nullptr}};
}

Json ArgsJson(std::span<const Argument> arguments) {
  Json args = Json::array();
  for (const Argument& argument : arguments) {
    args.push_back(ValueJson(argument.value));
  }
  return args;
}

class WatchedObject : public Object {
 public:
  WatchedObject(ObjectRef outside, std::string name, std::shared_ptr<CrossingLog> log)
      : outside_(std::move(outside)), name_(std::move(name)), log_(std::move(log)) {}
  WatchedObject(const WatchedObject&) = delete;
  WatchedObject& operator=(const WatchedObject&) = delete;
  ~WatchedObject() override { log_->Note(AutomationLine(name_, "release")); }

  std::string Name() const override { return name_; }
  Value Get(std::string_view member) override;
  void Put(std::string_view member, const Value& value) override;
  Value Call(std::string_view member, std::span<Argument> arguments) override;

  const ObjectRef& Outside() const { return outside_; }

 private:
  Value Inside(Value value, std::string_view member) const;
  Value InsideAgain(const Value& after, const Value& before, std::string_view member) const;

  ObjectRef outside_;
  std::string name_;
  std::shared_ptr<CrossingLog> log_;
};

// What the outside gets for a value: its own object for each of our stand-ins, at any depth.
Value Outside(const Value& value) {
  if (const auto* object = std::get_if<ObjectRef>(&value)) {
    const auto standIn = std::dynamic_pointer_cast<WatchedObject>(*object);
    return standIn ? standIn->Outside() : *object;
  }
  const auto* collection = std::get_if<CollectionRef>(&value);
  if (collection == nullptr || !*collection) {
    return value;
  }
  auto items = std::make_shared<KeyedItems>(**collection);
  for (auto& [key, item] : *items) {
    item.value = Outside(item.value);
  }
  return items;
}

Value WatchedObject::Get(std::string_view member) {
  return Watch(*log_, AutomationLine(name_, "get", member), [&](Json& line) {
    Value value = Inside(outside_->Get(member), member);
    line["result"] = ValueJson(value);
    return value;
  });
}

void WatchedObject::Put(std::string_view member, const Value& value) {
  Watch(*log_, AutomationLine(name_, "put", member, Json::array({ValueJson(value)})), [&](Json&) {
    outside_->Put(member, journal::Outside(value));
    return Value();
  });
}

Value WatchedObject::Call(std::string_view member, std::span<Argument> arguments) {
  return Watch(*log_, AutomationLine(name_, "call", member, ArgsJson(arguments)), [&](Json& line) {
    std::vector<Argument> passed(arguments.begin(), arguments.end());
    for (Argument& argument : passed) {
      argument.value = journal::Outside(argument.value);
    }
    Value result = Inside(outside_->Call(member, passed), member);
    Json changed = Json::array();
    for (std::size_t i = 0; i < passed.size(); ++i) {
      arguments[i].value = InsideAgain(passed[i].value, arguments[i].value, member);
      if (Json after = ValueJson(arguments[i].value); after != line["args"][i]) {
        changed.push_back(Json::array({i, std::move(after)}));
      }
    }
    if (!changed.empty()) {
      line["changed"] = std::move(changed);
    }
    line["result"] = ValueJson(result);
    return result;
  });
}

// A value that came from the outside through `member`: an object gets a stand-in with a name of its own.
Value WatchedObject::Inside(Value value, std::string_view member) const {
  const auto* object = std::get_if<ObjectRef>(&value);
  if (object == nullptr || !*object) {
    return value;
  }
  return std::make_shared<WatchedObject>(*object, name_ + "." + std::string(member), log_);
}

// What an argument holds after a call: what it held before as far as the outside left it alone, else the outside's
// value.
Value WatchedObject::InsideAgain(const Value& after, const Value& before, std::string_view member) const {
  const auto* collection = std::get_if<CollectionRef>(&after);
  if (collection == nullptr || !*collection) {
    return after == journal::Outside(before) ? before : Inside(after, member);
  }
  const auto* known = std::get_if<CollectionRef>(&before);
  const CollectionRef items = known != nullptr && *known ? *known : std::make_shared<KeyedItems>();
  items->resize((*collection)->size());
  for (std::size_t i = 0; i < items->size(); ++i) {
    auto& [key, item] = (*items)[i];
    key = (**collection)[i].first;
    item.value = InsideAgain((**collection)[i].second.value, item.value, member);
  }
  return items;
}

}  // namespace

automation::ObjectRef WatchObject(automation::ObjectRef object, std::string name, std::shared_ptr<CrossingLog> log) {
  if (object == nullptr || std::dynamic_pointer_cast<WatchedObject>(object)) {
    return object;
  }
  return std::make_shared<WatchedObject>(std::move(object), std::move(name), std::move(log));
}

automation::ObjectRef WatchedAutomation::Create(std::string_view programmaticId) {
  const std::string id(programmaticId);
  return Watch(*log_, AutomationLine(id, "create"), [&](Json& line) -> ObjectRef {
    ObjectRef object = outside_.Create(programmaticId);
    const std::size_t count = ++created_[id];
    const std::string name = count == 1 ? id : id + "#" + std::to_string(count);
    line["object"] = name;
    return std::make_shared<WatchedObject>(std::move(object), name, log_);
  });
}

}  // namespace parvex::journal
