#include "replay/answered_automation.h"

#include <cstdint>
#include <limits>
#include <utility>
#include <variant>
#include <vector>

#include "replay/unserved.h"

namespace parvex::replay {
namespace {

using automation::Argument;
using automation::CollectionRef;
using automation::KeyedItems;
using automation::Object;
using automation::ObjectRef;
using automation::Value;

Json LineOf(const std::string& object, const char* op, std::string_view member = {}, Json args = Json::array()) {
  return {{"kind", "automation"},
          {"object", object},
          {"op", op},
          {"member", std::string(member)},
          {"args", std::move(args)}};
}

// The value that a line of the journal shows.
class Values {
 public:
  Values(std::shared_ptr<Script> script, std::span<const Argument> known) : script_(std::move(script)) {
    for (const Argument& argument : known) {
      Know(argument.value);
    }
  }

  Value From(const Json& shown) const {
    if (shown.is_boolean()) {
      return shown.get<bool>();
    }
    if (shown.is_number_integer()) {
      const auto number = shown.get<std::int64_t>();
      return number >= std::numeric_limits<std::int32_t>::min() && number <= std::numeric_limits<std::int32_t>::max()
                 ? Value(static_cast<std::int32_t>(number))
                 : Value(static_cast<double>(number));
    }
    if (shown.is_number()) {
      return shown.get<double>();
    }
    if (shown.is_string()) {
      return shown.get<std::string>();
    }
    if (shown.is_object()) {
      return ObjectOf(TextAt(shown, "object"));
    }
    return shown.is_array() ? Value(CollectionOf(shown, std::make_shared<KeyedItems>())) : Value();
  }

  // What an argument holds after a call: a collection stays the one that it was, with other items.
  Value Changed(const Json& shown, const Value& before) const {
    const auto* collection = std::get_if<CollectionRef>(&before);
    return shown.is_array() && collection != nullptr && *collection ? Value(CollectionOf(shown, *collection))
                                                                    : From(shown);
  }

 private:
  void Know(const Value& value) {
    if (const auto* object = std::get_if<ObjectRef>(&value); object != nullptr && *object) {
      known_[(*object)->Name()] = *object;
    } else if (const auto* items = std::get_if<CollectionRef>(&value); items != nullptr && *items) {
      for (const auto& [key, item] : **items) {
        Know(item.value);
      }
    }
  }

  ObjectRef ObjectOf(const std::string& name) const {
    const auto known = known_.find(name);
    return known != known_.end() ? known->second : AnsweredObject(name, script_);
  }

  CollectionRef CollectionOf(const Json& shown, const CollectionRef& items) const {
    items->resize(shown.size());
    for (std::size_t i = 0; i < shown.size(); ++i) {
      const Json& pair = shown[i];
      auto& [key, item] = (*items)[i];
      if (pair.is_array() && pair.size() == 2 && pair[0].is_string()) {
        key = pair[0].get<std::string>();
        item.value = Changed(pair[1], item.value);
      }
    }
    return items;
  }

  std::shared_ptr<Script> script_;
  std::map<std::string, ObjectRef> known_;  // objects that the caller passed
};

class Answered : public Object {
 public:
  Answered(std::string name, std::shared_ptr<Script> script) : name_(std::move(name)), script_(std::move(script)) {}

  std::string Name() const override { return name_; }

  Value Get(std::string_view member) override {
    return script_->Serve(LineOf(name_, "get", member),
                          [&](const Step* step) { return Values(script_, {}).From(Member(Answer(step), "result")); });
  }

  void Put(std::string_view member, const Value& value) override {
    script_->Serve(LineOf(name_, "put", member, Json::array({journal::ValueJson(value)})), [&](const Step* step) {
      Answer(step);
      return true;
    });
  }

  Value Call(std::string_view member, std::span<Argument> arguments) override {
    Json args = Json::array();
    for (const Argument& argument : arguments) {
      args.push_back(journal::ValueJson(argument.value));
    }
    return script_->Serve(LineOf(name_, "call", member, std::move(args)), [&](const Step* step) {
      const Json& answer = Answer(step);
      const Values values(script_, arguments);
      for (const Json& change : Member(answer, "changed")) {
        if (change.is_array() && change.size() == 2 && change[0].is_number_unsigned() &&
            change[0].get<std::uint64_t>() < arguments.size()) {
          Value& value = arguments[change[0].get<std::size_t>()].value;
          value = values.Changed(change[1], value);
        }
      }
      return values.From(Member(answer, "result"));
    });
  }

 private:
  const Json& Answer(const Step* step) const {
    if (step == nullptr) {
      throw NotInRecord(name_);
    }
    return step->answered;
  }

  std::string name_;
  std::shared_ptr<Script> script_;
};

}  // namespace

ObjectRef AnsweredObject(std::string name, std::shared_ptr<Script> script) {
  return std::make_shared<Answered>(std::move(name), std::move(script));
}

ObjectRef AnsweredAutomation::Create(std::string_view programmaticId) {
  const std::string id(programmaticId);
  return script_->Serve(LineOf(id, "create"), [&](const Step* step) -> ObjectRef {
    if (step == nullptr) {
      throw NotInRecord(id);
    }
    const std::string name = TextAt(step->answered, "object");
    return AnsweredObject(name.empty() ? id : name, script_);
  });
}

}  // namespace parvex::replay
