// What the program writes down about its own command line.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <sstream>

#include "tests/cli/program.h"

namespace parvex::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

// Commands of the program as its help lists them, one a line behind "Subcommands:".
std::vector<std::string> CommandsInHelp(std::vector<std::string> command) {
  command.push_back("--help");
  std::istringstream help(RunParvex(command).out);
  std::vector<std::string> names;
  bool isList = false;
  for (std::string line; std::getline(help, line);) {
    if (isList && line.starts_with("  ") && line[2] != ' ') {
      names.push_back(line.substr(2, line.find(' ', 2) - 2));
    }
    isList = line.starts_with("Subcommands:") || (isList && !line.empty());
  }
  return names;
}

class References : public testing::Test {
 protected:
  /// The lines that a script of bash writes; `completion` in it is the program's script.
  std::vector<std::string> Bash(const std::string& script) const {
    WriteHostFile(Path("completion"), RunParvex({"completion"}).out);
    WriteHostFile(Path("script"), "cd '" + folder_.Path().string() + "' && . ./completion\n" + script);
    EXPECT_EQ(system(("bash '" + Path("script") + "' >'" + Path("out") + "' 2>&1").c_str()), 0);
    std::istringstream out(ReadHostFile(Path("out")));
    std::vector<std::string> lines;
    for (std::string line; std::getline(out, line);) {
      lines.push_back(line);
    }
    return lines;
  }
  /// What bash offers for the last of these words.
  std::vector<std::string> Completed(const std::string& words) const {
    return Bash("COMP_WORDS=(parvex " + words + ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_parvex\n" +
                "for reply in \"${COMPREPLY[@]}\"; do echo \"$reply\"; done\n");
  }
  std::string Path(const std::string& name) const { return (folder_.Path() / name).string(); }

 private:
  TemporaryFolder folder_;
};

TEST_F(References, CompletionOffersTheCommandsAndOptionsOfTheCommandLine) {
  const std::vector<std::string> commands = CommandsInHelp({});
  EXPECT_GT(commands.size(), 8u);
  EXPECT_THAT(Completed("''"), IsSupersetOf(commands));
  EXPECT_THAT(Completed("pu"), ElementsAre("pull", "pull-ngorla"));
  EXPECT_THAT(Completed("base64 ''"), IsSupersetOf(CommandsInHelp({"base64"})));
  EXPECT_THAT(Completed("--machine somewhere --journal pull expo"), ElementsAre("export")) << "pull is a file's name";
  EXPECT_THAT(Completed("export --pr"), ElementsAre("--project"));
  EXPECT_THAT(Completed("doctor --"), Contains("--json"));
}

TEST_F(References, CompletionOffersTheCommandsOfTheProtocol) {
  EXPECT_THAT(Completed("commands getProject"), ElementsAre("getProjectList", "getProjectProperties"));
  EXPECT_THAT(Completed("commands Reb"), ElementsAre("RebuildTag"));
  EXPECT_THAT(Completed("help expo"), ElementsAre("export"));
  EXPECT_THAT(Completed("commands --schema re"), ElementsAre("requests", "replies"));
  EXPECT_THAT(Completed("lint --through pull-"), ElementsAre("pull-ngorla"));
}

TEST_F(References, CompletionOffersTheProgramsOwnOptionsBehindACommand) {
  EXPECT_THAT(Completed("export --"), IsSupersetOf({"--project", "--machine", "--journal", "--record", "--replay"}));
  EXPECT_THAT(Completed("case run --mach"), ElementsAre("--machine"));
}

TEST_F(References, CompletionOffersFilesAndFoldersWhereTheyAreAskedFor) {
  WriteHostFile(Path("quote one.xml"), "");
  std::filesystem::create_directory(Path("quotes"));
  for (const char* words : {"show quo", "return quo", "lint quo", "pull quo", "--replay quo", "show --html quo"}) {
    EXPECT_THAT(Completed(words), testing::UnorderedElementsAre("quote one.xml", "quotes")) << words;
  }
  EXPECT_THAT(Completed("--machine quo"), ElementsAre("quotes"));
  EXPECT_THAT(Completed("machine create quo"), ElementsAre("quotes"));
  EXPECT_THAT(Completed("export --project quo"), IsEmpty());
}

TEST_F(References, ManualTellsEveryCommandAndIsWellFormed) {
  const std::string manual = RunParvex({"manual"}).out;
  for (const std::string& command : CommandsInHelp({})) {
    std::string escaped;
    for (const char c : command) {
      escaped += c == '-' ? std::string("\\-") : std::string(1, c);
    }
    EXPECT_THAT(manual, HasSubstr("\n.SS \\fBparvex " + escaped)) << command;
  }
  for (const char* part : {"\\-\\-machine", "PARVEX_MACHINE", "NO_COLOR", "Exit status: 0", "\\-\\-html"}) {
    EXPECT_THAT(manual, HasSubstr(part));
  }
  if (system("command -v groff >/dev/null") != 0) {
    GTEST_SKIP() << "groff is not installed: the manual page is not formatted";
  }
  WriteHostFile(Path("parvex.1"), manual);
  EXPECT_THAT(Bash("groff -man -ww -z -Tutf8 -K utf8 parvex.1"), IsEmpty());
}

}  // namespace
}  // namespace parvex::test
