#pragma once

#include <string>
#include <vector>

#include "protocol/legacy_link.h"
#include "tests/support/command_texts.h"
#include "tests/support/fake_automation.h"
#include "tests/support/fake_platform.h"

namespace parvex::test {

/// A machine with report templates, a report server that is scripted, and a router that knows tags by their names.
class ReportMachine {
 public:
  static constexpr const char* kServer = "KDRPTSV47.CRemoteInterface";
  static constexpr const char* kSchedule = "KDQU470.CKDScheduleRequest";
  static constexpr const char* kReportsTemp = "C:\\Korvane\\TQ5-VX\\Bin\\Reports\\Temp\\";

  FakeMachine machine;
  FakeAutomation automation;
  LegacyLink link{[this] {
    Platform platform = machine.platform;
    platform.automation = &automation;
    return platform;
  }()};

  ReportMachine() {
    automation.Offer(kServer);
    automation.Answer(std::string(kServer) + ".MakeReport", {true});
    machine.routers.onRequest = [this](const std::string& request, std::string& answer) {
      const xml::Document command = xml::Document::Parse(request);
      answer = Tag(command.First("//PARAMETER[NAME='tagName']/VALUE").Text(),
                   command.First("//PARAMETER[NAME='pdsg']/VALUE").Text());
      return true;
    };
  }

  static std::string Folder(const std::string& pdsg) {
    return "C:\\Korvane\\TQ5-VX\\" + pdsg + "\\Code\\Reports\\Templates";
  }
  void WriteTemplate(const std::string& pdsg, const std::string& file) {
    machine.Write(Folder(pdsg) + "\\" + file, "<qdf/>");
  }
  void WriteTemporary(const std::string& name, std::string_view bytes = "x") {
    machine.Write(kReportsTemp + name, bytes);
  }
  std::vector<std::string> Temporary() { return machine.platform.files->ListFiles(std::string(kReportsTemp) + "*.*"); }
  const std::vector<FakeMessageBoxes::Box>& Boxes() const { return machine.boxes.boxes; }

  /// A tag as the router answers it, in the form in which it is handed to the report server.
  static std::string Tag(const std::string& name, const std::string& pdsg) {
    return "<TAG><TagName>" + name +
           "</TagName><Project ProjectID=\"P-7\"><Property name=\"proj_name\"><Value>Clinic"
           "</Value></Property></Project><Application PDSG=\"" +
           pdsg + "\"/></TAG>";
  }

  /// What the server is told before tags are added, a line each.
  static std::vector<std::string> Preparation(const std::string& clientId, const std::string& units = "") {
    const auto put = [](const std::string& property, const std::string& value) {
      return "put " + std::string(kServer) + "." + property + " = \"" + value + "\"";
    };
    std::vector<std::string> lines = {put("action", "Preview"), put("ClientID", clientId), put("command", "runReport"),
                                      put("OutputType", "RTF"), put("Project", "Clinic"),  put("ProjectID", "P-7")};
    if (!units.empty()) {
      lines.push_back(put("OutputUnits", units));
    }
    return lines;
  }
  static std::string Called(const std::string& member) { return "call " + std::string(kServer) + "." + member; }
  static std::string AddTag(const std::string& name, const std::string& pdsg) {
    return Called("AddTag") + "(&\"" + Folder(pdsg) + "\", &\"" + Tag(name, pdsg) + "\", &\"" + pdsg + "\", &\"" +
           pdsg + "\", &\"" + name + "\")";
  }
  static std::string AddReport(const std::string& name, const std::string& pdsg, const std::string& file,
                               const std::string& category, const std::string& report) {
    return Called("AddReport") + "(&\"" + Folder(pdsg) + "\\" + file + "\", &\"" + category + "\", &\"" + report +
           "\", &\"" + pdsg + "\", &\"" + name + "\")";
  }
  static std::string MakeReport(bool made = true) {
    return Called("MakeReport") + "(&\"\") -> " + (made ? "True" : "False");
  }
};

/// The lines of several parts in one list.
inline std::vector<std::string> Lines(std::initializer_list<std::vector<std::string>> parts) {
  std::vector<std::string> all;
  for (const std::vector<std::string>& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

/// A report command for tags of RTU47, named by their names; parameters are given as markup.
inline xml::Document ReportCommand(const std::string& command, const std::string& parameters,
                                   const std::vector<std::string>& tags = {"RTU-1"},
                                   const std::string& pdsg = "RTU47") {
  std::string entries;
  for (const std::string& tag : tags) {
    entries += "<TAG><NAME>" + tag + "</NAME><PDSG>" + pdsg + "</PDSG><DATATYPE>0</DATATYPE></TAG>";
  }
  return Command(command, Parameter("projectName", "Clinic") + parameters + Parameter("data", entries));
}

inline std::string ReportName(const std::string& name) { return Parameter("reportName", name); }

inline std::string Units(const std::string& units) { return Parameter("UnitsOfMeasure", units); }

/// The success reply with these words in returnError, and the failure reply with this message.
inline std::string Answered(const std::string& words) {
  return "<LegacyORLA><returnError>" + words + "</returnError><errorMessage/></LegacyORLA>\r\n";
}
inline std::string Failed(const std::string& message) {
  return "<LegacyORLA><returnError>-1</returnError><errorMessage>" + message + "</errorMessage></LegacyORLA>\r\n";
}

}  // namespace parvex::test
