#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "legacy_standin/installation/application.h"
#include "seams/automation.h"
#include "seams/xml.h"

namespace parvex::standin {

inline constexpr const char* kReportServerClass = "KDRPTSV47.CRemoteInterface";

/// The folder of the report server's files, without final backslash.
std::string ReportsFolder(const Application& application);

/// The substitute's report server. Properties tell it what to make; it is given tags (AddTag) and the reports that are
/// wanted for them (AddReport), and makes them all in MakeReport: rich text files for the client "NGORLA", NGreport.xml
/// for the client "NGSubmittal". docs/standin.md describes the files. What it cannot work with is an AutomationError
/// (5) that names the member and the value.
class ReportServer : public automation::Object {
 public:
  /// The application outlives the server.
  explicit ReportServer(const Application& application) : application_(application) {}

  std::string Name() const override { return kReportServerClass; }
  automation::Value Get(std::string_view member) override;
  void Put(std::string_view member, const automation::Value& value) override;
  automation::Value Call(std::string_view member, std::span<automation::Argument> arguments) override;

 private:
  struct Tag {
    std::string templatesFolder;
    std::string pdsg;
    std::string name;
    xml::Document data;
  };
  struct Report {
    std::string templatePath;
    std::string category;
    std::string name;
    std::size_t tag;  ///< place among the tags
    xml::Document definition;
  };

  void Reset();
  void AddTag(const std::vector<std::string>& texts);
  void AddReport(const std::vector<std::string>& texts);
  bool MakeReport() const;

  std::string Property(std::string_view name) const;
  void RequireProperty(std::string_view name, std::string_view value) const;
  std::size_t FindTag(std::string_view pdsg, std::string_view name) const;
  /// What a report says, line by line.
  std::vector<std::string> LinesOf(const Report& report) const;
  void WriteRichText() const;
  void WriteSubmittal(const Report& report) const;
  void WriteRequest(bool made) const;
  void Write(const std::string& fileName, std::string_view bytes) const;

  const Application& application_;
  std::map<std::string, std::string, std::less<>> properties_;
  std::vector<Tag> tags_;
  std::vector<Report> reports_;
};

}  // namespace parvex::standin
