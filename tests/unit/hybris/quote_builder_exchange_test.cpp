#include "hybris/quote_builder_exchange.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/raised_by.h"
#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kBin = "C:\\Korvane\\TQ5-VX\\Bin\\";

class QuoteBuilderExchange : public testing::Test {
 protected:
  ExportMachine export_;
  FakeMachine& machine_ = export_.machine;
  const Platform& platform_ = export_.platform;

  void LeaveAction(const std::string& action) { export_.Select("[Header]\r\nAction=" + action + "\r\n"); }
};

TEST_F(QuoteBuilderExchange, TheInteractiveRunStartsTheWorkflowInANormalWindow) {
  RunQuoteBuilder(platform_, kBin);
  ASSERT_EQ(machine_.processes.started.size(), 1u);
  EXPECT_EQ(machine_.processes.started[0].commandLine, "C:\\Korvane\\TQ5-VX\\Bin\\\\kdwfm470.exe /OrlaProjectImport");
  EXPECT_EQ(machine_.processes.started[0].windowStyle, 1);
  EXPECT_EQ(machine_.processes.started[0].program, "C:\\Korvane\\TQ5-VX\\Bin\\\\kdwfm470.exe")
      << "and no other program";
}

TEST_F(QuoteBuilderExchange, TheRunWithoutUserInterfaceHasItsOwnOption) {
  RunQuoteBuilderNoUI(platform_, kBin);
  ASSERT_EQ(machine_.processes.started.size(), 1u);
  EXPECT_EQ(machine_.processes.started[0].commandLine, "C:\\Korvane\\TQ5-VX\\Bin\\\\kdwfm470.exe /OrlaImportNoUI");
  EXPECT_EQ(machine_.processes.started[0].windowStyle, 1);
}

TEST_F(QuoteBuilderExchange, BothRunsWaitUntilTheWorkflowHasEnded) {
  machine_.processes.polls = 3;
  RunQuoteBuilder(platform_, kBin);
  EXPECT_GE(machine_.pump.now, std::chrono::milliseconds(300));
}

TEST_F(QuoteBuilderExchange, TheOutputFileIsInTempBesideTheProgramFolder) {
  EXPECT_EQ(RunQuoteBuilder(platform_, "X:\\Root\\TQ5-VX\\Bin\\").outputFile, "X:\\Root\\TQ5-VX\\Temp\\QBOutput.ini");
  EXPECT_EQ(RunQuoteBuilderNoUI(platform_, "X:\\Root\\TQ5-VX\\Bin\\").outputFile,
            "X:\\Root\\TQ5-VX\\Temp\\QBOutput.ini");
}

TEST_F(QuoteBuilderExchange, AProgramFolderWithoutFinalBackslashLosesOneFolderMore) {
  EXPECT_EQ(RunQuoteBuilder(platform_, "X:\\Root\\TQ5-VX\\Bin").outputFile, "X:\\Root\\Temp\\QBOutput.ini");
}

TEST_F(QuoteBuilderExchange, AProgramFolderWithOneBackslashLeavesARelativeOutputFile) {
  EXPECT_EQ(RunQuoteBuilder(platform_, "Bin\\").outputFile, "Temp\\QBOutput.ini");
}

TEST_F(QuoteBuilderExchange, AProgramFolderWithoutBackslashIsAnInvalidCallThatShowsIt) {
  EXPECT_EQ(RaisedBy([&] { RunQuoteBuilder(platform_, "Bin"); }), RuntimeError::InvalidCall);
  EXPECT_THAT(DescriptionOfErrorIn([&] { RunQuoteBuilder(platform_, "Bin"); }), HasSubstr("\"Bin\""));
}

TEST_F(QuoteBuilderExchange, WithoutOutputOnlyTheInteractiveRunCountsAsCancelled) {
  EXPECT_FALSE(RunQuoteBuilder(platform_, kBin).ok);
  EXPECT_TRUE(RunQuoteBuilderNoUI(platform_, kBin).ok);
}

TEST_F(QuoteBuilderExchange, WithoutActionOnlyTheInteractiveRunCountsAsCancelled) {
  export_.Select("[Header]\r\nOther=1\r\n[PartNumber1]\r\nPartNumber=X\r\n");
  EXPECT_FALSE(RunQuoteBuilder(platform_, kBin).ok);
  EXPECT_TRUE(RunQuoteBuilderNoUI(platform_, kBin).ok);
}

TEST_F(QuoteBuilderExchange, AnEmptyActionIsNoCancelInEither) {
  LeaveAction("");
  EXPECT_TRUE(RunQuoteBuilder(platform_, kBin).ok);
  EXPECT_TRUE(RunQuoteBuilderNoUI(platform_, kBin).ok);
}

TEST_F(QuoteBuilderExchange, CancelInAnyLetterCaseWithBlanksAroundCountsInBothRuns) {
  for (const char* action : {"cancel", "CANCEL", "  Cancel  ", "\"  cancel \""}) {
    LeaveAction(action);
    EXPECT_FALSE(RunQuoteBuilder(platform_, kBin).ok) << action;
    EXPECT_FALSE(RunQuoteBuilderNoUI(platform_, kBin).ok) << action;
  }
}

TEST_F(QuoteBuilderExchange, AnyOtherActionIsAGo) {
  for (const char* action : {"ok", "canceled", "cancel all", "0"}) {
    LeaveAction(action);
    EXPECT_TRUE(RunQuoteBuilder(platform_, kBin).ok) << action;
    EXPECT_TRUE(RunQuoteBuilderNoUI(platform_, kBin).ok) << action;
  }
}

TEST_F(QuoteBuilderExchange, TheActionIsReadAfterTheWorkflowHasWrittenIt) {
  machine_.processes.work = [&](const std::string&) { LeaveAction("ok"); };
  EXPECT_TRUE(RunQuoteBuilder(platform_, kBin).ok);
}

TEST_F(QuoteBuilderExchange, TheExitCodeIsNotLookedAt) {
  LeaveAction("ok");
  machine_.processes.exitCode = 5;
  EXPECT_TRUE(RunQuoteBuilder(platform_, kBin).ok);
}

TEST_F(QuoteBuilderExchange, AWorkflowThatDoesNotStartLeavesTheOutcomeToTheOldOutput) {
  machine_.processes.startError = 53;
  EXPECT_FALSE(RunQuoteBuilder(platform_, kBin).ok);
  EXPECT_TRUE(RunQuoteBuilderNoUI(platform_, kBin).ok);
  LeaveAction("ok");
  EXPECT_TRUE(RunQuoteBuilder(platform_, kBin).ok);
}

TEST_F(QuoteBuilderExchange, TheInputHoldsItsThreeLinesOnceAlsoWhenWrittenTwice) {
  constexpr const char* kInput = "C:\\Korvane\\TQ5-VX\\Temp\\QBInput.ini";
  machine_.Write(kInput, "an older and much longer text that has to go, all of it, to the last byte");
  WriteQuoteBuilderInput(platform_);
  WriteQuoteBuilderInput(platform_);
  EXPECT_EQ(machine_.Read(kInput), "[Header]\r\naction=cancel\r\nQBversion=3.9N\r\n");
}

TEST_F(QuoteBuilderExchange, WithoutTempFolderTheInputIsAnError) {
  machine_.machine.GetFiles().RemoveFolder("C:\\Korvane\\TQ5-VX\\Temp");
  EXPECT_EQ(RaisedBy([&] { WriteQuoteBuilderInput(platform_); }), RuntimeError::PathNotFound);
}

TEST_F(QuoteBuilderExchange, ClearingDeletesTheThreeOutputsAndNothingElse) {
  const std::string temp = ExportMachine::kTemp;
  for (const char* name : {"output.ini", "QBOutput.ini", "ubout.ini", "QBInput.ini", "output.ini.bak"}) {
    machine_.Write(temp + name, "x");
  }
  ClearQuoteBuilderOutput(platform_);
  EXPECT_THAT(machine_.machine.GetFiles().ListFiles(temp), ElementsAre("output.ini.bak", "QBInput.ini"));
}

TEST_F(QuoteBuilderExchange, ClearingWhatIsNotThereIsNoError) {
  ClearQuoteBuilderOutput(platform_);
  machine_.Write(std::string(ExportMachine::kTemp) + "ubout.ini", "x");
  ClearQuoteBuilderOutput(platform_);
  EXPECT_FALSE(machine_.Exists(std::string(ExportMachine::kTemp) + "ubout.ini"));
}

class SavedSelection : public QuoteBuilderExchange {
 protected:
  static constexpr const char* kSaved = "C:\\Korvane\\TQ5-VX\\Temp\\HBInput.ini";

  std::string Save(std::string_view command) { return SaveUserSelection(platform_, xml::Document::Parse(command)); }
};

TEST_F(SavedSelection, IsTheElementAsADocumentOfItsOwn) {
  EXPECT_EQ(Save("<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>x</NAME><VALUE><UserSelectionTransfer>"
                 "<ProjectName>Tower</ProjectName><Unit id=\"1\">A</Unit></UserSelectionTransfer></VALUE></PARAMETER>"
                 "</COMMAND>"),
            "Tower");
  const xml::Document saved = xml::Document::Load(machine_.Read(kSaved));
  EXPECT_EQ(saved.Root().Xml(),
            "<UserSelectionTransfer><ProjectName>Tower</ProjectName><Unit id=\"1\">A</Unit></UserSelectionTransfer>");
}

TEST_F(SavedSelection, ReplacesAnEarlierOne) {
  machine_.Write(kSaved, std::string(5000, 'x'));
  Save("<c><UserSelectionTransfer><ProjectName>P</ProjectName></UserSelectionTransfer></c>");
  EXPECT_EQ(xml::Document::Load(machine_.Read(kSaved)).First("//ProjectName").Text(), "P");
}

TEST_F(SavedSelection, TheFirstProjectNameAtAnyDepthCounts) {
  EXPECT_EQ(
      Save("<c><ProjectName>outside</ProjectName><UserSelectionTransfer><a><ProjectName> In &amp; out </ProjectName>"
           "</a><ProjectName>later</ProjectName></UserSelectionTransfer></c>"),
      "In & out");
}

TEST_F(SavedSelection, AnEmptyProjectNameIsAProjectName) {
  EXPECT_EQ(Save("<c><UserSelectionTransfer><ProjectName/></UserSelectionTransfer></c>"), "");
}

TEST_F(SavedSelection, KeepsLettersBeyondAsciiAndEscapes) {
  EXPECT_EQ(Save("<c><UserSelectionTransfer><ProjectName>Zürich &lt;Süd&gt; \xE2\x82\xAC</ProjectName>"
                 "</UserSelectionTransfer></c>"),
            "Zürich <Süd> \xE2\x82\xAC");
  EXPECT_EQ(xml::Document::Load(machine_.Read(kSaved)).First("//ProjectName").Text(), "Zürich <Süd> \xE2\x82\xAC");
}

TEST_F(SavedSelection, WithoutSelectionIsObjectNotSetAndWritesNothing) {
  machine_.Write(kSaved, "as it was");
  for (const char* command : {"<COMMAND><NAME>n</NAME></COMMAND>", "", "not xml", "<userselectiontransfer/>"}) {
    EXPECT_EQ(RaisedBy([&] { Save(command); }), RuntimeError::ObjectNotSet) << command;
    EXPECT_THAT(DescriptionOfErrorIn([&] { Save(command); }), HasSubstr("//UserSelectionTransfer")) << command;
  }
  EXPECT_EQ(machine_.Read(kSaved), "as it was");
}

TEST_F(SavedSelection, WithoutProjectNameIsObjectNotSetAndWritesNothing) {
  machine_.Write(kSaved, "as it was");
  constexpr const char* kCommand = "<c><ProjectName>outside</ProjectName><UserSelectionTransfer/></c>";
  EXPECT_EQ(RaisedBy([&] { Save(kCommand); }), RuntimeError::ObjectNotSet);
  EXPECT_THAT(DescriptionOfErrorIn([&] { Save(kCommand); }), HasSubstr("//ProjectName"));
  EXPECT_EQ(machine_.Read(kSaved), "as it was");
}

}  // namespace
}  // namespace parvex::test
