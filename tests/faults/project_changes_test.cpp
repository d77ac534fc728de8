#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "legacy_standin/projects/project_store.h"
#include "seams/automation_error.h"
#include "tests/faults/fault_injection.h"
#include "tests/support/fake_platform.h"

// A substitute that is killed while it changes a project: who uses the project next finds what was there before, or the
// whole change.

namespace parvex::standin {
namespace {

using test::CallFault;

constexpr const char* kProject = "Clinic";

Unit UnitOf(int tagId, const std::string& name) {
  Unit unit;
  unit.tagId = tagId;
  unit.keys = {{"PDSG", "RTU47"}, {"MarkFor", name}};
  return unit;
}

// A machine with one project of two tags.
struct MachineWithProject {
  MachineWithProject() {
    store.Create(kProject, {{"Location", "Quay 4"}});
    store.WriteUnits(kProject, {UnitOf(1, "RTU-1"), UnitOf(2, "RTU-2")});
    machine.Write(store.Folder(kProject) + "\\data.blb", "data");
  }

  // All that can be seen of the projects. That units and index agree shows in it.
  std::string State() {
    std::string state;
    for (const std::string& name : store.Names()) {
      state += name + ": units";
      std::string units;
      for (const Unit& unit : store.ReadUnits(name)) {
        units += " " + std::to_string(unit.tagId) + " " + FieldOf(unit.keys, "MarkFor");
      }
      std::string index;
      const auto database = application.projectDatabases.Open(store.Folder(name) + "\\project.mdb");
      for (const auto rows = database->OpenRecordSet("SELECT * FROM TagIndex"); !rows->AtEnd(); rows->MoveNext()) {
        index += " " + rows->Column("lTagId").value_or("") + " " + rows->Column("sTagName").value_or("");
      }
      state += units + (index == units ? "" : ", but in the index" + index) + "; files";
      for (const ProjectFile& file : store.ReadFiles(name)) {
        state += file.path.starts_with("~parvex-") ? "" : " " + file.path;
      }
      state += "\n";
    }
    return state;
  }

  test::FakeMachine machine;
  Application application{*machine.platform.registry,
                          *machine.platform.files,
                          *machine.platform.projectDatabases,
                          *machine.platform.codePage,
                          {}};
  ProjectStore store{application};
};

struct ProjectChange {
  const char* name;
  std::function<void(const ProjectStore&)> make;
};

class KilledProjectChange : public testing::TestWithParam<ProjectChange> {
 protected:
  static void MakeIn(MachineWithProject& place, CallFault fault) {
    test::WithCallFault(fault, [&] { GetParam().make(place.store); });
  }
};

TEST_P(KilledProjectChange, IsDoneOrNotDoneForWhoComesNext) {
  MachineWithProject undisturbed;
  const std::string before = undisturbed.State();
  const std::size_t calls = test::WithCallFault({}, [&] { GetParam().make(undisturbed.store); });
  const std::string after = undisturbed.State();
  ASSERT_NE(before, after);
  ASSERT_GE(calls, 3u);
  std::map<std::string, int> outcomes;
  for (const CallFault::Kind kind : {CallFault::Kind::KillBefore, CallFault::Kind::KillAfter}) {
    for (std::size_t at = 1; at <= calls; ++at) {
      SCOPED_TRACE((kind == CallFault::Kind::KillBefore ? "before call " : "after call ") + std::to_string(at));
      MachineWithProject place;
      const pid_t child = fork();
      if (child == 0) {
        MakeIn(place, {kind, at, 0});
        _exit(0);
      }
      int status = 0;
      ASSERT_EQ(waitpid(child, &status, 0), child);
      ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "the call was not reached";
      const std::string state = place.State();
      EXPECT_TRUE(state == before || state == after) << state;
      ++outcomes[state];
      if (state == before) {
        EXPECT_NO_THROW(MakeIn(place, {}));
        EXPECT_EQ(place.State(), after);
      }
    }
  }
  EXPECT_EQ(outcomes.size(), 2u);
}

INSTANTIATE_TEST_SUITE_P(
    Of, KilledProjectChange,
    testing::Values(ProjectChange{"TagNames",
                                  [](const ProjectStore& store) {
                                    store.WriteUnits(kProject, {UnitOf(1, "RTU-1"), UnitOf(2, "new")});
                                  }},
                    ProjectChange{"AllFiles",
                                  [](const ProjectStore& store) {
                                    const std::vector<Unit> units = {UnitOf(7, "other")};
                                    store.ReplaceFiles(kProject, {{"project.mdb", MakeProjectDatabase({}, {})},
                                                                  {"units.json", FormatUnits(units)},
                                                                  {"deep\\other.blb", "other"}});
                                  }},
                    ProjectChange{"Making",
                                  [](const ProjectStore& store) {
                                    store.Create("New", {{"Notes", "n"}});
                                  }},
                    ProjectChange{"Copying", [](const ProjectStore& store) { store.Copy(kProject, "Copy"); }},
                    ProjectChange{"Removing", [](const ProjectStore& store) { store.Remove(kProject); }}),
    [](const testing::TestParamInfo<ProjectChange>& info) { return std::string(info.param.name); });

TEST(ProjectChanges, ARemovalThatWasKilledLeavesNoFileBehindWhoAsksNext) {
  MachineWithProject undisturbed;
  const std::size_t calls = test::WithCallFault({}, [&] { undisturbed.store.Remove(kProject); });
  int halfway = 0;
  for (std::size_t at = 1; at <= calls; ++at) {
    MachineWithProject place;
    const std::filesystem::path folder = place.machine.folder.Path() / "drive_c/Korvane/TQ5-VX/Projects" / kProject;
    ASSERT_TRUE(std::filesystem::is_directory(folder));
    const pid_t child = fork();
    if (child == 0) {
      test::WithCallFault({CallFault::Kind::KillAfter, at, 0}, [&] { place.store.Remove(kProject); });
      _exit(0);
    }
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    const bool isProject = std::filesystem::exists(folder / "project.mdb");
    halfway += !isProject && std::filesystem::exists(folder / "units.json") ? 1 : 0;
    EXPECT_EQ(place.store.Exists(kProject), isProject);
    if (!isProject) {
      EXPECT_TRUE(!std::filesystem::exists(folder) || std::filesystem::is_empty(folder)) << "call " << at;
    }
  }
  EXPECT_GT(halfway, 0);
}

// What an archive of somebody else calls so is no change that was written down here.
TEST(ProjectChanges, AreNotTakenFromAnArchive) {
  MachineWithProject place;
  place.store.ReplaceFiles(kProject, {{"project.mdb", MakeProjectDatabase({}, {})}, {"~Change.zip", "no archive"}});
  EXPECT_EQ(place.State(), "Clinic: units; files project.mdb\n");
}

}  // namespace
}  // namespace parvex::standin
