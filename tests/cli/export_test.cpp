#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <sstream>
#include <thread>

#include "seams/xml.h"
#include "tests/cli/program.h"
#include "tests/cli/sample_walk.h"

namespace parvex::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kClinic = "Riverside Clinic";

class Export : public SampleWalk {
 protected:
  Outcome Run(std::vector<std::string> arguments, const Surroundings& surroundings = {}) const {
    arguments.insert(arguments.begin(), {"--machine", Sample(), "export"});
    return RunParvex(arguments, surroundings);
  }
  std::string Output() const { return (outputs_.Path() / "quote.xml").string(); }
  std::string Write(const std::string& name, const std::string& text) const {
    WriteHostFile(outputs_.Path() / name, text);
    return (outputs_.Path() / name).string();
  }
  /// What lies in the folder of the output file.
  std::vector<std::string> Written() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(outputs_.Path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }
  static std::vector<std::string> MarksIn(const std::string& document) {
    std::vector<std::string> marks;
    for (const xml::Node& mark : xml::Document::Load(document).All("/PROJECT/TAGS/TAG//MARKFOR")) {
      marks.push_back(mark.Text());
    }
    return marks;
  }

 private:
  TemporaryFolder outputs_;
};

TEST_F(Export, OfAProjectIsWhatItsCommandDocumentGives) {
  const Outcome outcome = Run({"--project", kClinic, "-o", Output()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "") << "quiet where nobody watches";
  const std::string command = Sample() + "/commands/getHybrisXMLNoUI.xml";
  EXPECT_EQ(RunParvex({"--machine", Sample(), "pull-ngorla", command}).out, ReadHostFile(Output()));
  EXPECT_THAT(Written(), ElementsAre("quote.xml"));
}

TEST_F(Export, GoesToStandardOutputWhenNoFileIsNamed) {
  for (const auto& arguments : {std::vector<std::string>{"--project", kClinic},
                                std::vector<std::string>{"--project", kClinic, "--output", "-"}}) {
    EXPECT_EQ(MarksIn(Run(arguments).out).size(), 6u);
  }
}

TEST_F(Export, OfNamedTagsKeepsTheOrderOfTheirNames) {
  const Outcome outcome = Run({"--project", kClinic, "--tags", "Küche & Café <EG>", "RTU-1", "-o", "-"});
  EXPECT_THAT(MarksIn(outcome.out), ElementsAre("Küche & Café <EG>", "RTU-1")) << outcome.err;
}

TEST_F(Export, TakesTheSelectionFromAFileAloneOrInsideACommand) {
  const std::string selection =
      "<UserSelectionTransfer><TagNames><TagName>CH-1</TagName></TagNames></UserSelectionTransfer>";
  const std::string named =
      "<UserSelectionTransfer><ProjectName>Riverside Clinic</ProjectName><TagNames>"
      "<TagName>CH-1</TagName></TagNames></UserSelectionTransfer>";
  for (const std::string& text : {selection, named, "<COMMAND><PARAMETER>" + named + "</PARAMETER></COMMAND>"}) {
    const Outcome outcome = Run({"--project", kClinic, "--selection", Write("selection.xml", text)});
    EXPECT_THAT(MarksIn(outcome.out), ElementsAre("CH-1")) << text << outcome.err;
  }
}

TEST_F(Export, RefusesASelectionThatIsNoneOrThatOfAnotherProject) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"no xml", "no XML document"},
      {"<PROJECT/>", "holds no UserSelectionTransfer"},
      {"<UserSelectionTransfer><ProjectName>Harbour</ProjectName></UserSelectionTransfer>",
       "selects in the project \"Harbour\""}};
  for (const auto& [text, named] : cases) {
    const Outcome outcome = Run({"--project", kClinic, "--selection", Write("selection.xml", text), "-o", Output()});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.err, HasSubstr(named));
    EXPECT_THAT(Written(), ElementsAre("selection.xml"));
  }
}

TEST_F(Export, ThatFailsLeavesTheOutputAsItWasAndSaysWhy) {
  Write("quote.xml", "earlier");
  const Outcome outcome = Run({"--project", kClinic, "--tags", "nobody", "-o", Output()});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, HasSubstr("the export of \"Riverside Clinic\" failed: User Canceled"));
  EXPECT_EQ(ReadHostFile(Output()), "earlier");
  EXPECT_THAT(Written(), ElementsAre("quote.xml"));
}

TEST_F(Export, IntoAFolderThatDoesNotExistIsFoundOutBeforeAnythingIsSent) {
  const Outcome outcome = Run({"--project", kClinic, "-o", Output() + "/nowhere/q.xml", "--journal", Journal()});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_FALSE(std::filesystem::exists(Journal()));
  EXPECT_FALSE(std::filesystem::exists(Installed("Temp/HBInput.ini")));
}

TEST_F(Export, ThatCannotBeWrittenCompletelyIsAFailure) {
  EXPECT_EQ(Run({"--project", kClinic, "-o", "/dev/full"}).status, 3);
  EXPECT_EQ(Run({"--project", kClinic}, {.outputFile = "/dev/full"}).status, 3);
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

TEST_F(Export, FollowsNoLink) {
  const std::string real = Write("real.xml", "earlier");
  std::filesystem::create_symlink("real.xml", Output());
  const Outcome outcome = Run({"--project", kClinic, "-o", Output(), "--journal", Journal()});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr("quote.xml\": it is a link"));
  EXPECT_FALSE(std::filesystem::exists(Journal())) << "nothing was sent";
  EXPECT_TRUE(std::filesystem::is_symlink(Output()));
  EXPECT_EQ(ReadHostFile(real), "earlier");
}

TEST_F(Export, KeepsTheModeOfTheFileAndRefusesAReadOnlyOne) {
  Write("quote.xml", "earlier");
  std::filesystem::permissions(Output(), std::filesystem::perms(0600));
  EXPECT_EQ(Run({"--project", kClinic, "-o", Output()}).status, 0);
  EXPECT_EQ(std::filesystem::status(Output()).permissions(), std::filesystem::perms(0600));
  std::filesystem::permissions(Output(), std::filesystem::perms(0400));
  const Outcome outcome = Run({"--project", kClinic, "-o", Output()});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr("quote.xml\": it is read-only"));
  EXPECT_THAT(Written(), ElementsAre("quote.xml"));
}

// A file of that name was what an earlier version wrote into, whosever it was.
TEST_F(Export, LeavesAFileBesideTheOutputAlone) {
  Write("quote.xml.parvex-new", "the user's own");
  EXPECT_EQ(Run({"--project", kClinic, "-o", Output()}).status, 0);
  EXPECT_EQ(ReadHostFile(Output() + ".parvex-new"), "the user's own");
  EXPECT_THAT(Written(), ElementsAre("quote.xml", "quote.xml.parvex-new"));
}

TEST_F(Export, ToStandardOutputByItsNameIsWrittenThere) {
  const Outcome outcome = Run({"--project", kClinic, "-o", "/dev/stdout"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(MarksIn(outcome.out).size(), 6u);
}

TEST_F(Export, IsJournalledWhenAsked) {
  EXPECT_EQ(Run({"--project", kClinic, "-o", Output(), "--journal", Journal()}).status, 0);
  ASSERT_EQ(Journalled("process").size(), 1u);
  EXPECT_THAT(Journalled("process")[0]["command"].get<std::string>(), HasSubstr("/OrlaImportNoUI"));
}

// The lines of progress in what a terminal got, in their order.
std::vector<std::string> ToldIn(const std::string& shown) {
  std::vector<std::string> told;
  std::stringstream pieces(shown);
  for (std::string piece; std::getline(pieces, piece, '\r');) {
    if (piece.find_first_not_of(" \n") != std::string::npos) {
      told.push_back(piece);
    }
  }
  return told;
}

// The lock of the hand-over files is another process's for this long.
class HeldHandOver {
 public:
  HeldHandOver(const std::filesystem::path& temp, std::chrono::milliseconds duration)
      : path_(temp / "~parvex-lock.tmp"), file_(open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
    EXPECT_EQ(flock(file_, LOCK_EX), 0);
    release_ = std::thread([this, duration] {
      std::this_thread::sleep_for(duration);
      std::filesystem::remove(path_);
      close(file_);
    });
  }
  ~HeldHandOver() { release_.join(); }

 private:
  const std::filesystem::path path_;
  const int file_;
  std::thread release_;
};

TEST_F(Export, CountsTheTagsOfTheRunOnceAndInOrder) {
  std::vector<std::string> told = ToldIn(Run({"--project", kClinic, "-o", Output()}, {.onTerminal = true}).err);
  std::erase_if(told, [](const std::string& line) { return line.find("tag") == std::string::npos; });
  ASSERT_EQ(told.size(), 6u);
  const std::vector<std::string> marks = MarksIn(ReadHostFile(Output()));
  ASSERT_EQ(marks.size(), 6u);
  for (std::size_t i = 0; i < told.size(); ++i) {
    EXPECT_EQ(told[i], "Reading tag " + std::to_string(i + 1) + " of 6: " + marks[i]);
  }
}

TEST_F(Export, TellsHowLongAnotherRunIsWaitedFor) {
  const HeldHandOver held(std::filesystem::path(Sample()) / "drive_c/Korvane/TQ5-VX/Temp",
                          std::chrono::seconds(4));  // a busy machine takes its time to start a program
  const Outcome outcome = Run({"--project", kClinic, "-o", Output()}, {.onTerminal = true});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("\rAnother process is using the hand-over files"));
  EXPECT_THAT(outcome.err, HasSubstr("\rAnother process is using the hand-over files, 1 s"));
  EXPECT_THAT(ToldIn(outcome.err), Contains("The quote builder is running")) << "whose seconds are its own";
}

TEST_F(Export, TellsAWaitingUserWhatGoesOnAndLeavesNothingOfIt) {
  const Outcome outcome = Run({"--project", kClinic, "-o", Output()}, {.onTerminal = true});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.err, HasSubstr("\rThe quote builder is running"));
  EXPECT_THAT(outcome.err, Not(HasSubstr("\x1b"))) << "no escape sequences";
  const std::size_t end = outcome.err.rfind('\r');
  EXPECT_EQ(outcome.err.size() - 1, end);
  EXPECT_THAT(outcome.err.substr(outcome.err.rfind('\r', end - 1) + 1, end), testing::StartsWith(" "));
}

/// The substitute's workflow program in the place of which something else runs.
class ExportOfAnotherWorkflow : public Export {
 protected:
  ExportOfAnotherWorkflow() { WriteHostFile(Output(), kBefore); }

  void Workflow(const std::string& script) const {
    WriteHostFile(Program(), "#!/bin/sh\ncd \"${0%%/Bin/*}/Temp\"\n" + script);
    std::filesystem::permissions(Program(), std::filesystem::perms::owner_all);
  }
  std::filesystem::path Program() const {
    return std::filesystem::path(Sample()) / "drive_c/Korvane/TQ5-VX/Bin/kdwfm470.exe";
  }
  static std::string Leave(const std::string& output) { return "printf '" + output + "' > QBOutput.ini\n"; }

  void ExpectRefused(const std::string& finding, std::vector<std::string> arguments = {}) {
    arguments.insert(arguments.begin(), {"--project", kClinic, "-o", Output()});
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 3) << outcome.err;
    EXPECT_THAT(outcome.err,
                HasSubstr("parvex: the export of \"Riverside Clinic\" is not what was asked for: " + finding));
    EXPECT_EQ(ReadHostFile(Output()), kBefore);
  }

  static constexpr const char* kBefore = "the quote of yesterday";
};

TEST_F(ExportOfAnotherWorkflow, TellsHowLongTheQuoteBuilderRuns) {
  Workflow("sleep 1.3\n" + Leave("[Header]\\r\\nAction=ok\\r\\n"));
  const Outcome outcome = Run({"--project", kClinic, "-o", Output(), "--lenient"}, {.onTerminal = true});
  EXPECT_THAT(outcome.err, HasSubstr("\rThe quote builder is running, 1 s"));
}

constexpr const char* kOneTag =
    "[Header]\\r\\nAction=ok\\r\\n[PartNumber1]\\r\\nPartNumber=A\\r\\nPDSG=RTU47\\r\\nMarkFor=RTU-1\\r\\n";

TEST_F(ExportOfAnotherWorkflow, ThatIsMissingIsRefused) {
  std::filesystem::remove(Program());
  ExpectRefused("the quote builder was not started (error 53)\n");
}

TEST_F(ExportOfAnotherWorkflow, ThatEndsWithAnotherCodeIsRefused) {
  Workflow(Leave(kOneTag) + "exit 3\n");
  ExpectRefused("the quote builder ended with code 3\n");
}

TEST_F(ExportOfAnotherWorkflow, ThatIsKilledIsRefused) {
  Workflow(Leave(kOneTag) + "kill -9 $$\n");
  ExpectRefused("the quote builder ended with code -1073741815\n");
}

TEST_F(ExportOfAnotherWorkflow, ThatLeavesNothingIsRefused) {
  Workflow("exit 0\n");
  ExpectRefused("the quote builder left no output in \"C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini\"\n");
}

TEST_F(ExportOfAnotherWorkflow, ThatSelectsNoTagIsRefused) {
  Workflow(Leave("[Header]\\r\\nAction=ok\\r\\n"));
  ExpectRefused("the quote builder's output has no tag\n");
}

TEST_F(ExportOfAnotherWorkflow, ThatSelectsInAnotherProjectIsRefused) {
  Workflow(Leave("[Header]\\r\\nAction=ok\\r\\nProjectName=Quay\\r\\n[PartNumber1]\\r\\nPartNumber=A\\r\\n"));
  ExpectRefused("the quote builder's output is of the project \"Quay\", not of \"Riverside Clinic\"\n");
  Workflow(Leave(std::string(kOneTag) + "FileName=C:\\\\Korvane\\\\TQ5-VX\\\\Projects\\\\Quay\\\\a.dat\\r\\n"));
  ExpectRefused("the stored data of the tag \"RTU-1\" are of another project: ");
}

TEST_F(ExportOfAnotherWorkflow, ThatSelectsOtherTagsIsRefused) {
  Workflow(Leave(kOneTag));
  ExpectRefused("the quote builder's output has the tag \"RTU-1\", which was not asked for\n", {"--tags", "CH-1"});
  ExpectRefused("the quote builder's output lacks the tag \"CH-1\"\n", {"--tags", "CH-1", "RTU-1"});
}

TEST_F(ExportOfAnotherWorkflow, ThatSelectsATagTwiceIsRefused) {
  Workflow(Leave(std::string(kOneTag) + "[PartNumber2]\\r\\nPartNumber=A\\r\\nPDSG=RTU47\\r\\nMarkFor=RTU-1\\r\\n"));
  ExpectRefused("the quote builder's output has the tag \"RTU-1\" twice\n");
}

TEST_F(ExportOfAnotherWorkflow, IsTakenWhenAskedTo) {
  Workflow("exit 3\n");
  const Outcome outcome = Run({"--project", kClinic, "-o", Output(), "--lenient"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(ReadHostFile(Output()), HasSubstr("<TAGS/>"));
}

TEST_F(ExportOfAnotherWorkflow, AnswersAsTheProtocolAlwaysDidAndTheJournalTellsWhatWasFound) {
  Workflow("exit 3\n");
  const std::string journal = Output() + ".jsonl";
  const Outcome outcome = RunParvex(
      {"--machine", Sample(), "--journal", journal, "pull-ngorla", Sample() + "/commands/getHybrisXMLNoUI.xml"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("<TAGS/>"));
  EXPECT_THAT(ReadHostFile(journal),
              HasSubstr("{\"kind\":\"finding\",\"text\":\"the quote builder ended with code 3\"}"));
}

TEST_F(ExportOfAnotherWorkflow, WithTheTagsThatWereAskedForIsAnExport) {
  Workflow(Leave(kOneTag));
  EXPECT_EQ(Run({"--project", kClinic, "--tags", "RTU-1", "-o", Output()}).status, 0);
}

TEST_F(Export, NeedsAProjectAndEitherTagsOrASelection) {
  EXPECT_EQ(Run({}).status, 2);
  EXPECT_EQ(Run({"--project", kClinic, "--tags", "A", "--selection", Write("s.xml", "<A/>")}).status, 2);
}

}  // namespace
}  // namespace parvex::test
