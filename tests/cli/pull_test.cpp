#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/cli/program.h"

namespace parvex::test {
namespace {

using SortedJson = nlohmann::json;

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// The bytes of a text in UTF-16 with byte order mark; the text is ASCII.
std::string Utf16(const std::string& text, bool littleEndian) {
  std::string bytes = littleEndian ? "\xFF\xFE" : "\xFE\xFF";
  for (const char c : text) {
    bytes += littleEndian ? std::string{c, '\0'} : std::string{'\0', c};
  }
  return bytes;
}

TEST(Pull, PrintsTheReplyAndNothingElse) {
  CliMachine machine;
  machine.SetWorkflow(WriteSelection("[Header]\nAction=OK\n"));
  const Outcome outcome = machine.Run({"pull", machine.Write("c.xml", CommandText("getHybrisXML"))});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_TRUE(Contains(outcome.out, "<PROJECT")) << outcome.out;
  EXPECT_EQ(outcome.err, "");
}

TEST(Pull, ExitsWith1AndPrintsAFailedReply) {
  CliMachine machine;
  const Outcome outcome = machine.Run({"pull", machine.Write("c.xml", CommandText("nonsense"))});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, FailedReply());
  EXPECT_EQ(outcome.err, "");
}

TEST(Pull, AnswersTheCommandsOfPullNgorlaWithTheFailedReply) {
  CliMachine machine;
  machine.SetWorkflow("");
  EXPECT_EQ(FailedReply(), machine.Run({"pull", machine.Write("c.xml", ExportCommand())}).out);
  EXPECT_EQ(FailedReply(), machine.Run({"pull", machine.Write("c.xml", CommandText("RebuildTag"))}).out);
  EXPECT_FALSE(machine.WorkflowRan());
}

TEST(PullNgorla, AnswersTheCommandsOfPullWithTheFailedReply) {
  CliMachine machine;
  for (const char* name : {"getProjectList", "getTagList", "getReport", "getOptions", "GetHybrisXML"}) {
    const Outcome outcome = machine.PullNgorla(machine.Write("c.xml", CommandText(name)));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, FailedReply()) << name;
  }
}

TEST(FailedCall, ExitsWith3AndTellsNumberSourceAndDescriptionOfTheFile) {
  CliMachine machine;
  for (const char* text : {"", "no xml", "<COMMAND/>", "<COMMAND><NAME>a & b</NAME></COMMAND>", "<A/><B/>"}) {
    const std::string file = machine.Write("c.xml", text);
    for (const char* command : {"pull", "pull-ngorla"}) {
      const Outcome outcome = machine.Run({command, file});
      EXPECT_EQ(outcome.status, 3) << text;
      EXPECT_EQ(outcome.out, "");
      EXPECT_TRUE(Contains(outcome.err, "0x800A005B")) << outcome.err;
      EXPECT_TRUE(Contains(outcome.err, "Parvex: the command document has no COMMAND/NAME")) << outcome.err;
      EXPECT_TRUE(Contains(outcome.err, file)) << outcome.err;
    }
  }
}

TEST(FailedCall, OfAnExportWithoutSelectionOrProjectName) {
  CliMachine machine;
  machine.SetWorkflow("");
  for (const std::string& text :
       {CommandText("getHybrisXMLNoUI"),
        std::string(
            "<COMMAND><NAME>getHybrisXMLNoUI</NAME><UserSelectionTransfer><X/></UserSelectionTransfer></COMMAND>")}) {
    const Outcome outcome = machine.PullNgorla(machine.Write("c.xml", text));
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(Contains(outcome.err, "0x800A005B")) << outcome.err;
  }
  EXPECT_FALSE(machine.WorkflowRan());
}

TEST(SeveralFiles, AreSentInOrderToOneProcessAndTheLastReplyDecides) {
  CliMachine machine;
  machine.SetWorkflow(WriteSelection("[Header]\nAction=CANCEL\n"));
  const std::string cancelled = machine.Write("a.xml", CommandText("getHybrisXML"));
  const std::string unknown = machine.Write("b.xml", CommandText("nonsense"));
  const Outcome outcome = machine.Run({"pull-ngorla", cancelled, unknown, cancelled});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, FailedReply("User Canceled") + FailedReply() + FailedReply("User Canceled"));
}

TEST(SeveralFiles, ExitWith0WhenTheLastReplyIsNoFailedOne) {
  CliMachine machine;
  machine.SetWorkflow("");
  const Outcome outcome = machine.Run(
      {"pull-ngorla", machine.Write("a.xml", CommandText("nonsense")), machine.Write("b.xml", ExportCommand())});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out.find(FailedReply()), 0u);
  EXPECT_TRUE(Contains(outcome.out, "<PROJECT"));
}

TEST(SeveralFiles, AreAllSentAfterAFailedCallWhichDecidesTheExitStatus) {
  CliMachine machine;
  machine.SetWorkflow("");
  const std::string broken = machine.Write("broken.xml", "<COMMAND");
  const Outcome outcome = machine.Run({"pull-ngorla", broken, machine.Write("a.xml", CommandText("nonsense")),
                                       machine.Write("b.xml", ExportCommand())});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out.find(FailedReply()), 0u);
  EXPECT_TRUE(Contains(outcome.out, "<PROJECT"));
  EXPECT_TRUE(Contains(outcome.err, broken));
  EXPECT_TRUE(machine.WorkflowRan());
}

TEST(SeveralFiles, KeepTheInstallPathsOfTheProcess) {
  CliMachine machine;
  // The first export's program moves BinPath away; what is read afresh sees it.
  machine.SetWorkflow("printf 'REGEDIT4\\r\\n' >\"$PARVEX_MACHINE/registry.reg\"");
  const std::string command = machine.Write("c.xml", ExportCommand());
  const Outcome outcome = machine.Run({"pull-ngorla", command, command});
  EXPECT_EQ(outcome.status, 1) << outcome.err;
  EXPECT_TRUE(Contains(outcome.out, "<PROJECT"));
  EXPECT_TRUE(Contains(outcome.out, FailedReply("System Error: Unable to read BinPath")));
}

TEST(StandardInput, IsReadForADash) {
  CliMachine machine;
  for (const char* command : {"pull", "pull-ngorla"}) {
    const Outcome outcome = machine.Run({command, "-"}, {.input = CommandText("nonsense")});
    EXPECT_EQ(outcome.status, 1) << outcome.err;
    EXPECT_EQ(outcome.out, FailedReply());
  }
}

TEST(StandardInput, IsTheSameForEachDashAndMayStandBetweenFiles) {
  CliMachine machine;
  const std::string broken = machine.Write("broken.xml", "");
  const Outcome outcome = machine.Run({"pull", "-", broken, "-"}, {.input = CommandText("nonsense")});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, FailedReply() + FailedReply());
}

TEST(StandardInput, ThatIsEmptyIsAFailedCall) {
  CliMachine machine;
  EXPECT_EQ(machine.Run({"pull-ngorla", "-"}).status, 3);
}

TEST(FileEncoding, OfPullFollowsByteOrderMarkAndDeclaration) {
  CliMachine machine;
  const std::string text = CommandText("nonsense");
  for (const std::string& bytes : {Utf16(text, true), Utf16(text, false), "\xEF\xBB\xBF" + text,
                                   "<?xml version=\"1.0\" encoding=\"windows-1252\"?><!-- \xFC -->" + text}) {
    EXPECT_EQ(FailedReply(), machine.Run({"pull", machine.Write("c.xml", bytes)}).out);
  }
}

TEST(FileEncoding, OfPullNgorlaFollowsByteOrderMarkThenUtf8ThenWindows1252) {
  CliMachine machine;
  machine.SetWorkflow("");
  const std::string utf8 = ExportCommand("Straße");
  std::string ansi = utf8;
  ansi.replace(ansi.find("\xC3\x9F"), 2, "\xDF");
  std::string utf16 = Utf16(ansi, true);  // U+00DF is the byte DF followed by 00
  for (const std::string& bytes : {utf8, ansi, utf16, "\xEF\xBB\xBF" + utf8}) {
    const Outcome outcome = machine.PullNgorla(machine.Write("c.xml", bytes));
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(Contains(outcome.out, "Straße")) << outcome.out;
  }
}

// Deliberate: the name is put into the document's text as it stands, and a text that does not parse is an empty
// document.
TEST(ProjectName, WithMarkupCharactersGivesAnEmptyReplyWithoutTagsAndAFailedCallWithOne) {
  CliMachine machine;
  for (const char* name : {"a &amp; b", "a &lt; b", "&quot;a&quot;"}) {
    const std::string file = machine.Write("c.xml", ExportCommand(name));
    machine.SetWorkflow("");
    const Outcome withoutTags = machine.PullNgorla(file);
    EXPECT_EQ(withoutTags.status, 0) << withoutTags.err;
    EXPECT_EQ(withoutTags.out, "") << name;
    machine.SetWorkflow(WriteSelection("[PartNumber1]\r\nPDSG=ABCDE\r\nPartNumber=P-1\r\n"));
    const Outcome withTag = machine.PullNgorla(file);
    EXPECT_EQ(withTag.status, 3) << name;
    EXPECT_EQ(withTag.out, "") << name;
    std::filesystem::remove(machine.Installed("Temp", "QBOutput.ini"));
  }
}

TEST(Registry, InUtf16IsRead) {
  CliMachine machine;
  machine.WriteRegistry(
      Utf16("Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47]\r\n"
            "\"BinPath\"=\"C:\\\\Korvane\\\\TQ5-VX\\\\Bin\\\\\"\r\n",
            true));
  machine.SetWorkflow("");
  EXPECT_EQ(machine.PullNgorla(machine.Write("c.xml", ExportCommand())).status, 0);
  EXPECT_TRUE(machine.WorkflowRan());
}

TEST(Registry, ThatIsAbsentIsAnUnreadableBinPath) {
  CliMachine machine;
  machine.SetWorkflow("");
  std::filesystem::remove(machine.Path("machine/registry.reg"));
  const Outcome outcome = machine.PullNgorla(machine.Write("c.xml", ExportCommand()));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, FailedReply("System Error: Unable to read BinPath"));
  EXPECT_EQ(outcome.out, machine.Run({"pull", machine.Write("c.xml", CommandText("getHybrisXML"))}).out);
  EXPECT_FALSE(machine.WorkflowRan());
}

TEST(Registry, WithoutTheValueIsAnUnreadableBinPath) {
  CliMachine machine;
  machine.WriteRegistry("REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47]\r\n");
  EXPECT_EQ(FailedReply("System Error: Unable to read BinPath"),
            machine.PullNgorla(machine.Write("c.xml", ExportCommand())).out);
}

TEST(Machine, PathsIgnoreLetterCaseAndDoubledBackslashes) {
  CliMachine machine;
  machine.WriteRegistry(
      "REGEDIT4\r\n\r\n[hkey_local_machine\\software\\KORVANE\\kdq47]\r\n"
      "\"binpath\"=\"c:\\\\KORVANE\\\\\\\\TQ5-VX\\\\bin\\\\\"\r\n");
  machine.SetWorkflow("");
  EXPECT_EQ(machine.PullNgorla(machine.Write("c.xml", ExportCommand())).status, 0);
  EXPECT_TRUE(machine.WorkflowRan());
}

TEST(Machine, MayBeAnEmptyFolder) {
  CliMachine machine;
  std::filesystem::create_directory(machine.Path("empty"));
  const std::string file = machine.Write("c.xml", CommandText("nonsense"));
  const Outcome outcome = RunParvex({"--machine", machine.Path("empty"), "pull", file});
  EXPECT_EQ(outcome.status, 1) << outcome.err;
  EXPECT_EQ(outcome.out, FailedReply());
}

TEST(Machine, MayLieInAFolderWithBlanksAndLettersBeyondAscii) {
  CliMachine machine;
  machine.SetWorkflow("");
  const std::string folder = machine.Path("Küche 2");
  std::filesystem::rename(machine.Folder(), folder);
  const Outcome outcome = RunParvex({"--machine", folder, "pull-ngorla", machine.Write("c.xml", ExportCommand())});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_TRUE(machine.WorkflowRan());
}

TEST(CommandFile, IsNotChangedByItsCommand) {
  CliMachine machine;
  machine.SetWorkflow("");
  const std::string text = "  <COMMAND>\n<NAME>getHybrisXML</NAME>\n</COMMAND>\n";
  const std::string file = machine.Write("c.xml", text);
  machine.Run({"pull", file});
  EXPECT_EQ(text, machine.Read("c.xml"));
}

TEST(Workflow, IsFoundBehindAPathWithBlanksAndLettersBeyondAscii) {
  CliMachine machine;
  machine.SetBinPath(
      "C:\\My K\xFC"
      "che\\TQ5-VX\\Bin\\");
  const std::filesystem::path folder = std::filesystem::path(machine.Folder()) / "drive_c" / "My Küche" / "TQ5-VX";
  std::filesystem::create_directories(folder / "Temp");
  machine.SetProgram(folder / "Bin" / "kdwfm470.exe", "exit 3");
  const std::string file = machine.Write("c.xml", ExportCommand());
  EXPECT_EQ(machine.Run({"--journal", machine.Path("j"), "pull-ngorla", file}).status, 0);
  EXPECT_EQ(machine.Read("started"), "/OrlaImportNoUI\n");
  const std::string journal = machine.Read("j");
  const std::size_t second = journal.find('\n') + 1;
  const SortedJson line = SortedJson::parse(journal.substr(second, journal.find('\n', second) - second));
  EXPECT_EQ(line["kind"], "process");
  EXPECT_EQ(line["command"], "C:\\My Küche\\TQ5-VX\\Bin\\\\kdwfm470.exe /OrlaImportNoUI");
  EXPECT_EQ(line["exitCode"], 3);
}

TEST(Workflow, IsWaitedFor) {
  CliMachine machine;
  machine.SetWorkflow("sleep 0.4; " + WriteSelection("[Header]\nAction=CANCEL\n"));
  EXPECT_EQ(FailedReply("User Canceled"), machine.PullNgorla(machine.Write("c.xml", ExportCommand())).out);
}

TEST(Workflow, IsStartedWithTheArgumentsOfTheCommandLine) {
  CliMachine machine;
  machine.SetWorkflow("");
  machine.PullNgorla(machine.Write("c.xml", ExportCommand()));
  machine.Run({"pull", machine.Write("d.xml", CommandText("getHybrisXML"))});
  EXPECT_EQ(machine.Read("started"), "/OrlaImportNoUI\n/OrlaProjectImport\n");
}

TEST(Workflow, ThatCancelsGivesUserCanceledInBothRuns) {
  CliMachine machine;
  machine.SetWorkflow(WriteSelection("[Header]\r\nAction= cancel \r\n"));
  for (const std::string& command : {ExportCommand(), CommandText("getHybrisXML")}) {
    const Outcome outcome = machine.PullNgorla(machine.Write("c.xml", command));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, FailedReply("User Canceled"));
  }
}

TEST(Workflow, ThatWritesNothingIsASuccessWithoutUserInterfaceAndCancelledWithIt) {
  CliMachine machine;
  machine.SetWorkflow("");
  EXPECT_EQ(machine.PullNgorla(machine.Write("c.xml", ExportCommand())).status, 0);
  EXPECT_EQ(FailedReply("User Canceled"), machine.PullNgorla(machine.Write("c.xml", CommandText("getHybrisXML"))).out);
}

TEST(Workflow, ThatIsMissingLeavesTheOutcomeToTheOutputFile) {
  CliMachine machine;
  EXPECT_EQ(machine.PullNgorla(machine.Write("c.xml", ExportCommand())).status, 0);
  EXPECT_EQ(FailedReply("User Canceled"), machine.PullNgorla(machine.Write("c.xml", CommandText("getHybrisXML"))).out);
}

TEST(Workflow, ThatFailsHasItsExitCodeIgnored) {
  CliMachine machine;
  machine.SetWorkflow(WriteSelection("[Header]\nAction=OK\n") + "\nexit 9");
  EXPECT_EQ(machine.PullNgorla(machine.Write("c.xml", ExportCommand())).status, 0);
}

TEST(Workflow, GivesTheTagsOfItsSelection) {
  CliMachine machine;
  machine.SetWorkflow(
      WriteSelection("[Header]\r\nAction=OK\r\n[PartNumber1]\r\nPDSG=ABCDE\r\nPartNumber=P-1\r\nMarkFor=M\xFCller\r\n"
                     "[PartNumber2]\r\nPDSG=XY\r\nPartNumber=P-2\r\nMarkFor=Second\r\n"));
  const Outcome outcome = machine.PullNgorla(machine.Write("c.xml", ExportCommand()));
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  const std::size_t first = outcome.out.find("Müller");
  EXPECT_NE(first, std::string::npos) << outcome.out;
  EXPECT_LT(first, outcome.out.find("Second"));
}

class JournalFile : public testing::Test {
 protected:
  // Sends one export, which runs one program, and gives the line that its journal has of that beside the start's.
  SortedJson LineOf(const std::string& command) {
    const std::string file = machine_.Write("c.xml", command);
    outcome_ = machine_.Run({"--journal", machine_.Path("j.jsonl"), "pull-ngorla", file});
    const std::vector<std::string> lines = machine_.Lines("j.jsonl");
    EXPECT_GE(lines.size(), 2u);
    return lines.size() < 2 ? SortedJson() : SortedJson::parse(lines[1]);
  }

  CliMachine machine_;
  Outcome outcome_;
};

constexpr const char* kProgram = "C:\\Korvane\\TQ5-VX\\Bin\\\\kdwfm470.exe";

TEST_F(JournalFile, HoldsAProgramWithItsCommandLineWindowStyleAndExitCode) {
  machine_.SetWorkflow("exit 5");
  const SortedJson line = LineOf(ExportCommand());
  EXPECT_EQ(outcome_.status, 0) << outcome_.err;
  EXPECT_EQ(line, (SortedJson{{"kind", "process"},
                              {"command", std::string(kProgram) + " /OrlaImportNoUI"},
                              {"windowStyle", 1},
                              {"exitCode", 5}}));
}

TEST_F(JournalFile, HoldsAProgramThatDoesNotExist) {
  const SortedJson line = LineOf(ExportCommand());
  EXPECT_EQ(line["command"].get<std::string>(), std::string(kProgram) + " /OrlaImportNoUI");
  EXPECT_EQ(line["exitCode"], -2147221451);  // 0x80040035: file not found
  EXPECT_EQ(line["error"]["number"], "0x800A0035");
}

TEST_F(JournalFile, HoldsAProgramThatCannotBeStarted) {
  WriteHostFile(machine_.Installed("Bin", "kdwfm470.exe"), "MZ no program of this system");
  const SortedJson line = LineOf(CommandText("getHybrisXML"));
  EXPECT_EQ(line["command"].get<std::string>(), std::string(kProgram) + " /OrlaProjectImport");
  EXPECT_EQ(line["exitCode"], -2147221499);  // 0x80040005: not a program
  EXPECT_EQ(line["error"]["number"], "0x800A0005");
}

TEST_F(JournalFile, ReplacesThatOfAnEarlierRunAndIsEmptyWhenNothingCrosses) {
  machine_.Write("j.jsonl", "earlier\n");
  const std::string file = machine_.Write("c.xml", CommandText("nonsense"));
  machine_.Run({"--journal", machine_.Path("j.jsonl"), "pull", file});
  EXPECT_TRUE(machine_.Exists("j.jsonl"));
  EXPECT_EQ(machine_.Read("j.jsonl"), "");
}

TEST_F(JournalFile, MayReplaceTheFileThatIsReplayed) {
  machine_.SetWorkflow("");
  const std::string journal = machine_.Write("j.jsonl", "{\"kind\":\"router\",\"answer\":\"x\",\"success\":true}\n");
  const std::string file = machine_.Write("c.xml", ExportCommand());
  const Outcome outcome = machine_.Run({"--replay", journal, "--journal", journal, "pull-ngorla", file});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(machine_.Lines("j.jsonl").size(), 3u) << "start and end of the program, and that it left nothing";
}

TEST_F(JournalFile, OfAReplayedRunStillHoldsRealPrograms) {
  machine_.SetWorkflow("");
  const std::string replay = machine_.Write("r.jsonl", "");
  const std::string file = machine_.Write("c.xml", ExportCommand());
  EXPECT_EQ(machine_.Run({"--replay", replay, "--journal", machine_.Path("j"), "pull-ngorla", file}).status, 0);
  EXPECT_TRUE(machine_.WorkflowRan());
  EXPECT_EQ(machine_.Lines("j").size(), 3u) << "start and end of the program, and that it left nothing";
}

TEST_F(JournalFile, HoldsAProgramThatStillRuns) {
  machine_.SetWorkflow("cp '" + machine_.Path("j") + "' '" + machine_.Path("seen") + "'");
  machine_.Run({"--journal", machine_.Path("j"), "pull-ngorla", machine_.Write("c.xml", ExportCommand())});
  const std::vector<std::string> lines = machine_.Lines("seen");
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(SortedJson::parse(lines[0]), (SortedJson{{"kind", "processStart"},
                                                     {"command", std::string(kProgram) + " /OrlaImportNoUI"},
                                                     {"windowStyle", 1}}));
}

}  // namespace
}  // namespace parvex::test
