#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "formats/text/text.h"
#include "tests/cli/program.h"

namespace parvex::test {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using DoctorJson = nlohmann::json;

/// A sample machine in a folder whose name a shell would take apart.
class DoctorCures : public testing::Test {
 protected:
  DoctorCures() { Renew(); }

  void Renew() const {
    fs::remove_all(Machine());
    EXPECT_EQ(RunParvex({"machine", "create", Machine()}).status, 0);
  }
  std::string Machine() const { return (folder_.Path() / "it's a machine").string(); }
  fs::path Installed(const std::string& path) const { return fs::path(Machine()) / "drive_c/Korvane/TQ5-VX" / path; }

  DoctorJson CheckNamed(const std::string& name) const {
    const DoctorJson all = DoctorJson::parse(RunParvex({"--machine", Machine(), "doctor", "--json"}).out);
    const auto found = std::find_if(all["checks"].begin(), all["checks"].end(),
                                    [&](const DoctorJson& check) { return check["name"] == name; });
    return found == all["checks"].end() ? DoctorJson() : *found;
  }

 private:
  TemporaryFolder folder_;
};

struct Illness {
  const char* check;
  std::function<void()> damage;
  const char* begin;  ///< of the cure's command, behind the path of the program, if that is what it runs
};

TEST_F(DoctorCures, HaveCommandsThatRunAsTheyAreWritten) {
  const auto remove = [&](const char* path) { return [this, path] { fs::remove_all(Installed(path)); }; };
  const auto write = [&](const char* path, const char* bytes) {
    return [this, path, bytes] { WriteHostFile(Installed(path), bytes); };
  };
  const auto block = [&](const char* path) { return [this, path] { fs::create_directories(Installed(path)); }; };
  const auto beside = [&](const char* name, const char* bytes) {
    return [this, name, bytes] { WriteHostFile(fs::path(Machine()) / name, bytes); };
  };
  const Illness illnesses[] = {
      {"temporary folder", remove("Temp"), "mkdir"},
      {"hand-over folder", remove("Temp"), "mkdir"},
      {"temporary folder", block("Temp/parvex-doctor.tmp"), "rmdir"},
      {"program folder", block("Bin/parvex-doctor.tmp"), "rmdir"},
      {"program folder", remove("Bin"), "machine create"},
      {"projects", remove("Projects"), "machine create"},
      {"archives", remove("Archives"), "mkdir"},
      {"kdwfm470.exe", remove("Bin/kdwfm470.exe"), "install"},
      {"kdwfm470.exe", write("Bin/kdwfm470.exe", "MZ\x90"), "install"},
      {"kdwfm470.exe",
       [&] { fs::permissions(Installed("Bin/kdwfm470.exe"), fs::perms::owner_read | fs::perms::owner_write); },
       "chmod"},
      {"UIKeys.txt", remove("Bin/UIKeys.txt"), "machine create"},
      {"Options.xml", write("Bin/Options.xml", "<Tools>"), "machine create"},
      {"database engine", write("Projects/Riverside Clinic/project.mdb", "no database"), "machine create"},
      {"registry value", beside("registry.reg", "REGEDIT4\r\n"), "machine create"},
      {"router identifiers",
       beside("registry.reg", "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Parvex\\Router]\r\n\"ClassId\"=\"x\"\r\n"),
       "printf"},
      {"router", beside("standin.json", R"({"router":{"refuse":["getProjectList"]}})"), "echo"},
      {"builder", beside("standin.json", R"({"builder":{"missing":true}})"), "echo"},
      {"report server", beside("standin.json", R"({"reportServer":{"missing":true}})"), "echo"},
      {"router", [&] { fs::remove(fs::path(Machine()) / "sample-machine.txt"); }, "echo"},
      {"builder", [&] { fs::remove(fs::path(Machine()) / "sample-machine.txt"); }, "echo"},
  };
  for (const Illness& illness : illnesses) {
    Renew();
    illness.damage();
    const DoctorJson check = CheckNamed(illness.check);
    ASSERT_EQ(check["state"], "failure") << check;
    EXPECT_NE(check["hint"], "") << check;
    const std::string command = check["command"];
    EXPECT_THAT(command, HasSubstr(illness.begin)) << check;
    EXPECT_EQ(system((command + " 2>&1").c_str()), 0) << command;
    EXPECT_EQ(CheckNamed(illness.check)["state"], "ok") << illness.check << ": " << command;
  }
}

TEST_F(DoctorCures, KeepTheProgramThatTheyReplace) {
  WriteHostFile(Installed("Bin/kdwfm470.exe"), "MZ\x90");
  const std::string command = CheckNamed("kdwfm470.exe")["command"];
  EXPECT_EQ(system(command.c_str()), 0);
  EXPECT_EQ(ReadHostFile(Installed("Bin/kdwfm470.exe~")), "MZ\x90");
}

TEST_F(DoctorCures, StandInTheTableBelowWhatWasFound) {
  fs::remove_all(Installed("Archives"));
  const std::string command = CheckNamed("archives")["command"];
  EXPECT_THAT(
      RunParvex({"--machine", Machine(), "doctor"}).out,
      HasSubstr("Archives does not exist\n                                Make the folder; archived projects are "
                "kept in it.\n                                " +
                command + "\n"));
}

TEST_F(DoctorCures, EndTheRunThatHoldsTheHandOverFiles) {
  EXPECT_EQ(CheckNamed("hand-over lock")["state"], "ok");
  const fs::path pidFile = fs::path(Machine()) / "pid";
  WriteHostFile(Installed("Bin/kdwfm470.exe"),
                "#!/bin/sh\necho $$ > '" + ReplaceAll(pidFile.string(), "'", "'\\''") + "'\nexec sleep 60\n");
  std::thread host([&] { RunParvex({"--machine", Machine(), "export", "--project", "Riverside Clinic"}); });
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  DoctorJson check;
  do {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    check = CheckNamed("hand-over lock");
  } while ((check["state"] == "ok" || !fs::exists(pidFile)) && std::chrono::steady_clock::now() < end);
  EXPECT_EQ(check["state"], "warning") << check;
  EXPECT_THAT(check["detail"].get<std::string>(), testing::MatchesRegex("process [0-9]+ \\(.*parvex\\) holds .*"));
  const std::string command = check["command"];
  EXPECT_THAT(command, testing::MatchesRegex("kill [0-9]+"));
  EXPECT_EQ(system(command.c_str()), 0);
  host.join();
  EXPECT_EQ(CheckNamed("hand-over lock")["state"], "ok");
  EXPECT_EQ(system(("kill " + ReadHostFile(pidFile)).c_str()), 0) << "the program that the export had started";
}

}  // namespace
}  // namespace parvex::test
