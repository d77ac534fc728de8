#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "formats/zip/zip_writer.h"
#include "tests/cli/program.h"
#include "tests/cli/sample_walk.h"

// `parvex open` on the files of a sample machine that was worked with.

namespace parvex::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class Open : public SampleWalk {
 protected:
  std::string Write(const std::string& name, const std::string& bytes) const {
    WriteHostFile(outputs_.Path() / name, bytes);
    return (outputs_.Path() / name).string();
  }
  std::string Exported() const {
    const std::string quote = (outputs_.Path() / "quote.xml").string();
    EXPECT_EQ(RunParvex({"--machine", Sample(), "export", "--project", "Riverside Clinic", "-o", quote, "--journal",
                         Journal(), "--record", (outputs_.Path() / "cases").string()})
                  .status,
              0);
    return quote;
  }
  std::filesystem::path Case() const { return std::filesystem::directory_iterator(outputs_.Path() / "cases")->path(); }
  static std::string Text(const std::filesystem::path& file) {
    const Outcome outcome = RunParvex({"open", file.string()});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return outcome.out;
  }
  static standin::Json Json(const std::filesystem::path& file) {
    const Outcome outcome = RunParvex({"open", file.string(), "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return standin::ParseJson(outcome.out, "what is told");
  }
  static std::string KindOf(const std::filesystem::path& file) { return Json(file)["kind"].get<std::string>(); }
  void ExpectRefused(const std::filesystem::path& file, const std::string& why) const {
    for (const auto& arguments : {std::vector<std::string>{"open", file.string()}, {"open", "--json", file.string()}}) {
      const Outcome outcome = RunParvex(arguments);
      EXPECT_EQ(outcome.status, 2) << outcome.out;
      EXPECT_THAT(outcome.err, AllOf(StartsWith("parvex: "), HasSubstr(file.filename().string()), HasSubstr(why)));
      EXPECT_EQ(outcome.out, "");
    }
  }
  TemporaryFolder outputs_;
};

TEST_F(Open, KnowsEveryFileOfAMachineThatWasExportedFrom) {
  const std::string quote = Exported();
  const std::pair<std::filesystem::path, const char*> kinds[] = {
      {quote, "quote"},
      {Journal(), "journal"},
      {Case(), "case"},
      {Installed("Projects/Riverside Clinic/project.mdb"), "project-database"},
      {Installed("Projects/Riverside Clinic/tag1102.blb"), "stored-tag-data"},
      {Installed("Projects/Riverside Clinic/Config.xml"), "order-configuration"},
      {Installed("Projects/Riverside Clinic/units.json"), "json"},
      {Installed("Temp/QBOutput.ini"), "selection"},
      {Installed("Temp/QBInput.ini"), "ini"},
      {Installed("Temp/HBInput.ini"), "selection-request"},
      {Installed("Bin/UIKeys.txt"), "settings"},
      {Installed("Bin/Options.xml"), "options"},
      {Installed("Bin/Tools.xml"), "tools"},
      {Installed("Bin/TagUpdateInfo.xml"), "tag-update-info"},
      {Installed("Bin/KDCustomRpt_Cfg.xml"), "custom-reports"},
      {Installed("RTU47/Code/Reports/Templates/TitlePage_qdf.xml"), "report-definition"},
      {std::filesystem::path(Sample()) / "registry.reg", "registry"},
      {std::filesystem::path(Sample()) / "commands/getHybrisXML.xml", "command"},
  };
  for (const auto& [file, kind] : kinds) {
    EXPECT_EQ(KindOf(file), kind) << file;
    EXPECT_THAT(Text(file), StartsWith(file.string() + ": "));
  }
}

TEST_F(Open, TellsWhatIsInAQuoteAndInItsStoredData) {
  const std::string quote = Exported();
  const standin::Json json = Json(quote);
  EXPECT_EQ(json["project"], "Riverside Clinic");
  ASSERT_EQ(json["tags"].size(), 6u);
  EXPECT_EQ(json["tags"][0]["markFor"], "RTU-1");
  EXPECT_EQ(json["tags"][0]["storedData"]["kind"], "stored-tag-data");
  EXPECT_EQ(json["tags"][0]["storedData"]["entries"][0]["name"], "Tag");
  EXPECT_EQ(json["tags"][2]["orderConfigurations"][0]["kind"], "order-configuration");
  const standin::Json shown = standin::Json::parse(RunParvex({"show", "--json", quote}).out);
  EXPECT_EQ(json["total"], shown["total"]) << "one shape for tools";
  EXPECT_EQ(json["tags"][0]["tagId"], shown["tags"][0]["tagId"]);
  EXPECT_EQ(json["tags"][0]["total"], shown["tags"][0]["total"]);
  EXPECT_THAT(Text(quote), AllOf(HasSubstr("a quote (Hybris document)"), HasSubstr("\n  total: 320,406.70\n"),
                                 HasSubstr("RTU-1, pdsg RTU47"), HasSubstr(", total 59,110.00, unit count 3\n"),
                                 HasSubstr("stored data: bytes 383, the stored data of a tag")));
}

TEST_F(Open, TellsTheRowsOfAProjectsDatabase) {
  const standin::Json json = Json(Installed("Projects/Riverside Clinic/project.mdb"));
  const auto& tables = json["tables"];
  const auto index = std::ranges::find_if(tables, [](const auto& table) { return table["name"] == "TagIndex"; });
  ASSERT_NE(index, tables.end());
  EXPECT_EQ((*index)["rowCount"], (*index)["rows"].size());
  EXPECT_THAT(Text(Installed("Projects/Riverside Clinic/project.mdb")),
              AllOf(HasSubstr("TagIndex, row count"), HasSubstr("sTagName=RTU-1")));
}

TEST_F(Open, TellsTheTagsThatTheQuoteBuilderSelected) {
  Exported();
  const standin::Json json = Json(Installed("Temp/QBOutput.ini"));
  ASSERT_EQ(json["tags"].size(), 6u);
  EXPECT_EQ(json["tags"][0]["accessories"][0]["partNumber"], "ECON-120");
  EXPECT_EQ(json["tags"][5]["markFor"],
            "K\xC3\xBC"
            "che & Caf\xC3\xA9 <EG>");
}

TEST_F(Open, LooksIntoTheArchiveOfAProject) {
  const std::string command =
      Write("archive.xml", CommandText("archiveProject", {{"projectName", "Riverside Clinic"}}));
  EXPECT_EQ(Pull({command}).status, 0);
  const std::filesystem::path archive = std::filesystem::directory_iterator(Installed("Archives"))->path();
  const standin::Json json = Json(archive);
  EXPECT_EQ(json["kind"], "project-archive");
  EXPECT_EQ(json["entryCount"], json["entries"].size());
  EXPECT_THAT(Text(archive), HasSubstr("project.mdb"));
}

TEST_F(Open, ShowsOfACaseWhatCaseShowShows) {
  Exported();
  EXPECT_THAT(Text(Case()), HasSubstr(RunParvex({"case", "show", Case().string()}).out));
  EXPECT_EQ(Json(Case())["case"]["outcome"], "reply");
}

TEST_F(Open, TakesTheFolderOfAnUnfinishedCaseAndNoOther) {
  const std::filesystem::path unfinished = outputs_.Path() / "x.pvxcase.part";
  std::filesystem::create_directory(unfinished);
  WriteHostFile(unfinished / "case.json", "{\"format\": 1, \"outcome\": \"unfinished\"}");
  EXPECT_EQ(KindOf(unfinished), "case");
  std::filesystem::create_directory(outputs_.Path() / "folder");
  ExpectRefused(outputs_.Path() / "folder", "is a folder, and no case");
}

TEST_F(Open, GoesByTheContentAndNotByTheName) {
  Exported();
  std::filesystem::copy_file(Case(), outputs_.Path() / "a.xml");
  EXPECT_EQ(KindOf(outputs_.Path() / "a.xml"), "case");
  std::filesystem::copy_file(Installed("Projects/Riverside Clinic/project.mdb"), outputs_.Path() / "b.ini");
  EXPECT_EQ(KindOf(outputs_.Path() / "b.ini"), "project-database");
}

TEST_F(Open, ReadsStandardInput) {
  const Outcome outcome = RunParvex({"open", "-"}, {.input = "[a]\nb=c\n"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "-: an ini file, 8 bytes\n  sections:\n    a: b=c\n");
}

TEST_F(Open, RefusesWhatItDoesNotKnowAndSaysWhatWasLookedFor) {
  ExpectRefused(Write("text.txt", "some text of somebody\n"),
                "is nothing that is known here: no XML document, archive or Jet database, no registry text, journal or "
                "JSON, no ini file");
  ExpectRefused(Write("none.dat", ""), "is empty");
  ExpectRefused(outputs_.Path() / "missing", "cannot read");
}

TEST_F(Open, RefusesWhatIsDamaged) {
  Exported();
  const std::string bytes = ReadHostFile(Case());
  ExpectRefused(Write("cut.pvxcase", bytes.substr(0, bytes.size() / 2)), "it has no directory");
  ExpectRefused(Write("bad.xml", "<PROJECT><TAGS></PROJECT>"), "it is no XML: line 1");
  const std::string database = ReadHostFile(Installed("Projects/Riverside Clinic/project.mdb"));
  ExpectRefused(Write("cut.mdb", database.substr(0, 5'000)), "cut.mdb");
  ExpectRefused(Write("deep.json", std::string(1'000, '[')), "deep.json");
}

TEST_F(Open, SaysWhyAnArchiveThatLooksLikeACaseIsNone) {
  ZipWriter archive;
  archive.Add("case.json", "{\"format\": 99}", true);
  archive.Add("journal.jsonl", "", true);
  const standin::Json json = Json(Write("later.pvxcase", archive.Finish()));
  EXPECT_EQ(json["kind"], "case");
  EXPECT_THAT(json["problem"].get<std::string>(), HasSubstr("its format 99 is later than what this version reads"));
  EXPECT_EQ(json["entries"][0]["name"], "case.json");
}

TEST_F(Open, ReadsNoEndlessFile) {
  const Outcome outcome = RunParvex({"open", "/dev/zero"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr("/dev/zero has more than"));
}

TEST_F(Open, WritesNothingAnywhere) {
  Exported();
  const auto state = [&] {
    std::map<std::string, std::pair<std::string, std::filesystem::file_time_type>> files;
    for (const char* folder : {"Projects", "Temp", "Bin", "Archives"}) {
      for (const auto& entry : std::filesystem::recursive_directory_iterator(Installed(folder))) {
        if (entry.is_regular_file()) {
          files[entry.path().string()] = {ReadHostFile(entry.path()), entry.last_write_time()};
        }
      }
    }
    return files;
  };
  const auto before = state();
  for (const auto& [file, bytes] : before) {
    RunParvex({"open", file});
  }
  EXPECT_EQ(state(), before);
}

}  // namespace
}  // namespace parvex::test
