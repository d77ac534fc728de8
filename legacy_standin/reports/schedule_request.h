#pragma once

#include <span>
#include <string>
#include <string_view>

#include "legacy_standin/installation/application.h"
#include "legacy_standin/late_bound/passed_collection.h"
#include "seams/automation.h"

namespace parvex::standin {

inline constexpr const char* kScheduleRequestClass = "KDQU470.CKDScheduleRequest";

/// The substitute's schedule request. Its one member, SendRequest, takes "SHOWSCHEDULE" and a collection of pdsg
/// ("QRT52"), projectName, projectID and tags; it writes Schedule.rtf into the folder of the report server's files, and
/// is true when there is a tag in it.
class ScheduleRequest : public automation::Object {
 public:
  /// The application outlives the request.
  explicit ScheduleRequest(const Application& application) : application_(application) {}

  std::string Name() const override { return kScheduleRequestClass; }
  automation::Value Get(std::string_view member) override;
  void Put(std::string_view member, const automation::Value& value) override;
  automation::Value Call(std::string_view member, std::span<automation::Argument> arguments) override;

 private:
  std::string Item(const PassedCollection& items, std::string_view key) const;
  bool ShowSchedule(const PassedCollection& items) const;

  const Application& application_;
};

}  // namespace parvex::standin
