#include "legacy_standin/reports/report_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "legacy_standin/reports/schedule_request.h"
#include "seams/automation_error.h"
#include "tests/support/raised_by.h"
#include "tests/unit/legacy_standin/standin_machine.h"

namespace parvex::standin {
namespace {

using automation::Argument;
using automation::Value;
using test::ErrorIn;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kTemp = "C:\\Korvane\\TQ5-VX\\Bin\\Reports\\Temp\\";
constexpr const char* kTemplate = "C:\\T\\UnitReport_qdf.xml";
constexpr const char* kTag = "<TAG><TagName>A</TagName><Product PartNumber=\"{P} é\"/></TAG>";

class ReportClassesTest : public testing::Test, protected StandinMachine {
 protected:
  static Value Call(automation::Object& object, std::string_view member, const std::vector<Value>& values) {
    std::vector<Argument> arguments;
    for (const Value& value : values) {
      arguments.push_back({value, true});
    }
    return object.Call(member, arguments);
  }

  std::vector<std::string> Files() { return machine.platform.files->ListFiles(std::string(kTemp) + "*.*"); }
};

class ReportServerTest : public ReportClassesTest {
 protected:
  ReportServer server{application};

  ReportServerTest() {
    machine.Write(kTemplate,
                  "<D title='Unit'><line label='Part' product='PartNumber'/><image>u.bmp</image><chart/>"
                  "<section type='dwg'><filename>u.dwg</filename></section></D>");
  }

  void Prepare(const std::string& client) {
    const std::pair<const char*, std::string> properties[] = {{"action", "Preview"},    {"ClientID", client},
                                                              {"command", "runReport"}, {"OutputType", "RTF"},
                                                              {"Project", "Clinic"},    {"ProjectID", "7"}};
    for (const auto& [name, value] : properties) {
      server.Put(name, value);
    }
  }
  void AddTag(const std::string& data = kTag) { CallTexts("AddTag", {"C:\\T", data, "RTU47", "RTU47", "A"}); }
  void AddReport(const std::string& path = kTemplate, const std::string& category = "UnitReport",
                 const std::string& tag = "A") {
    CallTexts("AddReport", {path, category, "UnitReport", "RTU47", tag});
  }
  bool Make() { return std::get<bool>(Call(server, "MakeReport", {std::string()})); }
  void CallTexts(std::string_view member, const std::vector<std::string>& texts) {
    Call(server, member, {texts.begin(), texts.end()});
  }
};

TEST_F(ReportServerTest, APreviewIsWorkingFilesAndOneRichText) {
  Prepare("NGORLA");
  server.Put("OutputUnits", std::string("SI"));
  AddTag();
  AddReport();
  AddReport();
  EXPECT_TRUE(Make());
  EXPECT_THAT(Files(), ElementsAre("Preview.rtf", "Request.xml", "rpt1.rtf", "rpt1.te", "rpt2.rtf", "rpt2.te"));
  EXPECT_EQ(machine.Read(kTemp + std::string("rpt1.rtf")),
            "{\\rtf1\\ansi\\ansicpg1252\\uc1\\deff0{\\fonttbl{\\f0\\fswiss Arial;}}\\f0\\fs20\r\n"
            "{\\b\\fs28 Unit}\\par\r\nProject: Clinic (7)\\par\r\nTag: A (RTU47)\\par\r\nUnits: SI\\par\r\n"
            "Part: \\{P\\} \\u233?\\par\r\n}\r\n");
}

TEST_F(ReportServerTest, ASubmittalNamesTheFilesOfTheDefinitionAndAPictureOfItsOwn) {
  Prepare("NGSubmittal");
  AddTag();
  AddReport();
  EXPECT_TRUE(Make());
  EXPECT_EQ(machine.Read(kTemp + std::string("NGreport.xml")),
            "<NGreport><root><title>Unit</title><line>Project: Clinic (7)</line><line>Tag: A (RTU47)</line>"
            "<line>Part: {P} é</line><image>u.bmp</image><image>" +
                std::string(kTemp) +
                "chart1.bmp</image><section type=\"dwg\"><filename>u.dwg</filename></section></root></NGreport>\r\n");
  EXPECT_THAT(Files(), ElementsAre("chart1.bmp", "NGreport.xml", "Request.xml", "rpt1.rtf"));
}

TEST_F(ReportServerTest, RecordsWhatItIsGiven) {
  Prepare("NGORLA");
  AddTag();
  AddReport();
  Make();
  EXPECT_EQ(machine.Read(kTemp + std::string("Request.xml")),
            "<Request made=\"True\"><action>Preview</action><ClientID>NGORLA</ClientID><command>runReport</command>"
            "<OutputType>RTF</OutputType><Project>Clinic</Project><ProjectID>7</ProjectID><OutputUnits/><Tag>"
            "<TemplatesFolder>C:\\T</TemplatesFolder><PDSG>RTU47</PDSG><Name>A</Name><Data>" +
                std::string(kTag) +
                "</Data></Tag><Report><Template>C:\\T\\UnitReport_qdf.xml</Template><Category>UnitReport</Category>"
                "<Name>UnitReport</Name><Tag>A</Tag></Report></Request>\r\n");
}

TEST_F(ReportServerTest, WithoutReportsOrWhenToldSoItMakesNone) {
  Prepare("NGORLA");
  AddTag();
  EXPECT_FALSE(Make());
  AddReport();
  application.settings.reportServer.makeReport = false;
  EXPECT_FALSE(Make());
  EXPECT_THAT(Files(), ElementsAre("Request.xml"));
}

TEST_F(ReportServerTest, ResetForgetsEverything) {
  Prepare("NGORLA");
  AddTag();
  AddReport();
  Call(server, "Reset", {});
  EXPECT_EQ(std::get<std::string>(server.Get("ClientID")), "");
  EXPECT_THAT(ErrorIn([&] { Make(); }), HasSubstr("action is \"\""));
  EXPECT_THAT(ErrorIn([&] { AddReport(); }), HasSubstr("no tag \"A\" of RTU47 was added"));
}

TEST_F(ReportServerTest, RefusesWhatDoesNotFit) {
  const std::string name = "KDRPTSV47.CRemoteInterface.";
  EXPECT_EQ(ErrorIn([&] { server.Get("Reset"); }), "438 " + name + "Reset: the object has no such member");
  EXPECT_EQ(ErrorIn([&] { server.Put("Format", std::string()); }),
            "438 " + name + "Format: the object has no such member");
  EXPECT_EQ(ErrorIn([&] { Call(server, "Close", {}); }), "438 " + name + "Close: the object has no such member");
  EXPECT_EQ(ErrorIn([&] { server.Put("action", 1); }),
            "13 " + name + "action: argument 1 has another type than is wanted");
  EXPECT_EQ(ErrorIn([&] { Call(server, "AddTag", {}); }), "450 " + name + "AddTag: it does not take 0 arguments");
  EXPECT_EQ(ErrorIn([&] { Call(server, "MakeReport", {true}); }),
            "13 " + name + "MakeReport: argument 1 has another type than is wanted");
  EXPECT_THAT(ErrorIn([&] { AddTag("<TAG>"); }), HasSubstr("AddTag: the data of \"A\" is no XML document: "));
  EXPECT_THAT(ErrorIn([&] { CallTexts("AddTag", {"", kTag, "A", "B", ""}); }), HasSubstr("once \"A\" and once \"B\""));
  AddTag();
  EXPECT_THAT(ErrorIn([&] { AddReport(kTemplate, "TitlePage"); }), HasSubstr("unknown category \"TitlePage\""));
  EXPECT_THAT(ErrorIn([&] { AddReport("C:\\T\\gone.xml"); }),
              testing::StartsWith("53 cannot read \"C:\\T\\gone.xml\""));
  EXPECT_THAT(ErrorIn([&] { AddReport(kTemplate, "Custom", "B"); }), HasSubstr("no tag \"B\""));
  AddReport();
  Prepare("Somebody");
  EXPECT_THAT(ErrorIn([&] { Make(); }), HasSubstr("ClientID is \"Somebody\" and not \"NGORLA\""));
}

// Its texts are by reference as a typed server declares them: a value is refused, whatever its type.
TEST_F(ReportServerTest, RefusesTextsThatAreNotPassedByReference) {
  const std::string name = "KDRPTSV47.CRemoteInterface.";
  for (const char* member : {"AddTag", "AddReport"}) {
    std::vector<Argument> arguments(5, Argument{std::string("RTU47"), true});
    arguments[3].byReference = false;
    EXPECT_EQ(ErrorIn([&] { server.Call(member, arguments); }),
              "13 " + name + member + ": argument 4 has another type than is wanted");
  }
  Argument text{std::string(), false};
  EXPECT_EQ(ErrorIn([&] {
              server.Call("MakeReport", {&text, 1});
            }),
            "13 " + name + "MakeReport: argument 1 has another type than is wanted");
}

TEST_F(ReportServerTest, RefusesAnotherNumberOfArguments) {
  std::vector<Argument> arguments(6, Argument{std::string("RTU47"), true});
  EXPECT_EQ(ErrorIn([&] { server.Call("AddTag", arguments); }),
            "450 KDRPTSV47.CRemoteInterface.AddTag: it does not take 6 arguments");
  EXPECT_EQ(ErrorIn([&] { server.Call("MakeReport", {}); }),
            "450 KDRPTSV47.CRemoteInterface.MakeReport: it does not take 0 arguments");
}

TEST_F(ReportServerTest, FailsWhereItIsTold) {
  application.settings.reportServer.failAt = "ClientID";
  EXPECT_THAT(ErrorIn([&] { server.Put("ClientID", std::string()); }), HasSubstr("ClientID: told to fail"));
  EXPECT_EQ(ErrorIn([&] { server.Put("action", std::string()); }), "");
  application.settings.reportServer.failAt = "Reset";
  EXPECT_THAT(ErrorIn([&] { Call(server, "Reset", {}); }), HasSubstr("Reset: told to fail"));
}

class ScheduleRequestTest : public ReportClassesTest {
 protected:
  ScheduleRequest request{application};
  std::map<std::string, std::string> items = {
      {"pdsg", "QRT52"}, {"projectName", "Clinic"}, {"projectID", "7"}, {"tags", std::string(kTag) + kTag}};

  Value Send(const std::string& operation = "SHOWSCHEDULE") {
    auto collection = std::make_shared<automation::KeyedItems>();
    for (const auto& [key, text] : items) {
      collection->emplace_back(key, Argument{text});
    }
    return Call(request, "SendRequest", {operation, automation::CollectionRef(collection)});
  }
};

TEST_F(ScheduleRequestTest, ListsTheTags) {
  EXPECT_EQ(Send(), Value(true));
  EXPECT_THAT(machine.Read(kTemp + std::string("Schedule.rtf")),
              HasSubstr("Equipment Schedule}\\par\r\nProject: Clinic (7)\\par\r\nA\\par\r\nA\\par\r\n}"));
}

TEST_F(ScheduleRequestTest, WithoutTagsOrWhenToldSoItShowsNone) {
  items["tags"] = "";
  EXPECT_EQ(Send(), Value(false));
  items["tags"] = kTag;
  application.settings.reportServer.makeReport = false;
  EXPECT_EQ(Send(), Value(false));
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(ScheduleRequestTest, RefusesWhatDoesNotFit) {
  EXPECT_THAT(ErrorIn([&] { Send("HIDE"); }), HasSubstr("is not \"SHOWSCHEDULE\""));
  EXPECT_THAT(ErrorIn([&] {
                Call(request, "SendRequest", {std::string("SHOWSCHEDULE"), true});
              }),
              HasSubstr("13 KDQU470.CKDScheduleRequest.SendRequest: argument 2 has another type"));
  EXPECT_THAT(ErrorIn([&] { Call(request, "SendRequest", {}); }),
              HasSubstr("450 KDQU470.CKDScheduleRequest.SendRequest: it does not take 0 arguments"));
  EXPECT_THAT(ErrorIn([&] { Call(request, "Send", {}); }), HasSubstr("438 "));
  items["pdsg"] = "KDQ47";
  EXPECT_THAT(ErrorIn([&] { Send(); }), HasSubstr("no schedule of the group \"KDQ47\""));
  items.erase("tags");
  items["pdsg"] = "QRT52";
  EXPECT_THAT(ErrorIn([&] { Send(); }), HasSubstr("the collection has no text \"tags\""));
  application.settings.reportServer.failAt = "SendRequest";
  EXPECT_THAT(ErrorIn([&] { Send(); }), HasSubstr("SendRequest: told to fail"));
}

}  // namespace
}  // namespace parvex::standin
