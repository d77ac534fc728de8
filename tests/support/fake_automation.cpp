#include "tests/support/fake_automation.h"

#include <algorithm>
#include <utility>

#include "seams/automation_error.h"

namespace parvex::test {
namespace {

using automation::Argument;
using automation::CollectionRef;
using automation::ObjectRef;
using automation::Value;

constexpr std::uint32_t kNoSuchMember = 0x800A0000u + 438u;

std::string ArgumentLine(const Argument& argument) {
  return (argument.byReference ? "&" : "") + ToLine(argument.value);
}

std::string CollectionLine(const automation::KeyedItems& items) {
  std::string line;
  for (const auto& [key, item] : items) {
    line += (line.empty() ? "" : ", ") + key + ": " + ArgumentLine(item);
  }
  return "{" + line + "}";
}

std::string CallLine(const std::string& path, std::span<const Argument> arguments) {
  std::string line;
  for (const Argument& argument : arguments) {
    line += (line.empty() ? "" : ", ") + ArgumentLine(argument);
  }
  return "call " + path + "(" + line + ")";
}

}  // namespace

std::string ToLine(const Value& value) {
  struct Visitor {
    std::string operator()(std::monostate) const { return "Empty"; }
    std::string operator()(bool flag) const { return flag ? "True" : "False"; }
    std::string operator()(std::int32_t number) const { return std::to_string(number); }
    std::string operator()(double number) const { return std::to_string(number); }
    std::string operator()(const std::string& text) const { return "\"" + text + "\""; }
    std::string operator()(const ObjectRef& object) const { return object ? object->Name() : "Nothing"; }
    std::string operator()(const CollectionRef& items) const { return items ? CollectionLine(*items) : "Nothing"; }
  };
  return std::visit(Visitor(), value);
}

class FakeAutomation::ScriptedObject : public automation::Object {
 public:
  ScriptedObject(FakeAutomation& owner, std::string name) : owner_(owner), name_(std::move(name)) { ++owner_.living; }
  ~ScriptedObject() override {
    --owner_.living;
    owner_.lines.push_back("release " + name_);
  }

  std::string Name() const override { return name_; }

  Value Get(std::string_view member) override {
    const std::string path = PathOf(member);
    return owner_.Access("get " + path, path, {}, true);
  }

  void Put(std::string_view member, const Value& value) override {
    const std::string path = PathOf(member);
    Argument argument{value};
    owner_.Access("put " + path + " = " + ToLine(value), path, {&argument, 1}, false);
  }

  Value Call(std::string_view member, std::span<Argument> arguments) override {
    const std::string path = PathOf(member);
    return owner_.Access(CallLine(path, arguments), path, arguments, false);
  }

 private:
  std::string PathOf(std::string_view member) const { return name_ + "." + std::string(member); }

  FakeAutomation& owner_;
  const std::string name_;
};

void FakeAutomation::Offer(const std::string& programmaticId) { offered_.push_back(programmaticId); }

void FakeAutomation::Answer(const std::string& path, std::vector<Value> values) {
  Do(path, [values = std::move(values), next = std::size_t{0}](std::span<Argument>) mutable {
    return values.at(std::min(next++, values.size() - 1));
  });
}

void FakeAutomation::AnswerObject(const std::string& path) {
  Do(path, [this, path](std::span<Argument>) { return Value(NewObject(path)); });
}

void FakeAutomation::Do(const std::string& path, Action action) { actions_[path] = std::move(action); }

ObjectRef FakeAutomation::Create(std::string_view programmaticId) {
  const std::string name(programmaticId);
  Access("create " + name, name, {}, false);
  if (std::ranges::find(offered_, name) == offered_.end()) {
    lines.back() += " failed";
    throw MakeRuntimeError(RuntimeError::CannotCreateObject, "no component is registered as \"" + name + "\"");
  }
  return NewObject(name);
}

ObjectRef FakeAutomation::NewObject(const std::string& name) { return std::make_shared<ScriptedObject>(*this, name); }

Value FakeAutomation::Access(const std::string& line, const std::string& path, std::span<Argument> arguments,
                             bool needsAnswer) {
  if (onAccess) {
    onAccess(line);
  }
  const std::size_t at = lines.size();  // an action may add lines of its own
  lines.push_back(line);
  try {
    Value value = Perform(path, arguments, needsAnswer);
    lines[at] += std::holds_alternative<std::monostate>(value) ? "" : " -> " + ToLine(value);
    return value;
  } catch (const AutomationError&) {
    lines[at] += " failed";
    throw;
  }
}

Value FakeAutomation::Perform(const std::string& path, std::span<Argument> arguments, bool needsAnswer) {
  if (++accesses_ == failAtAccess || path == failAt) {
    throw AutomationError(failNumber, path, path + ": told to fail");
  }
  const auto action = actions_.find(path);
  if (action != actions_.end()) {
    return action->second(arguments);
  }
  if (needsAnswer) {
    throw AutomationError(kNoSuchMember, path, path + ": the object has no such member");
  }
  return {};
}

}  // namespace parvex::test
