#pragma once

#include <span>
#include <string>
#include <string_view>

#include "legacy_standin/installation/application.h"
#include "seams/automation.h"

namespace parvex::standin {

inline constexpr const char* kBuilderClass = "KDQU470.CKDBuilder";

/// The substitute's builder. It has no window; its user interface counts as loaded after a few looks at UILoaded, once
/// View was called. Its Framework's ServiceBroker runs the quote builder's workflow, which makes, changes or rebuilds
/// tags in a project as the command line says (docs/standin.md).
class Builder : public automation::Object {
 public:
  /// The application outlives the builder and what it gives.
  explicit Builder(const Application& application) : application_(application) {}

  std::string Name() const override { return kBuilderClass; }
  automation::Value Get(std::string_view member) override;
  void Put(std::string_view member, const automation::Value& value) override;
  automation::Value Call(std::string_view member, std::span<automation::Argument> arguments) override;

 private:
  void View(std::span<const automation::Argument> arguments);
  bool LookWhetherLoaded();
  void NeedRunning(std::string_view member) const;

  const Application& application_;
  bool standalone_ = true;
  bool isShown_ = false;
  bool isShutDown_ = false;
  int looks_ = 0;  ///< at UILoaded since View
};

}  // namespace parvex::standin
