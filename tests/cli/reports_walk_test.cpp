// Reports and submittals of the sample machine, end to end through the program and the substitute's report server.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codec/bin_encoder.h"
#include "formats/text/text.h"
#include "legacy_standin/reports/bitmap.h"
#include "seams/xml.h"
#include "tests/cli/sample_walk.h"

namespace parvex::test {
namespace {

using standin::Json;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

constexpr const char* kMade = "<LegacyORLA><returnError>No Error</returnError><errorMessage/></LegacyORLA>\r\n";
constexpr const char* kNotMade =
    "<LegacyORLA><returnError>No Report was generated</returnError><errorMessage/></LegacyORLA>\r\n";
const std::string kServer = "KDRPTSV47.CRemoteInterface";

class ReportsWalk : public SampleWalk {
 protected:
  fs::path ReportFile(const std::string& name) const { return Installed("Bin/Reports/Temp") / name; }
  std::string Command(const std::string& name) const { return Sample() + "/commands/report-" + name + ".xml"; }
  void SetReportServer(const std::string& json) const { SetStandin("{\"reportServer\":" + json + "}"); }

  std::vector<std::string> FilesLeft() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(Installed("Bin/Reports/Temp"))) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  /// What was done with late-bound objects, a line each: operation, object and member, then the arguments without the
  /// markup of tags.
  std::vector<std::string> LateBoundCalls() const {
    std::vector<std::string> calls;
    for (const Json& line : Journalled("automation")) {
      const std::string member = line["member"];
      std::string call = line["op"].get<std::string>() + " " + line["object"].get<std::string>() +
                         (member.empty() ? "" : "." + member);
      for (const Json& argument : line["args"]) {
        const std::string text = argument.is_string() ? argument.get<std::string>() : argument.dump();
        call += " | " + (text.starts_with("<TAG>") ? "<TAG>" : text);
      }
      calls.push_back(line["result"].is_null() ? call : call + " -> " + line["result"].dump());
    }
    return calls;
  }

  std::vector<std::string> BoxTexts() const {
    std::vector<std::string> texts;
    for (const Json& line : Journalled("messageBox")) {
      texts.push_back(line["text"]);
    }
    return texts;
  }

  static std::vector<std::string> Preparation(const std::string& client) {
    std::vector<std::string> lines;
    for (const auto& [name, value] : {std::pair<std::string, std::string>{"action", "Preview"},
                                      {"ClientID", client},
                                      {"command", "runReport"},
                                      {"OutputType", "RTF"},
                                      {"Project", "Riverside Clinic"},
                                      {"ProjectID", "Riverside Clinic"},
                                      {"OutputUnits", "English"}}) {
      lines.push_back("put " + kServer + "." + name + " | " + value);
    }
    return lines;
  }
};

std::string AddTag(const std::string& name, const std::string& pdsg) {
  return "call " + kServer + ".AddTag | C:\\Korvane\\TQ5-VX\\" + pdsg + "\\Code\\Reports\\Templates | <TAG> | " + pdsg +
         " | " + pdsg + " | " + name;
}

std::string AddReport(const std::string& name, const std::string& pdsg, const std::string& file,
                      const std::string& category, const std::string& report) {
  return "call " + kServer + ".AddReport | C:\\Korvane\\TQ5-VX\\" + pdsg + "\\Code\\Reports\\Templates\\" + file +
         " | " + category + " | " + report + " | " + pdsg + " | " + name;
}

std::string AddUnitReport(const std::string& name, const std::string& pdsg) {
  return AddReport(name, pdsg, "UnitReport_qdf.xml", "UnitReport", "UnitReport");
}

const std::string kCreate = "create " + kServer;
const std::string kReset = "call " + kServer + ".Reset";
const std::string kMake = "call " + kServer + ".MakeReport | ";
const std::string kRelease = "release " + kServer;

std::vector<std::string> Joined(const std::vector<std::vector<std::string>>& parts) {
  std::vector<std::string> all;
  for (const std::vector<std::string>& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

TEST_F(ReportsWalk, TheRooftopUnitIsOfferedItsReports) {
  const Outcome outcome = Pull({Command("01-available")});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  std::vector<std::string> offered;
  for (const xml::Node& name : xml::Document::Parse(outcome.out).All("/REPORTS/REPORT/PARAMETER/NAME")) {
    offered.push_back(name.Text());
  }
  EXPECT_THAT(offered, ElementsAre("UnitReport", "PerformanceReport", "AcousticSummary", "CertifiedDrawing",
                                   "WiringDiagram", "GuideSpecification", "SpecSheet", "ECO_Desig_Data_Sheet"));
}

TEST_F(ReportsWalk, OneReportIsMadeForTheTagsThatHaveItsTemplate) {
  const Outcome outcome = Pull({Command("02-one")});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, kMade);
  EXPECT_THAT(LateBoundCalls(),
              ElementsAreArray(Joined(
                  {{kCreate},
                   Preparation("NGORLA"),
                   {AddTag("RTU-1", "RTU47"), AddUnitReport("RTU-1", "RTU47"), AddTag("Küche & Café <EG>", "FCB47"),
                    AddUnitReport("Küche & Café <EG>", "FCB47"), kMake + " -> true", kRelease}})));
  EXPECT_THAT(BoxTexts(), IsEmpty());
  EXPECT_THAT(FilesLeft(), ElementsAre("Preview.rtf", "Request.xml"));
  EXPECT_THAT(ReadHostFile(ReportFile("Preview.rtf")), HasSubstr("Tag: RTU-1 (RTU47)\\par"));
}

TEST_F(ReportsWalk, SeveralReportsAreMadeInOneRun) {
  const Outcome outcome = Pull({Command("03-several")});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, kMade);
  EXPECT_THAT(LateBoundCalls(),
              ElementsAreArray(
                  Joined({{kCreate},
                          Preparation("NGORLA"),
                          {AddTag("RTU-1", "RTU47"), AddUnitReport("RTU-1", "RTU47"),
                           AddReport("RTU-1", "RTU47", "ECO_Desig_Data_Sheet.xml", "Custom", "ECO__Desig_Data_Sheet"),
                           AddTag("AHU-3", "AHE47"), AddUnitReport("AHU-3", "AHE47"), kMake + " -> true", kRelease}})));
  EXPECT_THAT(FilesLeft(), ElementsAre("Preview.rtf", "Request.xml"));
}

TEST_F(ReportsWalk, ASubmittalHoldsTheOriginalBytesOfItsDrawings) {
  const Outcome outcome = Pull({Command("04-submittal")});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  const xml::Document reply = xml::Document::Parse(outcome.out);
  ASSERT_EQ(reply.All("/TAGS/TAG/root").size(), 2u);
  std::vector<std::pair<std::string, std::string>> embedded;  // file name and decoded content
  for (const xml::Node& name : reply.All("//filename")) {
    embedded.emplace_back(name.Text(), DecodeBase64(name.Parent().First("text()").Text()));
  }
  const auto drawing = [&](const std::string& path) { return ReadHostFile(Installed(path)); };
  using Entry = std::pair<std::string, std::string>;
  EXPECT_THAT(embedded, ElementsAre(Entry("rtu-unit.bmp", drawing("RTU47/Code/Reports/Drawings/rtu-unit.bmp")),
                                    Entry("C:\\Korvane\\TQ5-VX\\Bin\\Reports\\Temp\\chart1.bmp",
                                          standin::MakeBitmap(48, 24, 0x2060A0)),
                                    Entry("rtu-outline.dxf", drawing("RTU47/Code/Reports/Drawings/rtu-outline.dxf")),
                                    Entry("rtu-guide.rtf", drawing("RTU47/Code/Reports/GSpec/rtu-guide.rtf")),
                                    Entry("xrc-unit.bmp", drawing("XRC47/Code/Reports/Drawings/xrc-unit.bmp")),
                                    Entry("xrc-outline.dxf", "")));
  EXPECT_GT(embedded[0].second.size(), 1000u);
  EXPECT_THAT(FilesLeft(), ElementsAre("NGreport.xml", "Request.xml"));
  const auto oneTag = [](const std::string& name, const std::string& pdsg) {
    return Joined({{kReset},
                   Preparation("NGSubmittal"),
                   {AddTag(name, pdsg), AddReport(name, pdsg, "NGSubmittal_qdf.xml", "Custom", "NGSubmittal"),
                    kMake + " -> true"}});
  };
  EXPECT_THAT(LateBoundCalls(),
              ElementsAreArray(Joined({{kCreate}, oneTag("RTU-1", "RTU47"), oneTag("CH-1", "XRC47"), {kRelease}})));
}

TEST_F(ReportsWalk, TheEquipmentScheduleIsShownByARequestOfItsOwn) {
  const Outcome outcome = Pull({Command("05-schedule")});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, kMade);
  const std::vector<std::string> calls = LateBoundCalls();
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_EQ(calls[0], "create KDQU470.CKDScheduleRequest");
  EXPECT_THAT(calls[1], testing::StartsWith("call KDQU470.CKDScheduleRequest.SendRequest | SHOWSCHEDULE | [[\"pdsg\","
                                            "\"QRT52\"],[\"projectName\",\"Riverside Clinic\"],[\"projectID\","));
  EXPECT_EQ(calls[2], "release KDQU470.CKDScheduleRequest");
  EXPECT_THAT(FilesLeft(), ElementsAre("Schedule.rtf"));
}

TEST_F(ReportsWalk, OneServerServesAllCommandsUntilABuilderCommandDropsIt) {
  const std::string newTag = Sample() + "/commands/new.xml";
  WriteHostFile(newTag, CommandText("newTag"));
  Pull({Command("02-one"), Command("03-several"), newTag, Command("02-one")});
  std::vector<std::string> life;
  for (const std::string& call : LateBoundCalls()) {
    if (call.find(kServer) != std::string::npos && call.find("put ") == std::string::npos &&
        call.find(".Add") == std::string::npos) {
      life.push_back(call);
    }
  }
  EXPECT_THAT(life, ElementsAre(kCreate, kMake + " -> true", kReset, kMake + " -> true", kRelease, kCreate + "#2",
                                "call " + kServer + "#2.MakeReport |  -> true", kRelease + "#2"));
}

TEST_F(ReportsWalk, WithoutTemplateFoldersNothingIsMadeAndTheUserIsTold) {
  for (const char* pdsg : {"RTU47", "FCB47", "AHE47", "XRC47"}) {
    fs::remove_all(Installed(pdsg));
  }
  const Outcome outcome =
      Pull({Command("01-available"), Command("02-one"), Command("03-several"), Command("04-submittal")});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr(std::string(kNotMade) + kNotMade + "<TAGS/>\r\n"));
  EXPECT_THAT(BoxTexts(), ElementsAre("The Report could not be generated. ", "The Reports could not be generated. "));
}

TEST_F(ReportsWalk, WithoutReadableConfigurationTheStandardReportsAreOffered) {
  const fs::path configuration = Installed("Bin/KDCustomRpt_Cfg.xml");
  WriteHostFile(configuration, "<CustomReports><Builder name=\"RTU47\">");
  const Outcome malformed = Pull({Command("01-available")});
  fs::remove(configuration);
  const Outcome missing = Pull({Command("01-available")});
  EXPECT_EQ(missing.status, 0) << missing.err;
  EXPECT_EQ(xml::Document::Parse(missing.out).All("//REPORT").size(), 6u);
  EXPECT_EQ(missing.out, malformed.out);
}

TEST_F(ReportsWalk, AMissingServerIsAnsweredByTheReportCommandsAndEndsASubmittal) {
  SetReportServer("{\"missing\":true}");
  const std::string reason = "no component is registered as \"KDRPTSV47.CRemoteInterface\"";
  EXPECT_EQ(FailedReply("Error in getReport. " + reason), Pull({Command("02-one")}).out);
  EXPECT_EQ(FailedReply("Error in getReports(). " + reason), Pull({Command("03-several")}).out);
  EXPECT_EQ(FailedReply("Error in getReport. no component is registered as \"KDQU470.CKDScheduleRequest\""),
            Pull({Command("05-schedule")}).out);
  const Outcome submittal = Pull({Command("04-submittal")});
  EXPECT_EQ(submittal.status, 3);
  EXPECT_EQ(submittal.out, "");
  EXPECT_THAT(submittal.err, HasSubstr("0x800A01AD"));
  EXPECT_THAT(submittal.err, HasSubstr(reason));
}

TEST_F(ReportsWalk, AServerThatFailsAtAnyMemberIsAnsweredWithThatMember) {
  for (const std::string member : {"action", "ClientID", "command", "OutputType", "Project", "ProjectID", "OutputUnits",
                                   "AddTag", "AddReport", "MakeReport"}) {
    SetReportServer("{\"failAt\":\"" + member + "\"}");
    const Outcome outcome = Pull({Command("02-one")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, FailedReply("Error in getReport. " + kServer + "." + member + ": told to fail"));
  }
}

TEST_F(ReportsWalk, WhatTheServerDoesNotMakeIsSaidSo) {
  SetReportServer("{\"makeReport\":false}");
  const Outcome outcome = Pull({Command("02-one"), Command("05-schedule")});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, std::string(kNotMade) + kNotMade);
  EXPECT_THAT(BoxTexts(), IsEmpty());
}

TEST_F(ReportsWalk, AReadOnlyReportFileIsAnsweredAsAnError) {
  Pull({Command("02-one")});
  WriteHostFile(ReportFile("rptold.rtf"), "old");
  fs::permissions(ReportFile("rptold.rtf"), fs::perms::owner_read);
  const Outcome outcome = Pull({Command("02-one")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("<errorMessage>Error in getReport. "));
  EXPECT_THAT(outcome.out, HasSubstr("rptold.rtf"));
}

TEST_F(ReportsWalk, ADrawingNameStaysOnTheMachineOrIsRefused) {
  WriteHostFile(fs::path(Sample()) / "secret.bmp", "of the host");
  WriteHostFile(Installed("secret.bmp"), "of the machine");
  const fs::path definition = Installed("RTU47/Code/Reports/Templates/NGSubmittal_qdf.xml");
  const auto submittalWith = [&](const std::string& name) {
    WriteHostFile(definition, "<D><image>" + name + "</image></D>");
    return Pull({Command("04-submittal")});
  };
  for (const std::string name : {"C:\\..\\..\\secret.bmp", "../../../../secret.bmp", "C:secret.bmp"}) {
    const Outcome outcome = submittalWith(name);
    EXPECT_EQ(outcome.status, 3) << outcome.out;
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr("the drawing file name \"" + name + "\" leads out of "));
  }
}

TEST_F(ReportsWalk, ADefinitionThatIsNoDocumentIsAnErrorThatNamesIt) {
  WriteHostFile(Installed("RTU47/Code/Reports/Templates/UnitReport_qdf.xml"), "<D>");
  const Outcome outcome = Pull({Command("02-one")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("Error in getReport. " + kServer + ".AddReport: "));
  EXPECT_THAT(outcome.out, HasSubstr("UnitReport_qdf.xml is no XML document"));
}

}  // namespace
}  // namespace parvex::test
