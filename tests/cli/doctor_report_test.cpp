#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/cli/program.h"
#include "tests/cli/sample_walk.h"

namespace parvex::test {
namespace {

namespace fs = std::filesystem;

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using ReportJson = nlohmann::json;

class DoctorReport : public SampleWalk {
 protected:
  Outcome Run(std::vector<std::string> arguments, const Surroundings& surroundings = {}) const {
    arguments.insert(arguments.begin(), {"--machine", Sample()});
    return RunParvex(arguments, surroundings);
  }
  ReportJson Json(const std::vector<std::string>& before = {}, const Surroundings& surroundings = {}) const {
    std::vector<std::string> arguments = before;
    arguments.insert(arguments.end(), {"doctor", "--json"});
    return ReportJson::parse(Run(arguments, surroundings).out);
  }
};

TEST_F(DoctorReport, HasTheFactsAboutProgramAndMachineAsMembersToo) {
  const ReportJson all = Json();
  EXPECT_EQ("parvex " + all["version"].get<std::string>() + "\n", RunParvex({"--version"}).out);
  EXPECT_EQ(all["bitness"], 8 * sizeof(void*));
  EXPECT_EQ(all["codePage"], 1252);
  EXPECT_EQ(all["application"], "substitute");
  EXPECT_EQ(all["xmlParser"]["name"], "libxml2");
  EXPECT_THAT(all["xmlParser"]["version"].get<std::string>(), testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+"));
  EXPECT_EQ(all["databaseEngine"]["name"], "the built-in Jet reader");
  EXPECT_EQ(all["router"]["classId"], "{196AAAC4-3B30-44CD-BF13-4C212B3BCD3D}");
  EXPECT_EQ(all["router"]["interfaceId"], "{E3B59D45-E9F2-4852-95E0-C034FE2B0A22}");
  EXPECT_EQ(all["router"]["source"], "this build");
  EXPECT_EQ(all["recording"]["on"], false);
}

TEST_F(DoctorReport, SaysWhereCallsAreRecordedAndWhichSwitchSaysSo) {
  const auto detail = [](const ReportJson& all) {
    return std::find_if(all["checks"].begin(), all["checks"].end(),
                        [](const ReportJson& check) { return check["name"] == "recording"; })
        ->at("detail")
        .get<std::string>();
  };
  EXPECT_EQ(detail(Json()), "off");
  EXPECT_EQ(detail(Json({}, {.environment = {{"PARVEX_RECORD", "/tmp/cases"}}})),
            "on, into /tmp/cases (PARVEX_RECORD)");
  const std::string folder = Sample() + "/cases";
  EXPECT_EQ(Run({"recording", "on", folder}).status, 0);
  const ReportJson all = Json();
  EXPECT_EQ(detail(all), "on, into " + folder + " (HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Recording)");
  EXPECT_EQ(
      all["recording"],
      ReportJson({{"on", true}, {"folder", folder}, {"source", "HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Recording"}}));
}

TEST_F(DoctorReport, OfCopiedFilesFindsNoComponents) {
  EXPECT_THAT(Run({"doctor"}).out, HasSubstr("the substitute's, which stands for"));
  fs::remove(Sample() + "/sample-machine.txt");
  EXPECT_THAT(Run({"doctor"}).out,
              AllOf(HasSubstr("\nfailure    router               none: a folder of copied files"),
                    HasSubstr("\nfailure    builder              none: a folder of copied files"),
                    HasSubstr("\nfailure    report server        none: a folder of copied files")));
  EXPECT_EQ(Json()["application"], "copied-files");
  SetStandin("{}");
  EXPECT_EQ(Json()["application"], "substitute");
  EXPECT_EQ(Run({"doctor"}).status, 0);
}

TEST_F(DoctorReport, CreatesNothingThatMightOpenWindows) {
  EXPECT_EQ(Run({"--journal", Journal(), "doctor"}).status, 0);
  EXPECT_THAT(ReadHostFile(Journal()), AllOf(HasSubstr("getProjectList"), Not(HasSubstr("CKDBuilder")),
                                             Not(HasSubstr("CRemoteInterface")), Not(HasSubstr("kdwfm470"))));
}

TEST_F(DoctorReport, FindsAWorkflowProgramThatDoesNotStart) {
  const fs::path program = Installed("Bin/kdwfm470.exe");
  const auto state = [&] {
    const ReportJson all = Json();
    return *std::find_if(all["checks"].begin(), all["checks"].end(),
                         [](const ReportJson& check) { return check["name"] == "kdwfm470.exe"; });
  };
  const std::pair<const char*, const char*> cases[] = {
      {"#!/nowhere/sh\n", "is a script for a program that is not here"},
      {"text", "is no program"},
      {"", "is no program"},
      {"\x7F"
       "ELF\2\1\1\0\0\0\0\0\0\0\0\0\2\0\x08\0",
       "is a program for another processor"}};
  for (const auto& [bytes, reason] : cases) {
    WriteHostFile(program, bytes == cases[3].first ? std::string(bytes, 20) : bytes);
    EXPECT_EQ(state()["state"], "failure");
    EXPECT_THAT(state()["detail"].get<std::string>(), HasSubstr(reason));
  }
  WriteHostFile(program, "#!/bin/sh\n");
  EXPECT_EQ(state()["state"], "ok") << state();
}

std::string LowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

TEST_F(DoctorReport, TellsNoNamesOfPeopleComputersProjectsAndCustomers) {
  // Each place that a name may come from has "Plantagenet" in it.
  const fs::path home = fs::path(Sample()) / "home/plantagenet";
  const Surroundings surroundings = {.environment = {{"HOME", home.string()},
                                                     {"USER", "plantagenet"},
                                                     {"LOGNAME", "plantagenet"},
                                                     {"HOSTNAME", "plantagenet-pc"},
                                                     {"PARVEX_RECORD", (home / "Plantagenet Ltd/cases").string()}}};
  const auto report = [&] {
    const std::string text = Run({"doctor", "--report"}, surroundings).out;
    EXPECT_THAT(text, HasSubstr("of 23 checks"));
    EXPECT_THAT(LowerCase(text), Not(HasSubstr("plantagenet"))) << text;
    EXPECT_THAT(text, Not(HasSubstr(Sample())));
    return text;
  };
  const fs::path drive = fs::path(Sample()) / "drive_c";
  fs::rename(Installed("Projects/Riverside Clinic"), Installed("Projects/Plantagenet Clinic"));
  EXPECT_THAT(report(), AllOf(HasSubstr("parvex "), HasSubstr("on, into ~/.../..."), HasSubstr("libxml2"),
                              HasSubstr("C:\\Korvane\\TQ5-VX\\Projects\\...\\project.mdb")));

  fs::create_directories(drive / "Plantagenet Heating");
  fs::rename(drive / "Korvane", drive / "Plantagenet Heating/Korvane");
  const std::string key = "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47]\r\n";
  WriteHostFile(Sample() + "/registry.reg",
                key + "\"BinPath\"=\"C:\\\\Plantagenet Heating\\\\Korvane\\\\TQ5-VX\\\\Bin\\\\\"\r\n");
  EXPECT_THAT(report(), HasSubstr("C:\\...\\Korvane\\TQ5-VX\\Bin\\kdwfm470.exe"));

  const fs::path installed = drive / "Plantagenet Heating/Korvane/TQ5-VX";
  WriteHostFile(installed / "Bin/Options.xml", "<Plantagenet><Offer></Plantagenet>");
  fs::remove(installed / "Bin/Tools.xml");
  WriteHostFile(installed / "Projects/Plantagenet Clinic/project.mdb", "Plantagenet");
  WriteHostFile(Sample() + "/registry.reg",
                ReadHostFile(Sample() + "/registry.reg") +
                    "\r\n[HKEY_CURRENT_USER\\Software\\Parvex\\Router]\r\n\"ClassId\"=\"Plantagenet\"\r\n");
  EXPECT_THAT(report(), AllOf(HasSubstr("Options.xml does not parse"), HasSubstr("Tools.xml            error 53"),
                              HasSubstr("router identifiers   error 429")));

  char host[256] = {};
  gethostname(host, sizeof host - 1);
  if (std::string(host).size() > 6) {
    EXPECT_THAT(report(), Not(HasSubstr(host)));
  }
}

TEST_F(DoctorReport, IsTextAndNoJson) { EXPECT_EQ(Run({"doctor", "--report", "--json"}).status, 2); }

}  // namespace
}  // namespace parvex::test
