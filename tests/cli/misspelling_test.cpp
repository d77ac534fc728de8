// What the program says of misspelt words: those of its own command line and those of the protocol.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/cli/program.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct MisspeltLine {
  std::vector<std::string> arguments;
  std::string told;  ///< the first line
  std::string help;  ///< what the second names
};

TEST(Misspelling, OfACommandOrOptionIsToldWithWhatIsMeant) {
  const std::vector<MisspeltLine> lines = {
      {{"expot"}, "there is no command \"expot\"; did you mean \"export\"?", "parvex --help"},
      {{"Pull", "x.xml"}, "there is no command \"Pull\"; did you mean \"pull\"?", "parvex --help"},
      {{"--machine", "m", "doktor"}, "there is no command \"doktor\"; did you mean \"doctor\"?", "parvex --help"},
      {{"xyzzy"}, "there is no command \"xyzzy\"", "parvex --help"},
      {{"machine", "craete", "d"},
       "there is no command \"machine craete\"; did you mean \"create\"?",
       "parvex machine --help"},
      {{"getProjectList"},
       "there is no command \"getProjectList\"; it is one of the protocol, and \"parvex commands getProjectList\" "
       "tells "
       "about it",
       "parvex --help"},
      {{"export", "--projct", "P"},
       "\"parvex export\" has no option \"--projct\"; did you mean \"--project\"?",
       "parvex export --help"},
      {{"doctor", "--machin=m"},
       "\"parvex doctor\" has no option \"--machin\"; did you mean \"--machine\"?",
       "parvex doctor --help"},
      {{"export"}, "--project is required", "parvex export --help"},
      {{"show"}, "FILE is required", "parvex show --help"},
  };
  for (const MisspeltLine& line : lines) {
    const Outcome outcome = RunParvex(line.arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "parvex: " + line.told + "\nparvex: run \"" + line.help + "\" for more information\n");
  }
}

TEST(Misspelling, EveryLineOfAnErrorBeginsAlike) {
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {}, {"export"}, {"pull", "nowhere.xml"}, {"show", "nowhere.xml"}, {"--machine"}, {"commands", "x"}}) {
    std::istringstream err(RunParvex(arguments).err);
    std::size_t count = 0;
    for (std::string line; std::getline(err, line); ++count) {
      EXPECT_THAT(line, StartsWith("parvex: "));
    }
    EXPECT_GT(count, 0u) << testing::PrintToString(arguments);
  }
}

TEST(MisspeltCommand, IsAnsweredAsEverAndHintedAtOnStandardError) {
  const CliMachine machine;
  const std::string file = machine.Write("c.xml", CommandText("getProjectlist"));
  for (const char* entryPoint : {"pull", "pull-ngorla"}) {
    const Outcome outcome = machine.Run({entryPoint, file});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, FailedReply());
    EXPECT_EQ(outcome.err,
              "parvex: " + file + ": there is no command \"getProjectlist\"; did you mean \"getProjectList\"?\n");
  }
}

TEST(CommandOfTheOtherEntryPoint, IsAnsweredAsEverAndHintedAtOnStandardError) {
  const CliMachine machine;
  const std::string file = machine.Write("c.xml", CommandText("getProjectList"));
  const Outcome outcome = machine.Run({"pull-ngorla", file});
  EXPECT_EQ(outcome.out, FailedReply());
  EXPECT_EQ(outcome.err, "parvex: " + file + ": \"getProjectList\" is served by Pull (parvex pull) only\n");
  const std::string other = machine.Write("o.xml", ExportCommand());
  EXPECT_EQ(machine.Run({"pull", other}).err,
            "parvex: " + other + ": \"getHybrisXMLNoUI\" is served by PullNGORLA (parvex pull-ngorla) only\n");
}

TEST(RefusedCommand, IsNoMisspeltOne) {
  const CliMachine machine;
  const Outcome outcome = machine.Run({"pull", machine.Write("c.xml", CommandText("deleteProject"))});
  EXPECT_EQ(outcome.out, FailedReply());
  EXPECT_EQ(outcome.err, "") << "the command's name was changed on its way, and is not what was misspelt";
}

TEST(Help, OfACommandIsThatOfItsOption) {
  EXPECT_EQ(RunParvex({"help", "export"}).out, RunParvex({"export", "--help"}).out);
  EXPECT_EQ(RunParvex({"help", "machine", "create"}).out, RunParvex({"machine", "create", "--help"}).out);
  EXPECT_EQ(RunParvex({"help"}).out, RunParvex({"--help"}).out);
  const Outcome misspelt = RunParvex({"help", "expot"});
  EXPECT_EQ(misspelt.status, 2);
  EXPECT_EQ(misspelt.err, "parvex: there is no command \"expot\"; did you mean \"export\"?\n");
}

TEST(Help, OfShowNamesBothFiles) {
  const std::string help = RunParvex({"show", "--help"}).out;
  EXPECT_THAT(help, HasSubstr("Usage: parvex show [OPTIONS] FILE [LATER]\n"));
  EXPECT_THAT(help, HasSubstr("  LATER "));
  EXPECT_THAT(help, testing::Not(HasSubstr("(1x)")));
}

}  // namespace
}  // namespace parvex::test
