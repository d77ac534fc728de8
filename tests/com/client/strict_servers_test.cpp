#include "tests/com/strict_servers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "parvex_idl.h"
#include "tests/com/com_session.h"
#include "tests/support/offered_class_windows.h"

// Commands against legacy classes that are typed and take nothing else than what is declared.

namespace parvex::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

/// The text of the reply's first `element`; the error when the call fails.
std::string Answer(std::string_view xml, std::string_view element = "//returnError") {
  const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
  const auto command = NewDocument(xml);
  domDocument* argument = reinterpret_cast<domDocument*>(static_cast<IUnknown*>(command.Get()));
  domDocument* answered = nullptr;
  if (FAILED(pull->Pull(&argument, &answered))) {
    return TakeErrorInfo().description;
  }
  const auto reply = ComPointer<IUnknown>::Attach(reinterpret_cast<IUnknown*>(answered));
  const auto document = reply.As<IXMLDOMDocument2>(kXmlDocument2);
  const std::string failure = TextAt(document.Get(), "//errorMessage");
  return TextAt(document.Get(), element) + (failure.empty() ? "" : " " + failure);
}

std::string ReportOf(std::string_view reportName, std::string_view more = "") {
  return "<COMMAND><NAME>getReport</NAME><PARAMETER><NAME>projectName</NAME><VALUE>Riverside Clinic</VALUE></PARAMETER>"
         "<PARAMETER><NAME>reportName</NAME><VALUE>" +
         std::string(reportName) +
         "</VALUE></PARAMETER><PARAMETER><NAME>UnitsOfMeasure</NAME><VALUE>English</VALUE></PARAMETER>"
         "<PARAMETER><NAME>data</NAME><VALUE><TAG><NAME>RTU-1</NAME><PDSG>RTU47</PDSG><DATATYPE>0</DATATYPE></TAG>"
         "</VALUE></PARAMETER>" +
         std::string(more) + "</COMMAND>";
}

template <typename Strict>
OfferedClass::Make Making(Seen& seen) {
  return [&seen] { return windows::MakeCom<Strict>(seen).template As<IDispatch>(IID_IDispatch); };
}

TEST(StrictServers, AReportServerGetsItsTextsByReferenceAndMayReplaceThem) {
  Seen seen;
  const OfferedClass server("KDRPTSV47.CRemoteInterface", Making<StrictReportServer>(seen));
  EXPECT_EQ(Answer(ReportOf("UnitReport")), "No Error");
  const std::string folder = "C:\\Korvane\\TQ5-VX\\RTU47\\Code\\Reports\\Templates";
  EXPECT_THAT(seen, ElementsAre("action|Preview", "ClientID|NGORLA", "command|runReport", "OutputType|RTF",
                                "Project|Riverside Clinic", "ProjectID", "OutputUnits|English",
                                "AddTag|" + folder + "|RTU47|RTU47|RTU-1",
                                "AddReport|" + folder + "\\UnitReport_qdf.xml|UnitReport|UnitReport|RTU47|RTU-1",
                                "MakeReport"));
}

TEST(StrictServers, AScheduleRequestReadsTheCollectionThroughItsInterface) {
  Seen seen;
  const OfferedClass request("KDQU470.CKDScheduleRequest", Making<StrictScheduleRequest>(seen));
  EXPECT_EQ(Answer(ReportOf("EquipmentSchedule", "<command><Report><Name>EquipmentSchedule</Name></Report></command>")),
            "No Error");
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_THAT(seen[0], HasSubstr("SendRequest 4/4 pdsg=QRT52 projectName=Riverside Clinic projectID="));
  EXPECT_THAT(seen[0], HasSubstr("|SHOWSCHEDULE"));
}

TEST(StrictServers, ABuilderThatHasItsFrameworkAsAMethodIsDrivenToItsEnd) {
  Seen seen;
  const OfferedClass builder("KDQU470.CKDBuilder", Making<StrictBuilder>(seen));
  const std::string project = "Riverside Clinic";
  EXPECT_EQ(Answer(Command("newTag", {{"projectName", project}, {"PDSG", "RTU47"}})), "0");
  const std::string call = "CallService 3/3 consumer=object builder=object command line=";
  const std::string names = "|Workflow Service|runBuilder|QuoteBuilder";
  EXPECT_THAT(seen,
              ElementsAre("standalone False", "View False Nothing", call + "\\\\RTU47\\Riverside Clinic" + names));
  seen.clear();
  EXPECT_EQ(Answer(Command("rebuildAllTags", {{"projectName", project}})), "0");
  EXPECT_THAT(seen,
              ElementsAre("standalone False", "View True Nothing", call + "\\\\:Riverside Clinic" + names, "Shutdown"));
  seen.clear();
  EXPECT_EQ(Answer(Command("configureTag", {{"projectName", project}, {"PDSG", "RTU47"}, {"tagName", "RTU-1"}})), "0");
  EXPECT_THAT(seen, Contains(call + "\\\\\\RTU47\\RTU-1\\\\Riverside Clinic\\" + names));
}

// --- The substitute itself -------------------------------------------------------------------------------------------

TEST(StrictSubstitute, TakesTextsByReferenceOnlyAsReferencesToTexts) {
  const auto server = Create<IDispatch>("KDRPTSV47.CRemoteInterface");
  ASSERT_TRUE(server);
  const Bstr empty("");
  BSTR text = empty.Get();
  VARIANT variable = Borrowed(text);
  VARIANT typed = Number(0);
  V_VT(&typed) = VT_BYREF | VT_BSTR;
  V_BSTRREF(&typed) = &text;
  const auto make = [&](VARIANT argument) {
    return CallByName(server.Get(), "MakeReport", DISPATCH_METHOD, {argument}).result;
  };
  EXPECT_EQ(make(Reference(&variable)), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(make(variable), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(make(Number(1)), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(make(typed), DISP_E_EXCEPTION) << "it is asked, and refuses for want of its properties";
  EXPECT_EQ(CallByName(server.Get(), "MakeReport", DISPATCH_METHOD).result, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(CallByName(server.Get(), "MakeReport", DISPATCH_METHOD, {typed, typed}).result, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(CallByName(server.Get(), "NoSuchMember", DISPATCH_METHOD).result, DISP_E_UNKNOWNNAME);
}

TEST(StrictSubstitute, ItsClassesHaveTypeInformation) {
  for (const char* id : {"KDQU470.CKDBuilder", "KDQU470.CKDScheduleRequest", "KDRPTSV47.CRemoteInterface"}) {
    const auto object = Create<IDispatch>(id);
    ASSERT_TRUE(object) << id;
    ComPointer<ITypeInfo> info;
    EXPECT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.Out()), S_OK) << id;
  }
  const auto request = Create<IDispatch>("KDQU470.CKDScheduleRequest");
  const Bstr operation("SHOWSCHEDULE");
  const LateCall call =
      CallByName(request.Get(), "SendRequest", DISPATCH_METHOD, {Borrowed(operation.Get()), Borrowed(request.Get())});
  EXPECT_THAT(call.result, testing::AnyOf(DISP_E_TYPEMISMATCH, E_NOINTERFACE))  // the second is Wine's answer
      << "an object without the interface of collections";
}

}  // namespace
}  // namespace parvex::test
