#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "reports/report_commands.h"
#include "tests/unit/reports/report_machine.h"

namespace parvex::test {

using Box = FakeMessageBoxes::Box;

inline const std::string kCreate = std::string("create ") + ReportMachine::kServer;
inline const std::string kReset = ReportMachine::Called("Reset") + "()";
inline constexpr const char* kMade = "No Error";
inline constexpr const char* kNotMade = "No Report was generated";

/// A machine to which report commands are sent.
class ReportCommandsTest : public testing::Test, protected ReportMachine {
 protected:
  std::string Report(const std::string& parameters, const std::vector<std::string>& tags = {"RTU-1"}) {
    return GetReport(link, ReportCommand("getReport", parameters, tags)).Xml();
  }
  std::string Reports(const std::string& parameters, const std::vector<std::string>& tags = {"RTU-1"}) {
    return GetReports(link, ReportCommand("getReports", parameters, tags)).Xml();
  }
  static std::string ReportNames(const std::vector<std::string>& names) {
    std::string values;
    for (const std::string& name : names) {
      values += "<VALUE>" + name + "</VALUE>";
    }
    return "<PARAMETER><NAME>reportName</NAME>" + values + "</PARAMETER>";
  }
  static std::string AddUnitReport(const std::string& tag) {
    return AddReport(tag, "RTU47", "UnitReport_qdf.xml", "UnitReport", "UnitReport");
  }
  std::vector<std::string> TakeLines() { return std::exchange(automation.lines, {}); }
};

}  // namespace parvex::test
