#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/text/terminal_text.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"
#include "tests/cli/program.h"
#include "tests/cli/sample_walk.h"

// What comes from outside and would control a terminal reaches none, whatever command shows it.

namespace parvex::test {
namespace {

using testing::HasSubstr;

// What a document can hold: C1, DEL, a turn of the direction of writing; and what only names and files can: a sequence
// that sets the window's title.
const std::string kInDocument =
    "\xC2\x9B"
    "31m\x7F\xE2\x80\xAEseen";
const std::string kAnywhere = "\x1B]0;title\x07" + kInDocument;

// The place and code of each character that a terminal would obey.
std::string ObeyedBy(const std::string& text) {
  std::string found;
  for (std::size_t pos = 0; pos < text.size();) {
    const std::size_t begin = pos;
    const char32_t code = NextCodePoint(text, pos);
    if ((ControlsTerminal(code) && code != U'\n') || !IsWellFormed(text.substr(begin, pos - begin))) {
      found += std::to_string(begin) + ": " + std::to_string(static_cast<unsigned>(code)) + "; ";
    }
  }
  return found;
}

class Terminals : public SampleWalk {
 protected:
  std::string Write(const std::string& name, const std::string& bytes) const {
    const std::string path = Sample() + "/" + name;
    WriteHostFile(path, bytes);
    return path;
  }
  Outcome Run(std::vector<std::string> arguments, const Surroundings& surroundings = {}) const {
    arguments.insert(arguments.begin(), {"--machine", Sample()});
    return RunParvex(arguments, surroundings);
  }
  // The command shows what came from outside, and nothing in it controls a terminal.
  void ExpectShown(const std::vector<std::string>& arguments, const Surroundings& surroundings = {}) const {
    const Outcome outcome = Run(arguments, surroundings);
    const std::string what = testing::PrintToString(arguments) + "\n" + outcome.out + outcome.err;
    EXPECT_THAT(outcome.out + outcome.err, HasSubstr("seen")) << what;
    EXPECT_EQ(ObeyedBy(outcome.out), "") << what;
    EXPECT_EQ(ObeyedBy(outcome.err), "") << what;
  }
  std::string Quote(const std::string& name) const {
    return "<PROJECT><ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME=\"" + name + "\"/></ATTRIBUTES_LIST><TAGS><TAG>" +
           "<ATTRIBUTES_LIST><MARKFOR>" + name + "</MARKFOR><PDSG>" + name + "</PDSG></ATTRIBUTES_LIST><BASEUNITS>" +
           "<BASEUNIT PARTNUMBER=\"" + name + "\"><ATTRIBUTES_LIST><SUPPLIER>" + name +
           "</SUPPLIER></ATTRIBUTES_LIST></BASEUNIT></BASEUNITS></TAG></TAGS></PROJECT>";
  }
};

TEST_F(Terminals, ArgumentsThatAnErrorNames) {
  const std::vector<std::vector<std::string>> commandLines = {
      {"pull", kAnywhere},
      {"export", "--project", "P", "--selection", kAnywhere},
      {"export", "--project", "P", "-o", "/" + kAnywhere + "/x"},
      {"return", kAnywhere},
      {"return", kAnywhere, "--tag", kAnywhere},
      {"show", kAnywhere},
      {"show", kAnywhere, kAnywhere},
      {"open", kAnywhere},
      {"--journal", "/" + kAnywhere + "/x", "doctor"},
      {"--replay", kAnywhere, "doctor"},
      {"base64", "encode", kAnywhere},
      {"base64", "decode", kAnywhere},
      {"router-ids", kAnywhere},
      {"recording", "on", "/dev/null/" + kAnywhere},
      {"machine", "create", "/dev/null/" + kAnywhere},
      {"case", "list", kAnywhere},
      {"case", "show", kAnywhere},
      {"case", "files", kAnywhere},
      {"case", "run", kAnywhere},
      {"case", "extract", kAnywhere, "x"},
      {"case", "mask", kAnywhere, "-o", "x"},
      {"commands", kAnywhere},
      {"completion", kAnywhere},
      {"manual", kAnywhere}};
  for (const std::vector<std::string>& arguments : commandLines) {
    ExpectShown(arguments);
  }
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {kAnywhere}, {"--" + kAnywhere}, {"pull", "--" + kAnywhere}, {"export", "--project", kAnywhere}}) {
    EXPECT_EQ(ObeyedBy(Run(arguments).err), "");
  }
  EXPECT_EQ(ObeyedBy(RunParvex({"--machine", kAnywhere, "doctor"}).out), "");
}

TEST_F(Terminals, NamesInQuotesAndInTheirDifferences) {
  const std::string before = Write("before.xml", Quote(kInDocument));
  const std::string after = Write("after.xml", Quote(kInDocument + "2"));
  ExpectShown({"show", before});
  ExpectShown({"show", before, after});
  ExpectShown({"open", before});
  ExpectShown({"open", before, "--json"});
  ExpectShown({"return", Write("other.xml", "<seen/>")});
  ExpectShown({"return", Write("failed.xml", "<LegacyORLA><returnError>-1</returnError><errorMessage>" + kInDocument +
                                                 "</errorMessage></LegacyORLA>")});
}

TEST_F(Terminals, WhatLiesInAFileThatIsOpened) {
  const std::string named = Write("ini", "[" + kAnywhere + "]\n" + kAnywhere + "=" + kAnywhere + "\n");
  ExpectShown({"open", named});
  ExpectShown({"open", "--json", named});
  ExpectShown({"open", Write("journal", "{\"kind\":\"" + kInDocument + "\"}\n")});
}

TEST_F(Terminals, FailedRepliesBoxesAndErrorsOfCalls) {
  ExpectShown({"export", "--project", kInDocument});
  const std::string noProject = Write("no-project.xml", CommandText("deleteProject", {{"projectName", kInDocument}}));
  EXPECT_EQ(ObeyedBy(Run({"pull", noProject}).err), "");
  const std::string unknown = Write("unknown.xml", CommandText(kInDocument));
  EXPECT_EQ(ObeyedBy(Run({"pull", unknown}).err), "");
  // RebuildTag says in a box which component cannot go back.
  const std::string rebuild = Write(
      "rebuild.xml",
      "<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER><PROJECT><TAGS><TAG><ATTRIBUTES_LIST><PDSG>38A</PDSG>"
      "</ATTRIBUTES_LIST><BASEUNITS><BASEUNIT><COMPONENTS><COMPONENT><DESCRIPTION>" +
          kInDocument +
          "</DESCRIPTION></COMPONENT></COMPONENTS></BASEUNIT></BASEUNITS></TAG></TAGS></PROJECT></PARAMETER>"
          "</PARAMETERS></COMMAND>");
  EXPECT_EQ(ObeyedBy(Run({"pull", rebuild}).err), "");
}

TEST_F(Terminals, WhatTheDoctorFinds) {
  std::string path = "C:\\\\" + kInDocument + "\\\\TQ5-VX\\\\Bin\\\\";
  WriteHostFile(Sample() + "/registry.reg",
                "\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47]"
                "\r\n\"BinPath\"=\"" +
                    path + "\"\r\n");
  ExpectShown({"doctor"});
  ExpectShown({"doctor", "--json"});
}

TEST_F(Terminals, TheSubstituteAndItsWorkflowProgram) {
  SetStandin("{\"workflow\": {\"" + ReplaceAll(ReplaceAll(kAnywhere, "\x1B", "\\u001b"), "\x07", "\\u0007") +
             "\": 1}}");
  ExpectShown({"doctor"});
}

TEST_F(Terminals, WhereCallsAreRecordedAndWhatTheCasesHold) {
  const std::string folder = Sample() + "/" + kAnywhere;
  ExpectShown({"recording", "on", folder});
  ExpectShown({"recording", "status"});
  Run({"export", "--project", kInDocument});
  std::string recorded;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    recorded = entry.path().string();
  }
  ASSERT_NE(recorded, "");
  ExpectShown({"case", "show", recorded});
  ExpectShown({"case", "show", "--json", recorded});
  EXPECT_EQ(ObeyedBy(Run({"case", "files", recorded}).out), "");
  EXPECT_EQ(ObeyedBy(Run({"case", "run", recorded}).out), "");
  EXPECT_EQ(ObeyedBy(Run({"case", "list", folder}).out), "");
  WriteHostFile(std::filesystem::path(folder) / (kAnywhere + ".pvxcase"), "no case");
  ExpectShown({"case", "list", folder});
  ExpectShown({"case", "run", folder});
}

TEST_F(Terminals, LinesOfAReplayThatNobodyAskedFor) {
  const std::string journal = Write(
      "journal", "{\"kind\":\"router\",\"request\":\"" + kInDocument + "\",\"success\":true,\"response\":\"\"}\n");
  ExpectShown({"--replay", journal, "doctor"});
  ExpectShown({"--replay", Write("journal2", "{\"" + kInDocument), "doctor"});
}

TEST_F(Terminals, ANameCannotPretendToBeALineOfItsOwn) {
  EXPECT_THAT(RunParvex({"show", "a\nparvex: all is well"}).err, HasSubstr("cannot read a parvex: all is well"));
  EXPECT_THAT(RunParvex({"commands", "a\nparvex: all is well"}).err, HasSubstr("a parvex: all is well"));
}

TEST_F(Terminals, GetDocumentsAsTextAndFilesGetTheirVeryBytes) {
  const std::string bytes =
      "a\x1B]0;t\x07\xC2\x9B"
      "b\xFF\xE2\x82\xAC\n";
  const Surroundings encoded = {.input = RunParvex({"base64", "encode"}, {.input = bytes}).out};
  EXPECT_EQ(RunParvex({"base64", "decode"}, encoded).out, bytes);
  Surroundings onTerminal = encoded;
  onTerminal.onTerminal = true;
  EXPECT_EQ(RunParvex({"base64", "decode"}, onTerminal).err,
            "a\xEF\xBF\xBD]0;t\xEF\xBF\xBD\xEF\xBF\xBD"
            "b\xEF\xBF\xBD\xE2\x82\xAC\r\n");
}

TEST_F(Terminals, GetTheProgramsOwnColoursAndNoOthers) {
  const Outcome outcome = RunParvex({"show", "-"}, {.input = Quote("seen"), .onTerminal = true});
  EXPECT_THAT(outcome.err, HasSubstr("\x1B[1mseen\x1B[0m"));
  std::string shown = ReplaceAll(outcome.err, "\r\n", "\n");
  for (const char* own : {"\x1B[0m", "\x1B[1m", "\x1B[2m"}) {
    shown = ReplaceAll(shown, own, "");
  }
  EXPECT_EQ(ObeyedBy(shown), "");
}

}  // namespace
}  // namespace parvex::test
