#include "legacy_standin/reports/schedule_request.h"

#include "legacy_standin/late_bound/late_bound_members.h"
#include "legacy_standin/reports/report_server.h"
#include "legacy_standin/reports/rtf_text.h"
#include "seams/member_errors.h"
#include "seams/xml.h"

namespace parvex::standin {
namespace {

using automation::Argument;
using automation::Value;

constexpr std::string_view kMember = "SendRequest";
constexpr std::string_view kScheduleGroup = "QRT52";

}  // namespace

Value ScheduleRequest::Get(std::string_view member) { RefuseMember(*this, member); }

void ScheduleRequest::Put(std::string_view member, const Value&) { RefuseMember(*this, member); }

Value ScheduleRequest::Call(std::string_view member, std::span<Argument> arguments) {
  FailWhereTold(application_.settings.reportServer.failAt, *this, member);
  if (member != kMember) {
    RefuseMember(*this, member);
  }
  RequireCount(*this, member, arguments, 2);
  const auto* operation = std::get_if<std::string>(&arguments[0].value);
  if (operation == nullptr) {
    throw automation::WrongArgumentType(Name(), member, 1);
  }
  if (*operation != "SHOWSCHEDULE") {
    RefuseValue(*this, member, "the first argument is not \"SHOWSCHEDULE\"");
  }
  const std::optional<PassedCollection> items = PassedCollection::From(arguments[1].value);
  if (!items) {
    throw automation::WrongArgumentType(Name(), member, 2);
  }
  return ShowSchedule(*items);
}

std::string ScheduleRequest::Item(const PassedCollection& items, std::string_view key) const {
  const std::optional<Value> item = items.Find(key);
  if (item && std::holds_alternative<std::string>(*item)) {
    return std::get<std::string>(*item);
  }
  RefuseValue(*this, kMember, "the collection has no text \"" + std::string(key) + "\"");
}

bool ScheduleRequest::ShowSchedule(const PassedCollection& items) const {
  if (Item(items, "pdsg") != kScheduleGroup) {
    RefuseValue(*this, kMember, "there is no schedule of the group \"" + Item(items, "pdsg") + "\"");
  }
  const xml::Document tags = xml::Document::Parse("<TAGS>" + Item(items, "tags") + "</TAGS>");
  if (tags.IsEmpty()) {
    RefuseValue(*this, kMember, "the tags are no markup: " + tags.ParseError());
  }
  RtfText schedule;
  schedule.Heading("Equipment Schedule");
  schedule.Line("Project: " + Item(items, "projectName") + " (" + Item(items, "projectID") + ")");
  const std::vector<xml::Node> names = tags.All("/TAGS/TAG//TagName");
  for (const xml::Node& name : names) {
    schedule.Line(name.Text());
  }
  if (names.empty() || !application_.settings.reportServer.makeReport) {
    return false;
  }
  const std::string folder = ReportsFolder(application_);
  application_.files.CreateFolder(folder);
  application_.files.Replace(folder + "\\Schedule.rtf", schedule.Bytes());
  return true;
}

}  // namespace parvex::standin
