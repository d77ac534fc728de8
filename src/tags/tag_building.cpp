#include "tags/tag_building.h"

#include <chrono>
#include <string>
#include <string_view>
#include <utility>

#include "legacy_env/ui_settings.h"
#include "protocol/command_document.h"
#include "protocol/legacy_names.h"
#include "protocol/reply_envelope.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

using automation::Argument;
using automation::ObjectRef;
using automation::Value;
using std::chrono_literals::operator""ms;

constexpr auto kPollPause = 200ms;

// What the builder's tool bar and tree view are set to before and after a tag is configured.
constexpr std::string_view kShowNothing = "0";
constexpr std::string_view kShowAll = "-1";

/// The builder of one command. The command holds it for itself, since the host's own messages run while it waits;
/// no reference is left behind it, however the command ends.
class HeldBuilder {
 public:
  explicit HeldBuilder(LegacyLink& link) : link_(link) {}
  ~HeldBuilder() { LetGo(); }
  HeldBuilder(const HeldBuilder&) = delete;
  HeldBuilder& operator=(const HeldBuilder&) = delete;

  void Open(bool existingTags) {
    if (link_.builder == nullptr) {
      link_.builder = link_.platform.automation->Create(legacy::kBuilderClass);
      link_.builder->Put("standalone", false);
    }
    builder_ = link_.builder;
    Argument arguments[] = {{existingTags}, {ObjectRef()}};
    builder_->Call("View", arguments);
  }

  void LetGo() {
    link_.builder.reset();
    builder_.reset();
  }

  const ObjectRef& operator*() const { return builder_; }

 private:
  LegacyLink& link_;
  ObjectRef builder_;
};

void LetGoOfEarlierObjects(LegacyLink& link) {
  link.reportServer.reset();
  link.platform.messagePump->RunPending();
  link.builder.reset();
  link.platform.messagePump->Sleep(100ms);
  link.platform.messagePump->RunPending();
}

/// Compared with false as the legacy runtime compares: nothing and zero are false.
bool IsLoaded(const ObjectRef& builder) {
  const Value loaded = builder->Get("UILoaded");
  if (const auto* flag = std::get_if<bool>(&loaded)) {
    return *flag;
  }
  if (const auto* number = std::get_if<std::int32_t>(&loaded)) {
    return *number != 0;
  }
  if (std::holds_alternative<std::monostate>(loaded)) {
    return false;
  }
  throw MakeRuntimeError(RuntimeError::TypeMismatch, builder->Name() + ".UILoaded is neither true nor false");
}

void WaitUntilLoaded(const Platform& platform, const ObjectRef& builder) {
  while (!IsLoaded(builder)) {
    platform.messagePump->RunPending();
    platform.messagePump->Sleep(kPollPause);
  }
}

ObjectRef ObjectMember(const ObjectRef& parent, std::string_view member) {
  Value value = parent->Get(member);
  const auto* object = std::get_if<ObjectRef>(&value);
  if (object == nullptr || *object == nullptr) {
    throw MakeRuntimeError(RuntimeError::ObjectNotSet, parent->Name() + "." + std::string(member) + " is no object");
  }
  return *object;
}

/// Gives what the workflow gives back. Nobody looks at it; it is held until the reply is made.
Value RunWorkflow(const LegacyLink& link, const ObjectRef& builder, std::string commandLine) {
  auto named = std::make_shared<automation::KeyedItems>();
  named->emplace_back("Consumer", Argument{link.consumer});
  named->emplace_back("Builder", Argument{builder, true});
  named->emplace_back("Command Line", Argument{std::move(commandLine)});
  const ObjectRef broker = ObjectMember(ObjectMember(builder, "Framework"), "ServiceBroker");
  Argument arguments[] = {{std::string("Workflow Service")},
                          {std::string("runBuilder")},
                          {automation::CollectionRef(named)},
                          {std::string("QuoteBuilder")}};
  return broker->Call(legacy::kBrokerCall, arguments);
}

std::string ConfigureCommandLine(const xml::Document& command) {
  std::string line = "\\\\\\" + GetParamFromCmdDoc(command, "PDSG");
  for (const char* parameter : {"tagName", "tagID", "projectName", "projectID"}) {
    line += "\\" + GetParamFromCmdDoc(command, parameter);
  }
  return line;
}

}  // namespace

xml::Document NewTag(LegacyLink& link, const xml::Document& command) {
  LetGoOfEarlierObjects(link);
  HeldBuilder builder(link);
  builder.Open(false);
  WaitUntilLoaded(link.platform, *builder);
  // partNumber is part of the command too, and takes no part in the call: deliberate, the builder asks its user for it.
  const Value given = RunWorkflow(
      link, *builder, "\\\\" + GetParamFromCmdDoc(command, "PDSG") + "\\" + GetParamFromCmdDoc(command, "projectName"));
  builder.LetGo();
  return MakeReplyEnvelope();
}

xml::Document ConfigureTag(LegacyLink& link, const xml::Document& command) {
  LetGoOfEarlierObjects(link);
  HeldBuilder builder(link);
  setUIValue(link.platform, kShowNothing);
  builder.Open(true);
  try {
    WaitUntilLoaded(link.platform, *builder);
    const Value given = RunWorkflow(link, *builder, ConfigureCommandLine(command));
    WaitUntilLoaded(link.platform, *builder);
    link.platform.messagePump->Sleep(200ms);
    setUIValue(link.platform, kShowAll);
    builder.LetGo();
    return MakeReplyEnvelope();
  } catch (const AutomationError&) {
    return MakeFailedReply();
  }
}

xml::Document RebuildAllTags(LegacyLink& link, const xml::Document& command) {
  LetGoOfEarlierObjects(link);
  HeldBuilder builder(link);
  builder.Open(true);
  WaitUntilLoaded(link.platform, *builder);
  const Value given = RunWorkflow(link, *builder, "\\\\:" + GetParamFromCmdDoc(command, "projectName"));
  setUIValue(link.platform, kShowAll);
  (*builder)->Call("Shutdown", {});
  return MakeReplyEnvelope();
}

}  // namespace parvex
