#include "legacy_standin/projects/project_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "tests/support/full_disk.h"
#include "tests/support/raised_by.h"
#include "tests/unit/legacy_standin/standin_machine.h"

namespace parvex::standin {
namespace {

using test::RaisedBy;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

Unit UnitNamed(int tagId, const std::string& pdsg, const std::string& markFor) {
  Unit unit;
  unit.tagId = tagId;
  unit.keys = {{"PDSG", pdsg}, {"MarkFor", markFor}};
  return unit;
}

class ProjectStoreTest : public testing::Test, protected StandinMachine {
 protected:
  using Rows = std::vector<std::vector<std::string>>;

  /// The rows of a table of the project's database.
  Rows Table(const std::string& project, const std::string& table, const std::vector<std::string>& columns) {
    Rows rows;
    const auto database = machine.platform.projectDatabases->Open(store.Folder(project) + "\\Project.mdb");
    for (const auto set = database->OpenRecordSet("SELECT * FROM " + table); !set->AtEnd(); set->MoveNext()) {
      auto& row = rows.emplace_back();
      for (const std::string& column : columns) {
        row.push_back(set->Column(column).value_or("<null>"));
      }
    }
    return rows;
  }
  Rows TagIndex(const std::string& project) {
    return Table(project, "TagIndex", {"lTagId", "sAPP", "sAppVer", "sTagName"});
  }
  Rows Config(const std::string& project) { return Table(project, "Config", {"sPdsg", "sKey", "sValue"}); }

  std::vector<std::string> FileNames(const std::string& project) {
    std::vector<std::string> names;
    for (const ProjectFile& file : store.ReadFiles(project)) {
      names.push_back(file.path);
    }
    return names;
  }

  std::string Path(const std::string& project, const std::string& file) { return store.Folder(project) + "\\" + file; }

  void StoreContact(const std::string& project) {
    const auto database = machine.platform.projectDatabases->Open(Path(project, "project.mdb"));
    const auto rows = database->OpenRecordSet("SELECT * FROM Config");
    rows->AddNew();
    rows->SetColumn("sPdsg", "KDQ47");
    rows->SetColumn("sKey", "CompanyName");
    rows->SetColumn("sValue", "Größe & Söhne");
    rows->Update();
  }

  ProjectStore store{application};
};

TEST_F(ProjectStoreTest, ANewProjectHasNoUnitsAndEmptyTables) {
  store.Create("Clinic");
  EXPECT_THAT(store.ReadUnits("Clinic"), IsEmpty());
  EXPECT_THAT(Config("Clinic"), IsEmpty());
  EXPECT_THAT(TagIndex("Clinic"), IsEmpty());
  EXPECT_EQ(store.Folder("Clinic"), "C:\\Korvane\\TQ5-VX\\Projects\\Clinic");
}

TEST_F(ProjectStoreTest, NamesAreThoseOfFoldersWithADatabaseInUpperCasedOrder) {
  store.Create("b");
  store.Create("A");
  store.Create("Ärzte");
  machine.platform.files->CreateFolder("C:\\Korvane\\TQ5-VX\\Projects\\empty");
  EXPECT_THAT(store.Names(), ElementsAre("A", "b", "Ärzte"));
  EXPECT_FALSE(store.Exists("empty"));
}

TEST_F(ProjectStoreTest, LetterCaseOfANameIsIgnoredAndItsSpellingKept) {
  store.Create("Ärztehaus");
  EXPECT_TRUE(store.Exists("ÄRZTEHAUS"));
  EXPECT_EQ(store.NameOf("ärztehaus"), "Ärztehaus");
  EXPECT_EQ(RaisedBy([&] { store.Create("ärztehaus"); }), 58);
}

TEST_F(ProjectStoreTest, LettersOfEveryAlphabetHaveOneCase) {
  store.Create("Жилой дом Δ");
  EXPECT_EQ(store.NameOf("жИЛОЙ ДОМ δ"), "Жилой дом Δ");
  EXPECT_EQ(RaisedBy([&] { store.Create("ЖИЛОЙ ДОМ Δ"); }), 58);
  std::vector<ProjectFile> files = store.ReadFiles("Жилой дом Δ");
  files.push_back({"ж.blb", "one"});
  store.ReplaceFiles("Жилой дом Δ", files);
  files.back() = {"Ж.blb", "three"};
  store.ReplaceFiles("Жилой дом Δ", files);
  EXPECT_EQ(machine.platform.files->ReadAll(Path("Жилой дом Δ", "ж.blb")), "three") << "it is kept, and written over";
}

TEST_F(ProjectStoreTest, AnUnknownProjectIsRefusedByEveryOperation) {
  EXPECT_EQ(RaisedBy([&] { store.Folder("x"); }), 76);
  EXPECT_EQ(RaisedBy([&] { store.ReadUnits("x"); }), 76);
  EXPECT_EQ(RaisedBy([&] { store.WriteUnits("x", {}); }), 76);
  EXPECT_EQ(RaisedBy([&] { store.Remove("x"); }), 76);
  EXPECT_EQ(RaisedBy([&] { store.Copy("x", "y"); }), 76);
  EXPECT_EQ(RaisedBy([&] { store.ReplaceFiles("x", {}); }), 76);
  EXPECT_FALSE(store.Exists("y"));
}

TEST_F(ProjectStoreTest, ANameThatNoFolderCanHaveIsRefusedAndDoesNotExist) {
  for (const char* name : {"",     ".",   "..",  "a\\b", "a/b",     "..\\Bin", "C:", "C:\\x", "a*",   "a?",
                           "a\"b", "a|b", "<a>", "CON",  "nul.txt", "COM1",    "a.", "a ",    "a\tb", "a\\"}) {
    EXPECT_EQ(RaisedBy([&] { store.Create(name); }), 5) << name;
    EXPECT_FALSE(store.Exists(name)) << name;
    EXPECT_EQ(RaisedBy([&] { store.Remove(name); }), 76) << name;
  }
  EXPECT_EQ(RaisedBy([&] { store.Create(std::string(256, 'a')); }), 5);
  EXPECT_THAT(machine.platform.files->ListFolders("C:\\Korvane\\TQ5-VX\\Projects"), IsEmpty());
}

TEST_F(ProjectStoreTest, AFolderThatIsNoProjectStaysAsItIs) {
  machine.Write("C:\\Korvane\\TQ5-VX\\Projects\\Letters\\mine.txt", "mine");
  EXPECT_EQ(RaisedBy([&] { store.Create("letters"); }), 58);
  EXPECT_EQ(RaisedBy([&] { store.Remove("Letters"); }), 76);
  EXPECT_EQ(machine.Read("C:\\Korvane\\TQ5-VX\\Projects\\Letters\\mine.txt"), "mine");
}

TEST_F(ProjectStoreTest, UnitsAndTheIndexOfTagsSayTheSame) {
  store.Create("Clinic");
  StoreContact("Clinic");
  const std::vector<Unit> units = {UnitNamed(7, "RTU47", "Küche & Café"), UnitNamed(9, "XRC52", "CH-1")};
  store.WriteUnits("Clinic", units);
  EXPECT_EQ(store.ReadUnits("clinic"), units);
  EXPECT_THAT(TagIndex("Clinic"),
              ElementsAre(ElementsAre("7", "RTU", "47", "Küche & Café"), ElementsAre("9", "XRC", "52", "CH-1")));
  EXPECT_THAT(Config("Clinic"), ElementsAre(ElementsAre("KDQ47", "CompanyName", "Größe & Söhne")));

  store.WriteUnits("Clinic", {});
  EXPECT_THAT(TagIndex("Clinic"), IsEmpty());
  EXPECT_EQ(Config("Clinic").size(), 1u);
}

TEST_F(ProjectStoreTest, PropertiesAreKeptInTheirOrder) {
  store.Create("Clinic", {{"Location", "Ärztehaus"}});
  EXPECT_THAT(store.ReadProperties("Clinic"), ElementsAre(testing::Pair("Location", "Ärztehaus")));
  store.WriteProperties("Clinic", {{"b", "1"}, {"a", ""}});
  EXPECT_THAT(store.ReadProperties("Clinic"), ElementsAre(testing::Pair("b", "1"), testing::Pair("a", "")));
}

TEST_F(ProjectStoreTest, AProjectWithoutItsPlainFilesHasNoUnitsAndNoProperties) {
  machine.Write("C:\\Korvane\\TQ5-VX\\Projects\\Old\\PROJECT.MDB", MakeProjectDatabase({}, {}));
  EXPECT_THAT(store.ReadUnits("Old"), IsEmpty());
  EXPECT_THAT(store.ReadProperties("Old"), IsEmpty());
}

TEST_F(ProjectStoreTest, ACopyHasEveryFileAndIsAProjectOfItsOwn) {
  store.Create("Clinic");
  machine.Write(Path("Clinic", "tag7.blb"), std::string("\0\xFF", 2));
  machine.Write(Path("Clinic", "more\\notes.txt"), "n");
  store.Copy("clinic", "Copy");
  EXPECT_THAT(FileNames("Copy"),
              UnorderedElementsAre("project.mdb", "units.json", "properties.json", "tag7.blb", "more\\notes.txt"));
  EXPECT_EQ(machine.Read(Path("Copy", "tag7.blb")), std::string("\0\xFF", 2));
  store.WriteUnits("Copy", {UnitNamed(1, "RTU47", "a")});
  EXPECT_THAT(store.ReadUnits("Clinic"), IsEmpty());
  EXPECT_EQ(RaisedBy([&] { store.Copy("Copy", "CLINIC"); }), 58);
}

TEST_F(ProjectStoreTest, ARemovedProjectIsGoneWithItsFolder) {
  store.Create("Clinic");
  store.Remove("CLINIC");
  EXPECT_FALSE(machine.platform.files->IsFolder("C:\\Korvane\\TQ5-VX\\Projects\\Clinic"));
}

TEST_F(ProjectStoreTest, ReplacingTheFilesLeavesNoOthers) {
  store.Create("Clinic");
  machine.Write(Path("Clinic", "old.blb"), "old");
  store.ReplaceFiles("Clinic", {{"Project.mdb", MakeProjectDatabase({}, {})}, {"deep\\new.blb", "new"}});
  EXPECT_THAT(FileNames("Clinic"), UnorderedElementsAre("project.mdb", "deep\\new.blb"));
}

TEST_F(ProjectStoreTest, AChangeThatFailsPutsBackWhatItHadChanged) {
  store.Create("Clinic");
  machine.Write(Path("Clinic", "a.blb"), "a");
  // A folder in the place of a file: writing there fails.
  machine.platform.files->CreateFolder(Path("Clinic", "zz"));
  const std::string units = machine.Read(Path("Clinic", "units.json"));
  EXPECT_NE(RaisedBy([&] {
              store.ReplaceFiles("Clinic", {{"units.json", "other"}, {"new.blb", "n"}, {"zz", ""}});
            }),
            0);
  EXPECT_EQ(machine.Read(Path("Clinic", "units.json")), units);
  EXPECT_EQ(machine.Read(Path("Clinic", "a.blb")), "a");
  EXPECT_FALSE(machine.Exists(Path("Clinic", "new.blb")));
}

/// What a change left behind of every project: names, file paths and contents.
std::string StateOf(const ProjectStore& store) {
  std::string state;
  for (const std::string& name : store.Names()) {
    for (const ProjectFile& file : store.ReadFiles(name)) {
      state += name + "/" + file.path + "=" + file.bytes + "\n";
    }
  }
  return state;
}

TEST_F(ProjectStoreTest, AFullDiskLeavesTheProjectsAsTheyWere) {
  store.Create("Clinic");
  machine.Write(Path("Clinic", "tag1.blb"), "blob");
  const std::vector<std::pair<const char*, std::function<void(const ProjectStore&)>>> changes = {
      {"create", [](const ProjectStore& full) { full.Create("New"); }},
      {"copy", [](const ProjectStore& full) { full.Copy("Clinic", "Copy"); }},
      {"properties", [](const ProjectStore& full) {
         full.WriteProperties("Clinic", {{"Notes", "n"}});
       }}};
  for (const auto& [name, change] : changes) {
    const std::string before = StateOf(store);
    int room = 0;
    for (bool failed = true; failed; ++room) {
      test::FullDisk disk(machine.platform, room);
      const Platform full = disk.OfMachine();
      const Application onFullDisk{*full.registry, *full.files, *full.projectDatabases, *full.codePage, {}};
      failed = RaisedBy([&] { change(ProjectStore(onFullDisk)); }) == 61;
      EXPECT_EQ(failed, StateOf(store) == before) << name << " with room for " << room;
    }
    EXPECT_GT(room, 1) << name;
  }
  EXPECT_THAT(machine.platform.files->ListFolders("C:\\Korvane\\TQ5-VX\\Projects"),
              ElementsAre("Clinic", "Copy", "New"));
}

TEST_F(ProjectStoreTest, UnitsThatCannotBeStoredLeaveTheIndexAsItWas) {
  store.Create("Clinic");
  const std::string database = machine.Read(Path("Clinic", "project.mdb"));
  std::filesystem::permissions(machine.folder.Path() / "drive_c/Korvane/TQ5-VX/Projects/Clinic/units.json",
                               std::filesystem::perms::owner_read);
  EXPECT_EQ(RaisedBy([&] { store.WriteUnits("Clinic", {UnitNamed(1, "RTU47", "a")}); }), 75);
  EXPECT_TRUE(machine.Read(Path("Clinic", "project.mdb")) == database);
}

TEST_F(ProjectStoreTest, UnitsThatTheIndexCannotHoldLeaveTheProjectAsItWas) {
  store.Create("Clinic");
  const std::string database = machine.Read(Path("Clinic", "project.mdb"));
  EXPECT_EQ(RaisedBy([&] { store.WriteUnits("Clinic", {UnitNamed(1, "RTU47", std::string(256, 'a'))}); }), 3163);
  EXPECT_EQ(machine.Read(Path("Clinic", "project.mdb")), database);
  EXPECT_THAT(store.ReadUnits("Clinic"), IsEmpty());
}

}  // namespace
}  // namespace parvex::standin
