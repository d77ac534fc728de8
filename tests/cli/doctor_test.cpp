#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/cli/program.h"
#include "tests/cli/sample_walk.h"

namespace parvex::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using SortedJson = nlohmann::json;

class Doctor : public SampleWalk {
 protected:
  Outcome Run(const std::vector<std::string>& arguments = {}, const Surroundings& surroundings = {}) const {
    std::vector<std::string> all = {"--machine", Sample(), "doctor"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return RunParvex(all, surroundings);
  }
  /// The checks by name, of a run whose exit status fits what it found.
  std::map<std::string, SortedJson> Checks() const {
    const Outcome outcome = Run({"--json"});
    const SortedJson all = SortedJson::parse(outcome.out);
    std::map<std::string, SortedJson> checks;
    int failures = 0;
    int warnings = 0;
    for (const SortedJson& check : all["checks"]) {
      checks[check["name"]] = check;
      failures += check["state"] == "failure";
      warnings += check["state"] == "warning";
      EXPECT_EQ(check["hint"] == "", check["state"] == "ok" || check["state"] == "unchecked") << check;
    }
    EXPECT_EQ(failures, all["failures"]);
    EXPECT_EQ(warnings, all["warnings"]);
    EXPECT_EQ(failures > 0 ? 1 : 0, outcome.status);
    EXPECT_EQ(outcome.err, "");
    return checks;
  }
  void SetBinPath(const std::string& binPath) const {
    WriteHostFile(Sample() + "/registry.reg", "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47]\r\n" +
                                                  (binPath.empty() ? "" : "\"BinPath\"=\"" + binPath + "\"\r\n"));
  }
};

TEST_F(Doctor, FindsNothingWrongWithASampleMachineAndLeavesItAsItWas) {
  const std::string registry = ReadHostFile(Sample() + "/registry.reg");
  const Outcome outcome = Run();
  EXPECT_EQ(outcome.status, 0) << outcome.out;
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out, HasSubstr("\n0 failed, 0 with a warning, of 23 checks\n"));
  EXPECT_THAT(outcome.out, Not(HasSubstr("\x1b"))) << "no colours where nobody sees them";
  EXPECT_TRUE(std::filesystem::is_empty(Installed("Temp")));
  EXPECT_EQ(registry, ReadHostFile(Sample() + "/registry.reg"));
}

std::string NumberedLines(int count, const std::string& end = "\r\n") {
  std::string lines;
  for (int i = 0; i < count; ++i) {
    lines += "Key=Value" + end;
  }
  return lines;
}

struct Damage {
  const char* check;
  const char* named;                                              ///< in what was found
  std::function<void(const std::filesystem::path& root)> damage;  ///< root holds Bin, Temp and Projects
  const char* state = "failure";
};

TEST_F(Doctor, NamesWhatIsMissingOrDamagedWithAHint) {
  namespace fs = std::filesystem;
  const auto remove = [](const char* path) {
    return [path](const fs::path& root) { EXPECT_GT(fs::remove_all(root / path), 0u) << path; };
  };
  const auto write = [](const char* path, const std::string& bytes) {
    return [path, bytes](const fs::path& root) { WriteHostFile(root / path, bytes); };
  };
  const Damage damages[] = {
      {"temporary folder", "Temp does not exist", remove("Temp")},
      {"temporary folder", "parvex-doctor.tmp",
       [](const fs::path& root) {
         fs::create_directories(root / "Temp/parvex-doctor.tmp");  // which nobody can write a file over
       }},
      {"hand-over folder", "Temp does not exist", remove("Temp")},
      {"program folder", "parvex-doctor.tmp",
       [](const fs::path& root) { fs::create_directories(root / "Bin/parvex-doctor.tmp"); }},
      {"projects", "Projects does not exist", remove("Projects")},
      {"archives", "Archives does not exist", remove("Archives")},
      {"kdwfm470.exe", "kdwfm470.exe", remove("Bin/kdwfm470.exe")},
      {"kdwfm470.exe", "a Windows program, which does not run here", write("Bin/kdwfm470.exe", "MZ\x90")},
      {"UIKeys.txt", "UIKeys.txt", remove("Bin/UIKeys.txt")},
      {"UIKeys.txt", "has 102 lines", write("Bin/UIKeys.txt", NumberedLines(102))},
      {"UIKeys.txt", "has 102 lines", write("Bin/UIKeys.txt", NumberedLines(102, "\r"))},
      {"UIKeys.txt", "has 102 lines", write("Bin/UIKeys.txt", NumberedLines(101) + "no final line break")},
      {"Options.xml", "Options.xml", remove("Bin/Options.xml")},
      {"Tools.xml", "does not parse", write("Bin/Tools.xml", "<Tools>")},
      {"TagUpdateInfo.xml", "TagUpdateInfo.xml", remove("Bin/TagUpdateInfo.xml")},
      {"KDCustomRpt_Cfg.xml", "does not parse", write("Bin/KDCustomRpt_Cfg.xml", "")},
      {"database engine", "project.mdb", write("Projects/Riverside Clinic/project.mdb", "no database")},
  };
  for (const Damage& damage : damages) {
    ASSERT_EQ(RunParvex({"machine", "create", Sample()}).status, 0);
    damage.damage(Installed(""));
    const SortedJson check = Checks()[damage.check];
    EXPECT_EQ(damage.state, check["state"]) << check;
    EXPECT_THAT(check["detail"].get<std::string>(), HasSubstr(damage.named));
  }
}

TEST_F(Doctor, LooksAtTheProgramFolderThatTheRegistryNames) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"", "failure", "has no BinPath"},
      {"C:\\\\Bin\\\\", "failure", "too short"},
      {"C:\\\\Somewhere\\\\Else\\\\Bin\\\\", "failure", "TQ5-VX"},
      {"C:\\\\Korvane\\\\TQ5-VX\\\\Bin", "warning", "no final backslash"}};
  for (const auto& [binPath, state, named] : cases) {
    SetBinPath(binPath);
    const auto checks = Checks();
    EXPECT_EQ(state, checks.at("registry value")["state"]) << binPath;
    EXPECT_THAT(checks.at("registry value")["detail"].get<std::string>(), HasSubstr(named));
    EXPECT_EQ(std::string(state) == "failure", checks.contains("folders and files")) << "nothing to look at";
  }
}

TEST_F(Doctor, TellsTheRoutersIdentifiersAndWhereTheyComeFrom) {
  SortedJson check = Checks()["router identifiers"];
  EXPECT_EQ(check["state"], "ok");
  EXPECT_EQ(check["detail"],
            "class {196AAAC4-3B30-44CD-BF13-4C212B3BCD3D}, interface {E3B59D45-E9F2-4852-95E0-C034FE2B0A22}, from this "
            "build; they are the substitute's");
  const std::string registry = ReadHostFile(Sample() + "/registry.reg");
  const auto add = [&](const std::string& hive, const std::string& values) {
    std::string bytes = registry;
    for (const char c : "\r\n[" + hive + "\\Software\\Parvex\\Router]\r\n" + values) {
      bytes += {c, '\0'};
    }
    WriteHostFile(Sample() + "/registry.reg", bytes);
  };
  const std::string id = "{AAAAAAAA-0000-4000-8000-00000000000A}";
  add("HKEY_LOCAL_MACHINE", "\"ClassId\"=\"" + id + "\"\r\n\"InterfaceId\"=\"" + id + "\"\r\n");
  check = Checks()["router identifiers"];
  EXPECT_EQ(check["state"], "ok");
  EXPECT_EQ(check["detail"],
            "class " + id + ", interface " + id + ", from HKEY_LOCAL_MACHINE\\SOFTWARE\\Parvex\\Router");
  add("HKEY_CURRENT_USER", "\"ClassId\"=\"none\"\r\n\"InterfaceId\"=\"" + id + "\"\r\n");
  for (const char* name : {"router identifiers", "router"}) {
    check = Checks()[name];
    EXPECT_EQ(check["state"], "failure");
    EXPECT_THAT(check["detail"].get<std::string>(), HasSubstr("ClassId of HKEY_CURRENT_USER\\SOFTWARE\\Parvex"));
  }
  EXPECT_THAT(Run().out, HasSubstr("parvex router-ids FILE --save"));
}

TEST_F(Doctor, TriesTheComponentsOfTheLegacyApplication) {
  SetStandin(R"({"builder":{"missing":true},"reportServer":{"missing":true}})");
  EXPECT_EQ(Checks()["builder"]["state"], "failure");
  EXPECT_EQ(Checks()["report server"]["state"], "failure");
  SetStandin(R"({"router":{"refuse":["getProjectList"]}})");
  EXPECT_THAT(Checks()["router"]["detail"].get<std::string>(), HasSubstr("refuses getProjectList"));
  EXPECT_THAT(Run().out, AllOf(HasSubstr("\nfailure    router"), HasSubstr("If standin.json tells the substitute to")));
}

TEST_F(Doctor, ColoursItsTableOnATerminalUnlessToldNotTo) {
  const std::map<std::string, std::string> plain = {{"TERM", "xterm"}};
  EXPECT_THAT(Run({}, {.environment = plain, .onTerminal = true}).err, HasSubstr("\x1b[32mok"));
  for (const auto& [name, value] : {std::pair{"NO_COLOR", "1"}, std::pair{"TERM", "dumb"}}) {
    const Outcome outcome = Run({}, {.environment = {{name, value}}, .onTerminal = true});
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("ok "), Not(HasSubstr("\x1b")))) << name;
  }
  EXPECT_THAT(Run({}, {.environment = {{"TERM", "xterm"}, {"NO_COLOR", ""}}, .onTerminal = true}).err,
              HasSubstr("\x1b["))
      << "an empty NO_COLOR says nothing";
}

TEST_F(Doctor, OfAFolderThatDoesNotExistIsWrongUsage) {
  EXPECT_EQ(RunParvex({"--machine", Sample() + "/nowhere", "doctor"}).status, 2);
}

}  // namespace
}  // namespace parvex::test
