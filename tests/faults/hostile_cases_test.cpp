#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "formats/zip/archive_file.h"
#include "formats/zip/zip_writer.h"
#include "tests/faults/case_bytes.h"
#include "tests/faults/limited_child.h"
#include "tests/support/fake_platform.h"
#include "tests/support/zip_patch.h"

// Recorded calls that were made to do harm, given to every command that reads one: each is refused with an error that
// names it and what is wrong, quickly and in little memory; nothing is written, and no link is followed.

namespace parvex::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr std::uint32_t kMiB = 1u << 20;
constexpr const char* kForeignText = "what stands elsewhere";

struct CaseAttack {
  std::string name;
  std::function<void(const std::string& path)> make;  ///< a file, or a folder
  std::string told;
  bool isFolder = false;
};

void PrintTo(const CaseAttack& attack, std::ostream* out) { *out << attack.name; }

std::vector<std::string> NamesBelow(const std::filesystem::path& root) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    names.push_back(std::filesystem::relative(entry.path(), root).string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

class HostileCase : public testing::TestWithParam<CaseAttack> {
 protected:
  TemporaryFolder around_;
  TemporaryFolder outputs_;
};

TEST_P(HostileCase, IsRefusedByEveryCommand) {
  const std::string folder = (around_.Path() / "cases").string();
  const std::string path = folder + "/" + (GetParam().isFolder ? "1-2-3.pvxcase.part" : "1-2-3.pvxcase");
  std::filesystem::create_directory(folder);
  WriteHostFile(around_.Path() / "secret", kForeignText);
  GetParam().make(path);
  const std::vector<std::string> before = NamesBelow(around_.Path());
  const std::string output = (outputs_.Path() / "out").string();
  const std::string target = (around_.Path() / "extracted").string();
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"show", path},
                                                    {"show", "--json", path},
                                                    {"files", path},
                                                    {"extract", path, target},
                                                    {"run", path}}) {
    std::vector<std::string> all = {PARVEX_PROGRAM, "case"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const ProgramOutcome outcome = InLimitedProgram(all, output);
    ExpectQuick(outcome);
    EXPECT_EQ(outcome.status, 2) << arguments[0];
    EXPECT_THAT(outcome.answer, AllOf(HasSubstr("1-2-3.pvxcase"), HasSubstr(GetParam().told))) << arguments[0];
    EXPECT_EQ(ReadHostFile(output), "") << arguments[0];
  }
  const ProgramOutcome listed = InLimitedProgram({PARVEX_PROGRAM, "case", "list", folder}, output);
  ExpectQuick(listed);
  EXPECT_EQ(listed.status, 0);
  EXPECT_THAT(ReadHostFile(output), AllOf(HasSubstr("1-2-3.pvxcase"), HasSubstr(GetParam().told)));
  EXPECT_EQ(NamesBelow(around_.Path()), before);
}

std::string NameOfAttack(const testing::TestParamInfo<CaseAttack>& info) { return info.param.name; }

CaseAttack Bytes(const std::string& name, const std::string& told, const std::function<std::string()>& bytes) {
  return {name, [bytes](const std::string& path) { WriteHostFile(path, bytes()); }, told};
}

// --- Names ---

std::vector<CaseAttack> Names() {
  const std::vector<std::pair<std::string, std::string>> names = {{"UpAFolder", "../out"},
                                                                  {"UpByBackslashes", "..\\out"},
                                                                  {"UpFromInside", "machine/../../out"},
                                                                  {"Absolute", "/out"},
                                                                  {"AbsoluteByBackslash", "\\out"},
                                                                  {"OfANetwork", "//server/share/out"},
                                                                  {"WithADrive", "C:\\out"},
                                                                  {"WithADriveInside", "machine/C:/out"},
                                                                  {"OfAStream", "case.json:other"},
                                                                  {"OfADevice", "machine/NUL"},
                                                                  {"WithANul", std::string("machine/a\0b", 11)},
                                                                  {"OfDots", "machine/..."},
                                                                  {"NotUtf8", "machine/\xC0\xAE"},
                                                                  {"VeryLong", std::string(40'000, 'n')},
                                                                  {"VeryDeep", Repeat("a/", 20'000) + "a"}};
  std::vector<CaseAttack> attacks;
  for (const auto& [name, entry] : names) {
    attacks.push_back(Bytes(name, "its entry", [entry = entry] { return PackedCase({{entry, "x"}}); }));
  }
  return attacks;
}
INSTANTIATE_TEST_SUITE_P(Name, HostileCase, testing::ValuesIn(Names()), NameOfAttack);

// --- Archives ---

// The case with a number changed in the directory's record of the first entry.
std::string FactsWithField(std::size_t field, std::uint32_t value) {
  std::string archive = PackedCase({});
  Put32(archive, DirectoryRecord(archive, 0) + field, value);
  return archive;
}

std::string WithOtherName() {
  std::string archive = PackedCase({});
  archive[LocalRecord(archive, 0) + 30] = 'C';
  return archive;
}

std::string StoredThenLarge(std::string_view member) {
  return PackedCase({{std::string(member), std::string(100 * kMiB, ' ')}});
}

std::vector<CaseAttack> Archives() {
  return {
      Bytes("Empty", "it is no case", [] { return ""; }),
      Bytes("Text", "it is no case", [] { return "hello"; }),
      Bytes("WithoutEntries", "it is no case", [] { return ZipWriter().Finish(); }),
      Bytes("WithoutFacts", "it has no case.json",
            [] {
              return Packed({{"journal.jsonl", ""}});
            }),
      Bytes("FactsInCapitals", "it has no case.json",
            [] {
              return Packed({{"CASE.JSON", R"({"format":1})"}});
            }),
      Bytes("OneMemberTwice", "another entry takes",
            [] {
              return PackedCase({{"case.json", "{}"}});
            }),
      Bytes("OneMemberInTwoCases", "another entry takes",
            [] {
              return PackedCase({{"Case.Json", "{}"}});
            }),
      Bytes("AFileThatIsAFolder", "another entry takes",
            [] {
              return PackedCase({{"machine/a", "1"}, {"machine/A/b", "2"}});
            }),
      Bytes("AMemberThatIsAFolder", "makes a folder of reply.xml",
            [] {
              return PackedCase({{"Reply.xml/x", "1"}});
            }),
      Bytes("AnEmptyFolderOfAMember", "makes a folder of command.xml",
            [] {
              return Packed({{"case.json", kFacts}, {"command.xml/", ""}});
            }),
      Bytes("RecordsThatDisagree", "is described in two ways", WithOtherName),
      Bytes("DataElsewhere", "is not where the directory says", [] { return FactsWithField(42, 0x00FFFFF0); }),
      Bytes("AWrongChecksum", "its checksum is wrong", [] { return FactsWithField(16, 1); }),
      Bytes("FourGigabytesDeclared", "more than are unpacked", [] { return FactsWithField(24, 0xFFFFFFFE); }),
      Bytes("AHundredMegabytesOfJournal", "more than are unpacked", [] { return StoredThenLarge("journal.jsonl"); }),
      Bytes("AHundredMegabytesOfAFile", "more than are unpacked", [] { return StoredThenLarge("machine/drive_c/a"); }),
      {"TwoGigabytes",
       [](const std::string& path) { WriteHostFile(path, ""), std::filesystem::resize_file(path, 2'000u * kMiB); },
       "more than are read"},
      {"MoreThanMemoryHolds",
       [](const std::string& path) { WriteHostFile(path, ""), std::filesystem::resize_file(path, 300u * kMiB); },
       "it is "},
      {"APipe", [](const std::string& path) { mkfifo(path.c_str(), 0600); }, "it is no file"},
  };
}
INSTANTIATE_TEST_SUITE_P(Archive, HostileCase, testing::ValuesIn(Archives()), NameOfAttack);

// --- JSON ---

CaseAttack Facts(const std::string& name, const std::string& told, const std::string& facts) {
  return Bytes(name, told, [facts] { return Packed({{"case.json", facts}}); });
}

CaseAttack Journal(const std::string& name, const std::string& told, const std::function<std::string()>& journal) {
  return Bytes(name, told, [journal] { return PackedCase({{"journal.jsonl", journal()}}); });
}

std::vector<CaseAttack> Texts() {
  const std::string deep = Repeat("[", 200'000) + Repeat("]", 200'000);
  const std::string step = R"({"n":1,"at":"once","x":)";
  std::vector<CaseAttack> attacks = {
      Facts("FactsThatAreNoJson", "case.json is damaged", "{"),
      Facts("FactsThatAreAList", "case.json is damaged", R"([{"format":1}])"),
      Facts("FactsWithoutAFormat", "case.json is damaged", "{}"),
      Facts("ALaterFormat", "its format 2 is later", R"({"format":2})"),
      Facts("AMuchLaterFormat", "its format 18446744073709551615 is later", R"({"format":18446744073709551615})"),
      Facts("FactsThatAreDeep", "case.json is damaged: it is nested too deep", R"({"format":1,"x":)" + deep + "}"),
      Facts("FactsOfManyValues", "case.json is damaged: it holds more values",
            R"({"format":1,"x":[0)" + Repeat(",0", 3'000'000) + "]}"),
      Journal("ALineThatIsNoStep", "line 1 of journal.jsonl is damaged", [] { return "[]\n"; }),
      Journal("AStepWithoutANumber", "line 1 of journal.jsonl is damaged", [] { return R"({"n":"1","at":"once"})"; }),
      Journal("ASecondLineThatIsNone", "line 2 of journal.jsonl is damaged", [step] { return step + "1}\n\n"; }),
      Journal("ADeepLine", "line 1 of journal.jsonl is damaged: it is nested too deep",
              [step, deep] { return step + deep + "}\n"; }),
      Journal("ALineOfManyValues", "line 1 of journal.jsonl is damaged: it holds more values",
              [step] { return step + "[0" + Repeat(",0", 5'000'000) + "]}\n"; }),
      Journal("ManyLines", "of journal.jsonl is damaged: it holds more values",
              [] {
                return Repeat(R"({"n":1,"at":"once","a":0,"b":0})"
                              "\n",
                              700'000);
              }),
  };
  int number = 0;
  for (const char* format : {"\"1\"", "-1", "0", "1.5", "null", "[]", "{}", "true", "18446744073709551616"}) {
    attacks.push_back(Facts("AFormatThatIsNone" + std::to_string(++number), "case.json is damaged",
                            std::string(R"({"format":)") + format + "}"));
  }
  return attacks;
}
INSTANTIATE_TEST_SUITE_P(Json, HostileCase, testing::ValuesIn(Texts()), NameOfAttack);

// --- Folders ---

CaseAttack Folder(const std::string& name, const std::string& told,
                  const std::function<void(const std::string& path)>& fill) {
  return {name,
          [fill](const std::string& path) {
            std::filesystem::create_directory(path);
            WriteHostFile(path + "/case.json", kFacts);
            fill(path);
          },
          told, true};
}

std::vector<CaseAttack> Folders() {
  std::vector<CaseAttack> attacks = {
      Folder("ALargeJournal", "its journal.jsonl has 314572800 bytes",
             [](const std::string& path) {
               WriteHostFile(path + "/journal.jsonl", "");
               std::filesystem::resize_file(path + "/journal.jsonl", 300u * kMiB);
             }),
      Folder("FilesThatEscape", "its entry",
             [](const std::string& path) {
               std::string unfinished;
               StringFile file(unfinished);
               ArchiveFile(file).Add("../out", "x");
               WriteHostFile(path + "/files.zip", unfinished);
             }),
      Folder("ADamagedLine", "line 1 of journal.jsonl is damaged",
             [](const std::string& path) { WriteHostFile(path + "/journal.jsonl", "x\n"); }),
  };
  for (const std::string member : {"case.json", "command.xml", "reply.xml", "journal.jsonl", "files.zip"}) {
    const std::string name = member.substr(0, member.find('.'));
    attacks.push_back(
        Folder("ALinkOf" + name, "its " + member + " is a link, or no file", [member](const std::string& path) {
          std::filesystem::remove(path + "/" + member);
          std::filesystem::create_symlink("../../secret", path + "/" + member);
        }));
    attacks.push_back(
        Folder("APipeOf" + name, "its " + member + " is a link, or no file", [member](const std::string& path) {
          std::filesystem::remove(path + "/" + member);
          mkfifo((path + "/" + member).c_str(), 0600);
        }));
    attacks.push_back(
        Folder("AFolderOf" + name, "its " + member + " is a link, or no file", [member](const std::string& path) {
          std::filesystem::remove(path + "/" + member);
          std::filesystem::create_directory(path + "/" + member);
        }));
  }
  return attacks;
}
INSTANTIATE_TEST_SUITE_P(Folder, HostileCase, testing::ValuesIn(Folders()), NameOfAttack);

}  // namespace
}  // namespace parvex::test
