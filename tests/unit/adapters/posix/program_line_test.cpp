#include "adapters/posix/program_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex::posix {
namespace {

using testing::ElementsAre;

struct ArgumentsRow {
  const char* text;
  std::vector<std::string> arguments;
};

TEST(SplitArguments, FollowsTheRulesOfCPrograms) {
  const ArgumentsRow kRows[] = {
      {"", {}},
      {" \t ", {}},
      {"a b\tc  d", {"a", "b", "c", "d"}},
      {"\"a b\" c", {"a b", "c"}},
      {"a\"b c\"d", {"ab cd"}},
      {"\"\" a", {"", "a"}},
      {"\"open end", {"open end"}},
      {R"(C:\a\b "C:\a b\c")", {R"(C:\a\b)", R"(C:\a b\c)"}},
      {R"(\"a\")", {"\"a\""}},
      {R"("a\" b" c)", {"a\" b", "c"}},
      {R"(a\\b)", {R"(a\\b)"}},
      {R"("C:\a b\\" c)", {R"(C:\a b\)", "c"}},
      {R"("a\\\"b")", {R"(a\"b)"}},
      {R"("a""b")", {"a\"b"}},
      {R"(a\)", {R"(a\)"}},
      {"/MARG=\"x y\",2", {"/MARG=x y,2"}},
      {"a\nb", {"a\nb"}},
  };
  for (const ArgumentsRow& row : kRows) {
    EXPECT_EQ(SplitArguments(row.text), row.arguments) << row.text;
  }
}

class CommandLineTest : public testing::Test {
 protected:
  CommandLineTest() {
    for (const char* folder : {"", "Program Files/Korvane", "Korvane", "dir.exe"}) {
      std::filesystem::create_directories(Host(folder));
    }
    for (const char* program : {"Program Files/Korvane/wf.exe", "Program Files/Korvane/plain", "Korvane/both",
                                "Korvane/both.exe", "root.exe"}) {
      test::WriteHostFile(Host(program), "");
    }
  }

  std::filesystem::path Host(const std::string& name) const { return folder.Path() / "drive_c" / name; }

  std::string Program(std::string_view line) {
    return CommandLine::Parse(line, machine).program.lexically_relative(Host("")).string();
  }
  int Error(std::string_view line) {
    return test::RaisedBy([&] { CommandLine::Parse(line, machine); });
  }

  test::TemporaryFolder folder;
  MachineFolder machine{folder.Path()};
};

TEST_F(CommandLineTest, TriesEachBlankAsTheEndOfTheProgram) {
  EXPECT_EQ(Program("C:\\Program Files\\Korvane\\wf.exe"), "Program Files/Korvane/wf.exe");
  EXPECT_EQ(Program("C:\\Program Files\\Korvane\\wf /a b"), "Program Files/Korvane/wf.exe");
  EXPECT_EQ(Program("C:\\Program Files\\Korvane\\wf\t/a"), "Program Files/Korvane/wf.exe");
}

TEST_F(CommandLineTest, TheShortestProgramWins) {
  test::WriteHostFile(Host("Program"), "");
  EXPECT_EQ(Program("C:\\Program Files\\Korvane\\wf.exe"), "Program");
  test::WriteHostFile(Host("Program.exe"), "");
  EXPECT_EQ(Program("C:\\Program Files\\Korvane\\wf.exe"), "Program.exe");
}

TEST_F(CommandLineTest, AQuotedProgramEndsAtItsQuote) {
  const CommandLine line = CommandLine::Parse("\"C:\\Program Files\\Korvane\\wf.exe\" /a \"b c\"", machine);
  EXPECT_EQ(line.program, Host("Program Files/Korvane/wf.exe"));
  EXPECT_THAT(line.arguments, ElementsAre("C:\\Program Files\\Korvane\\wf.exe", "/a", "b c"));
  EXPECT_EQ(Error("\"C:\\Program Files\" \\Korvane\\wf.exe"), 53);
}

TEST_F(CommandLineTest, AnOpenQuoteEndsWithTheLine) {
  EXPECT_EQ(Program("\"C:\\Program Files\\Korvane\\wf.exe"), "Program Files/Korvane/wf.exe");
}

TEST_F(CommandLineTest, TheProgramsNameIsTheFirstArgumentAsWritten) {
  EXPECT_THAT(CommandLine::Parse("  c:\\program files\\korvane\\WF /a", machine).arguments,
              ElementsAre("c:\\program files\\korvane\\WF", "/a"));
}

TEST_F(CommandLineTest, ExeIsPreferredForANameWithoutExtension) {
  EXPECT_EQ(Program("C:\\Korvane\\both"), "Korvane/both.exe");
  EXPECT_EQ(Program("\"C:\\Program Files\\Korvane\\plain\""), "Program Files/Korvane/plain");
}

TEST_F(CommandLineTest, ExeIsNotAddedToAnExtension) { EXPECT_EQ(Error("C:\\Korvane\\both.com"), 53); }

TEST_F(CommandLineTest, ANameWithoutFolderIsLookedForInTheCurrentFolder) { EXPECT_EQ(Program("root /a"), "root.exe"); }

TEST_F(CommandLineTest, WhatIsNoFileIsNoProgram) {
  for (const char* line :
       {"", "   ", "\"\"", "\"", "C:\\no.exe", "C:\\dir.exe", "C:\\Korvane", "\\\\server\\a.exe", "nul"}) {
    EXPECT_EQ(Error(line), 53) << line;
  }
}

}  // namespace
}  // namespace parvex::posix
