#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "formats/zip/zip_writer.h"
#include "legacy_standin/installation/standin_settings.h"
#include "legacy_standin/projects/project_store.h"
#include "legacy_standin/router/project_archive.h"
#include "seams/automation_error.h"
#include "tests/faults/case_bytes.h"
#include "tests/faults/limited_child.h"
#include "tests/support/fake_platform.h"

// JSON files of the substitute that were made to do harm, wherever it reads one: each is refused with an error that
// names the file and what is wrong, quickly and in little memory.

namespace parvex::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr const char* kFolderOfProject = "C:\\Korvane\\TQ5-VX\\Projects\\Tower\\";

struct JsonAttack {
  std::string name;
  std::function<std::string(const std::string& key)> make;  ///< `key` is one that the file may have
  std::string told;
};

void PrintTo(const JsonAttack& attack, std::ostream* out) { *out << attack.name; }

std::string ManyKeys(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += (i == 0 ? "{\"k" : ",\"k") + std::to_string(i) + "\":0";
  }
  return text + "}";
}

class HostileJson : public testing::TestWithParam<JsonAttack> {
 protected:
  FakeMachine machine_;
  standin::Application application_{*machine_.platform.registry,
                                    *machine_.platform.files,
                                    *machine_.platform.projectDatabases,
                                    *machine_.platform.codePage,
                                    {}};

  void ExpectRefused(const std::string& fileName, const std::function<void()>& read) {
    const ChildOutcome outcome = InLimitedChild([&] {
      read();
      return std::string("read");
    });
    ExpectQuick(outcome);
    EXPECT_THAT(outcome.answer, AllOf(HasSubstr(fileName + ": "), HasSubstr(GetParam().told)));
  }
};

TEST_P(HostileJson, AsUnitsOfAProjectIsRefused) {
  machine_.Write(std::string(kFolderOfProject) + "project.mdb", "");
  machine_.Write(std::string(kFolderOfProject) + "units.json", GetParam().make("units"));
  ExpectRefused("units.json", [&] { standin::ProjectStore(application_).ReadUnits("Tower"); });
}

TEST_P(HostileJson, AsPropertiesOfAProjectIsRefused) {
  machine_.Write(std::string(kFolderOfProject) + "project.mdb", "");
  machine_.Write(std::string(kFolderOfProject) + "properties.json", GetParam().make("Customer"));
  ExpectRefused("properties.json", [&] { standin::ProjectStore(application_).ReadProperties("Tower"); });
}

TEST_P(HostileJson, AsUnitsInAnArchiveIsRefused) {
  ZipWriter writer;
  writer.Add("Tower/project.mdb", "", true);
  writer.Add("Tower/units.json", GetParam().make("units"), true);
  machine_.Write("C:\\Tower.zip", writer.Finish());
  ExpectRefused("units.json", [&] { standin::GroupsIn(standin::ReadProjectArchive(application_, "C:\\Tower.zip")); });
}

TEST_P(HostileJson, AsSettingsOfTheSubstituteIsRefused) {
  WriteHostFile(machine_.folder.Path() / "standin.json", GetParam().make("router"));
  ExpectRefused("standin.json", [&] { standin::ReadStandinSettings(machine_.folder.Path()); });
}

std::string Under(const std::string& key, const std::string& value) { return "{\"" + key + "\":" + value + "}"; }

INSTANTIATE_TEST_SUITE_P(
    OfTheSubstitute, HostileJson,
    testing::Values(JsonAttack{"ThatIsDeep",
                               [](const std::string& key) {
                                 return Under(key, Repeat("[", 1'000'000) + Repeat("]", 1'000'000));
                               },
                               "it is nested too deep"},
                    JsonAttack{"OfDeepObjects",
                               [](const std::string& key) {
                                 return Under(key, Repeat("{\"a\":", 300'000) + "0" + Repeat("}", 300'000));
                               },
                               "it is nested too deep"},
                    JsonAttack{"OfManyValues",
                               [](const std::string& key) { return Under(key, "[0" + Repeat(",0", 10'000'000) + "]"); },
                               "it holds more values than are read"},
                    JsonAttack{"OfManyKeys", [](const std::string& key) { return Under(key, ManyKeys(100'000)); },
                               "an object has too many keys"},
                    JsonAttack{"OfMostValues",
                               [](const std::string& key) {
                                 return Under(key, "[" + Repeat("{\"k\":0,\"l\":0},", 160'000) + "0]");
                               },
                               " has to be "},
                    JsonAttack{"OfManyBytes",
                               [](const std::string& key) { return Under(key, "\"" + Repeat("a", 60'000'000) + "\""); },
                               "it has more than 33554432 bytes"}),
    [](const testing::TestParamInfo<JsonAttack>& info) { return info.param.name; });

}  // namespace
}  // namespace parvex::test
