#include "legacy_standin/builder/builder.h"

#include <memory>

#include "legacy_standin/builder/builder_workflow.h"
#include "legacy_standin/late_bound/late_bound_members.h"
#include "legacy_standin/late_bound/passed_collection.h"
#include "protocol/legacy_names.h"
#include "seams/member_errors.h"

namespace parvex::standin {
namespace {

using automation::Argument;
using automation::Object;
using automation::ObjectRef;
using automation::Value;

static_assert(legacy::kBuilderClass == kBuilderClass);

/// An object of the builder: it fails where it is told to, and has no members but those of its class.
class BuilderPart : public Object {
 public:
  BuilderPart(const Application& application, std::string name) : application_(application), name_(std::move(name)) {}
  std::string Name() const override { return name_; }
  Value Get(std::string_view member) override { RefuseMember(*this, member); }
  void Put(std::string_view member, const Value&) override { RefuseMember(*this, member); }
  Value Call(std::string_view member, std::span<Argument>) override { RefuseMember(*this, member); }

 protected:
  void FailWhereTold(std::string_view member) const {
    standin::FailWhereTold(application_.settings.builder.failAt, *this, member);
  }
  const Application& application_;

 private:
  const std::string name_;
};

/// What the workflow gives back: whether its user cancelled.
class WorkflowResult : public BuilderPart {
 public:
  using BuilderPart::BuilderPart;
  Value Get(std::string_view member) override {
    if (member != "Cancelled") {
      RefuseMember(*this, member);
    }
    return application_.settings.builder.cancelled;
  }
};

class ServiceBroker : public BuilderPart {
 public:
  using BuilderPart::BuilderPart;

  Value Call(std::string_view member, std::span<Argument> arguments) override {
    FailWhereTold(member);
    if (member != legacy::kBrokerCall) {
      RefuseMember(*this, member);
    }
    RequireCount(*this, member, arguments, 4);
    CheckText(arguments, 1, "Workflow Service");
    CheckText(arguments, 2, "runBuilder");
    CheckText(arguments, 4, "QuoteBuilder");
    const std::string commandLine = CommandLine(arguments[2]);
    if (!application_.settings.builder.cancelled) {
      RunBuilderWorkflow(application_, commandLine);
    }
    return std::make_shared<WorkflowResult>(application_, Name() + "." + std::string(member));
  }

 private:
  void CheckText(std::span<const Argument> arguments, std::size_t number, const std::string& wanted) const {
    const auto* text = std::get_if<std::string>(&arguments[number - 1].value);
    if (text == nullptr) {
      throw automation::WrongArgumentType(Name(), legacy::kBrokerCall, number);
    }
    if (*text != wanted) {
      RefuseValue(*this, legacy::kBrokerCall, "\"" + wanted + "\" is wanted and not another text");
    }
  }

  /// The collection holds Consumer, Builder and Command Line, in this order.
  std::string CommandLine(const Argument& argument) const {
    const std::optional<PassedCollection> items = PassedCollection::From(argument.value);
    if (!items) {
      throw automation::WrongArgumentType(Name(), legacy::kBrokerCall, 3);
    }
    if (items->Count() != 3) {
      RefuseValue(*this, legacy::kBrokerCall, "the collection does not have three items");
    }
    constexpr const char* kKeys[] = {"Consumer", "Builder", "Command Line"};
    for (std::size_t i = 0; i < std::size(kKeys); ++i) {
      if (!items->Find(kKeys[i]) || items->KeyAt(i + 1).value_or(kKeys[i]) != kKeys[i]) {
        RefuseValue(*this, legacy::kBrokerCall, "item " + std::to_string(i + 1) + " is not \"" + kKeys[i] + "\"");
      }
    }
    const Value last = items->At(3);
    const auto* text = std::get_if<std::string>(&last);
    if (text == nullptr) {
      RefuseValue(*this, legacy::kBrokerCall, "item 3 is not the text of \"Command Line\"");
    }
    return *text;
  }
};

class Framework : public BuilderPart {
 public:
  using BuilderPart::BuilderPart;

  Value Get(std::string_view member) override {
    FailWhereTold(member);
    if (member != "ServiceBroker") {
      RefuseMember(*this, member);
    }
    return std::make_shared<ServiceBroker>(application_, Name() + ".ServiceBroker");
  }
};

}  // namespace

Value Builder::Get(std::string_view member) {
  FailWhereTold(application_.settings.builder.failAt, *this, member);
  NeedRunning(member);
  if (member == "standalone") {
    return standalone_;
  }
  if (member == "UILoaded") {
    return LookWhetherLoaded();
  }
  if (member != "Framework") {
    RefuseMember(*this, member);
  }
  if (!isShown_) {
    RefuseValue(*this, member, "there is none before View was called");
  }
  return std::make_shared<Framework>(application_, Name() + ".Framework");
}

void Builder::Put(std::string_view member, const Value& value) {
  FailWhereTold(application_.settings.builder.failAt, *this, member);
  NeedRunning(member);
  if (member != "standalone") {
    RefuseMember(*this, member);
  }
  const auto* flag = std::get_if<bool>(&value);
  if (flag == nullptr) {
    throw automation::WrongArgumentType(Name(), member, 1);
  }
  standalone_ = *flag;
}

Value Builder::Call(std::string_view member, std::span<Argument> arguments) {
  FailWhereTold(application_.settings.builder.failAt, *this, member);
  NeedRunning(member);
  if (member == "View") {
    View(arguments);
  } else if (member == "Shutdown") {
    RequireCount(*this, member, arguments, 0);
    isShutDown_ = true;
  } else {
    RefuseMember(*this, member);
  }
  return {};
}

void Builder::View(std::span<const Argument> arguments) {
  RequireCount(*this, "View", arguments, 2);
  if (!std::holds_alternative<bool>(arguments[0].value)) {
    throw automation::WrongArgumentType(Name(), "View", 1);
  }
  if (!std::holds_alternative<ObjectRef>(arguments[1].value)) {
    throw automation::WrongArgumentType(Name(), "View", 2);
  }
  isShown_ = true;
  looks_ = 0;
}

bool Builder::LookWhetherLoaded() {
  if (!isShown_ || looks_ >= application_.settings.builder.polls) {
    return isShown_;
  }
  ++looks_;
  return false;
}

void Builder::NeedRunning(std::string_view member) const {
  if (isShutDown_) {
    RefuseValue(*this, member, "the builder was shut down");
  }
}

}  // namespace parvex::standin
