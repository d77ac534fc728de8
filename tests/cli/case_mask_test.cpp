#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "adapters/posix/native_system.h"
#include "codec/bin_encoder.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"
#include "formats/text/windows_1252.h"
#include "formats/zip/zip_reader.h"
#include "formats/zip/zip_writer.h"
#include "interface/command_table.h"
#include "recording/recorded_case.h"
#include "tests/cli/program.h"
#include "tests/support/jet_readers.h"

// Recorded calls in which every name is another.

namespace parvex::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

// What nobody may find in a masked case: projects, tags (one with umlauts and characters that markup escapes; one that
// is a part of another), customers, addresses, numbers, a user, descriptions, prices.
const std::vector<std::string> kPlanted = {
    "Riverside Clinic",
    "Harbour",
    "Harbour Annex",
    "Harbour School",
    "RTU-1",
    "AHU-3",
    "CH-1",
    "HP-7",
    "SS-2",
    "Küche & Café <EG>",
    "Roof | 1",
    "Ødegård & Söhne",
    "Marsh & Lindqvist Mechanical",
    "office@odegard.example",
    "quotes@marsh-lindqvist.example",
    "grete.hansen@kunde.example",
    "+1 555 0162",
    "+1 555 0147",
    "+49 89 5550199",
    "Grete Hansen",
    "Quay 4",
    "New wing",
    "Rooftop unit, 10 ton, supply section",
    "Water-cooled chiller, 250 ton",
    "Gebläsekonvektor 6\" & Ventilpaket, Größe 06",
    "Vollgarantie 3 Jahre – Teile & Arbeit",
    "Casing height limited to 2,900 mm",
    "Farbe: weiß",
    "Witness test, two visitors",
    "Double-wall construction",
    "Compressor warranty, 5 years",
    "18450.00",
    "118900.00",
    "64210.50",
    "1049.90",
    "1275.37",
    "7361.29",
    "3987.43",
    "9423.71",
    "5219.83",
};

bool IsWordByte(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
         static_cast<unsigned char>(c) >= 0x80;
}

std::string LowerAscii(std::string text) {
  for (char& c : text) {
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c;
  }
  return text;
}

std::string Utf16(const std::string& text, bool isBig) {
  std::string bytes;
  for (const char16_t unit : ToUtf16(text)) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += isBig ? std::string{high, low} : std::string{low, high};
  }
  return bytes;
}

// The ways in which a text may be written, ASCII letters in lower case.
std::set<std::string> WaysToWrite(const std::string& text) {
  const auto escaped = ReplaceAll(ReplaceAll(ReplaceAll(text, "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
  std::set<std::string> ways;
  posix::Windows1252 codePage;
  for (const std::string& form : {text, escaped, ReplaceAll(escaped, "\"", "&quot;"), ReplaceAll(escaped, "&", "&amp;"),
                                  ReplaceAll(text, "\"", "\\\"")}) {
    for (const std::string& letters : {form, ToUpper(form)}) {
      ways.insert(LowerAscii(letters));
      ways.insert(LowerAscii(codePage.ToAnsi(letters)));
      ways.insert(LowerAscii(Utf16(letters, false)));
      ways.insert(LowerAscii(Utf16(letters, true)));
    }
  }
  return ways;
}

bool Holds(const std::string& lower, const std::string& way) {
  // By chance some other word may end in so few letters.
  const bool isShort = way.size() < 5;
  for (std::size_t at = lower.find(way); at != lower.npos; at = lower.find(way, at + 1)) {
    const bool isPart =
        (at > 0 && IsWordByte(lower[at - 1])) || (at + way.size() < lower.size() && IsWordByte(lower[at + way.size()]));
    if (!isShort || !isPart) {
      return true;
    }
  }
  return false;
}

bool IsBase64(char c) {
  return IsWordByte(c) ? static_cast<unsigned char>(c) < 0x80 : c == '+' || c == '/' || c == '=';
}

// Everything that some bytes hold down to the last layer: archives, what stands in Base64, rows of databases.
void Unpacked(const std::string& name, const std::string& bytes,
              std::vector<std::pair<std::string, std::string>>& layers, int depth = 0) {
  layers.emplace_back(name, bytes);
  if (depth > 6) {
    return;
  }
  posix::Windows1252 codePage;
  for (const PackedEntry& entry : Unpack(codePage, bytes, name)) {
    layers.emplace_back(name + "!", entry.name);
    Unpacked(name + "!" + entry.name, entry.bytes, layers, depth + 1);
  }
  if (bytes.starts_with(std::string_view("\0\1\0\0Standard Jet DB", 19))) {
    for (const char* table : {"Config", "TagIndex"}) {
      for (const std::string& line : MdbExport(bytes, table).value_or(Lines())) {
        layers.emplace_back(name + "!" + table, line);
      }
    }
  }
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    std::size_t end = at;
    while (end < bytes.size() && IsBase64(bytes[end])) {
      ++end;
    }
    if (end - at >= 12) {
      Unpacked(name + "#", DecodeBase64(bytes.substr(at, end - at)), layers, depth + 1);
    }
    at = end;
  }
}

// Which of the planted names stand where.
std::set<std::string> FoundIn(const std::string& path, bool isNamed = true) {
  std::vector<std::pair<std::string, std::string>> layers;
  Unpacked("case", ReadHostFile(path), layers);
  std::set<std::string> found;
  static const std::vector<std::pair<std::string, std::set<std::string>>> wanted = [] {
    std::vector<std::pair<std::string, std::set<std::string>>> all;
    for (const std::string& planted : kPlanted) {
      all.emplace_back(planted, WaysToWrite(planted));
    }
    return all;
  }();
  for (const auto& [name, bytes] : layers) {
    const std::string lower = LowerAscii(bytes);
    for (const auto& [planted, ways] : wanted) {
      if (std::any_of(ways.begin(), ways.end(), [&](const std::string& way) { return Holds(lower, way); })) {
        found.insert(planted + (isNamed ? " in " + name : ""));
      }
    }
  }
  return found;
}

class CaseMask : public testing::Test {
 protected:
  CaseMask() {
    EXPECT_EQ(RunParvex({"machine", "create", sample}).status, 0);
    const fs::path units = fs::path(sample) / "drive_c/Korvane/TQ5-VX/Projects/Riverside Clinic/units.json";
    std::string text = ReadHostFile(units);
    for (const auto& [before, after] : std::vector<std::pair<std::string, std::string>>{
             {"unit outline, sheet 1 of 1",
              "drawn for Marsh & Lindqvist Mechanical, grete.hansen@kunde.example, +49 89 5550199"},
             {"1275.00", "1275.37"},
             {"7300.00", "7361.29"},
             {"3980.00", "3987.43"},
             {"9400.00", "9423.71"},
             {"5200.00", "5219.83"}}) {
      EXPECT_THAT(text, HasSubstr(before));
      text = ReplaceAll(text, before, after);
    }
    WriteHostFile(units, text);
  }

  void Record(const std::string& how, const std::vector<std::string>& files) {
    std::vector<std::string> arguments = {"--machine", sample, "--record", cases, how};
    arguments.insert(arguments.end(), files.begin(), files.end());
    RunParvex(arguments);
  }
  std::string Written(const std::string& name, const std::string& text) const {
    WriteHostFile(folder.Path() / name, text);
    return (folder.Path() / name).string();
  }
  std::string Command(const std::string& name) const { return sample + "/commands/" + name + ".xml"; }
  std::string Masked() const { return (folder.Path() / "masked.pvxcase").string(); }

  // A tag on its way back, whose data has an archive in an archive.
  std::string RebuildTag() const {
    ZipWriter inner;
    inner.Add("CH-1.txt", "Riverside Clinic, Quay 4", true);
    ZipWriter outer;
    outer.Add("Tag", "<Product MarkFor=\"CH-1\"/>", true);
    outer.Add("inner.zip", inner.Finish(), false);
    return "<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER><PROJECT><ATTRIBUTES_LIST><JOB "
           "LEGACY_PROJECTNAME=\"Riverside "
           "Clinic\"/></ATTRIBUTES_LIST><TAGS><TAG><ATTRIBUTES_LIST><MARKFOR>CH-1</MARKFOR>"
           "<PDSG>XRC47</PDSG><BLOB>" +
           EncodeBase64(outer.Finish()) +
           "</BLOB></ATTRIBUTES_LIST><BASEUNITS><BASEUNIT PRICE=\"18450.00\"><COMPONENTS><COMPONENT PRICE=\"1049.90\">"
           "<DESCRIPTION>New wing</DESCRIPTION></COMPONENT></COMPONENTS></BASEUNIT></BASEUNITS></TAG></TAGS></PROJECT>"
           "</PARAMETER></PARAMETERS></COMMAND>";
  }

  std::vector<std::string> Cases() const {
    std::vector<std::string> paths;
    for (const auto& entry : fs::directory_iterator(cases)) {
      paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
  }
  std::string OneCase() {
    Record("pull-ngorla", {Command("getHybrisXMLNoUI")});
    return Cases().at(0);
  }

  TemporaryFolder folder;
  const std::string sample = (folder.Path() / "sample").string();
  const std::string cases = (folder.Path() / "cases").string();
};

TEST_F(CaseMask, LeavesNoneOfFortyNamesInACaseOfAnyCommandAndItStillReproduces) {
  std::vector<std::string> pull;
  for (const auto& entry : fs::directory_iterator(sample + "/commands")) {
    if (!entry.path().stem().string().starts_with("getHybrisXMLNoUI")) {
      pull.push_back(entry.path().string());
    }
  }
  std::sort(pull.begin(), pull.end());
  pull.push_back(Written("options.xml",
                         "<COMMAND><NAME>setOptions</NAME><PARAMETER><NAME>cmbPaperSize</NAME><VALUE>Letter</VALUE>"
                         "</PARAMETER></COMMAND>"));
  pull.push_back(Written("away.xml",
                         "<COMMAND><NAME>retrieveProject</NAME><PARAMETER><NAME>projectName</NAME><VALUE>Harbour "
                         "School</VALUE></PARAMETER><PARAMETER><NAME>fileSpec</NAME><VALUE>C:\\Users\\Grete "
                         "Hansen\\Desktop\\Harbour School.E3A</VALUE></PARAMETER><PARAMETER><NAME>FOLDER</NAME>"
                         "<VALUE>C:\\Users\\Grete Hansen\\Harbour School</VALUE></PARAMETER></COMMAND>"));
  // What an earlier call left.
  WriteHostFile(fs::path(sample) / "drive_c/Korvane/TQ5-VX/Temp/QPblob.tmp", "Riverside Clinic");
  Record("pull-ngorla", {Command("getHybrisXMLNoUI"), Command("getHybrisXMLNoUI-two-tags"), Command("getHybrisXML"),
                         Written("rebuild.xml", RebuildTag())});
  Record("pull", pull);

  std::set<std::string> planted;
  std::set<std::string> commands;
  posix::NativeSystem system;
  for (const std::string& path : Cases()) {
    planted.merge(FoundIn(path, false));
    commands.insert(recording::ReadCase(system, path).facts["command"]);
    const Outcome masked = RunParvex({"case", "mask", path, "-o", Masked()});
    EXPECT_EQ(masked.status, 0) << path << "\n" << masked.err;
    EXPECT_THAT(FoundIn(Masked()), IsEmpty()) << path;
    EXPECT_EQ(RunParvex({"case", "run", Masked()}).status, 0) << path;
    fs::remove(Masked());
  }
  // The test says something: each name was there, and each command was sent.
  EXPECT_THAT(kPlanted, testing::UnorderedElementsAreArray(planted));
  for (const auto table : {PullCommands(), PullNgorlaCommands()}) {
    for (const CommandEntry& entry : table) {
      EXPECT_TRUE(commands.contains(std::string(entry.name))) << entry.name;
    }
  }
}

TEST_F(CaseMask, WritesWhatBecameWhatForItsOwnerOnly) {
  const std::string table = (folder.Path() / "table.txt").string();
  WriteHostFile(table, "old");
  const Outcome masked = RunParvex({"case", "mask", OneCase(), "-o", Masked(), "--table", table});
  EXPECT_EQ(masked.status, 0) << masked.err;
  EXPECT_THAT(ReadHostFile(table),
              testing::AllOf(HasSubstr("name\tRiverside Clinic\t"), HasSubstr("price\t118900.00\t")));
  EXPECT_EQ(fs::status(table).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_THAT(FoundIn(Masked()), IsEmpty());
}

TEST_F(CaseMask, MakesOtherNamesEachTime) {
  const std::string path = OneCase();
  EXPECT_EQ(RunParvex({"case", "mask", path, "-o", Masked()}).status, 0);
  const std::string first = ReadHostFile(Masked());
  EXPECT_EQ(RunParvex({"case", "mask", path, "-o", Masked()}).status, 0);
  EXPECT_NE(ReadHostFile(Masked()), first);
}

TEST_F(CaseMask, LeavesPricesWhenItIsToldTo) {
  EXPECT_EQ(RunParvex({"case", "mask", OneCase(), "-o", Masked(), "--keep-prices"}).status, 0);
  EXPECT_THAT(FoundIn(Masked(), false),
              testing::AllOf(testing::Contains("118900.00"), testing::Not(testing::Contains("CH-1"))));
}

TEST_F(CaseMask, RefusesACaseThatDoesNotReproduceAndWritesNothing) {
  const std::string path = OneCase();
  posix::NativeSystem system;
  recording::RecordedCase changed = recording::ReadCase(system, path);
  changed.reply = "<PROJECT/>";
  recording::WriteCase(system, changed, path);
  const std::string table = (folder.Path() / "table.txt").string();
  const Outcome masked = RunParvex({"case", "mask", path, "-o", Masked(), "--table", table});
  EXPECT_EQ(masked.status, 2);
  EXPECT_THAT(masked.err, HasSubstr("does not reproduce unmasked, either"));
  EXPECT_FALSE(fs::exists(Masked()));
  EXPECT_FALSE(fs::exists(table));
}

TEST_F(CaseMask, RefusesToWriteOverItsOwnCase) {
  const std::string path = OneCase();
  const std::string before = ReadHostFile(path);
  EXPECT_EQ(RunParvex({"case", "mask", path, "-o", path}).status, 2);
  EXPECT_EQ(RunParvex({"case", "mask", path, "-o", Masked(), "--table", Masked()}).status, 2);
  EXPECT_EQ(ReadHostFile(path), before);
  EXPECT_FALSE(fs::exists(Masked()));
}

TEST_F(CaseMask, TakesTheFolderOfACaseThatWasNeverFinished) {
  posix::NativeSystem system;
  const recording::RecordedCase whole = recording::ReadCase(system, OneCase());
  const std::string part = cases + "/one.pvxcase.part";
  fs::create_directory(part);
  // The host died while the workflow program ran.
  std::string journal;
  std::uint64_t last = 0;
  for (const recording::Json& step : whole.steps) {
    journal += step.dump() + "\n";
    last = step["n"];
    if (step.value("kind", "") == "process") {
      break;
    }
  }
  ZipWriter files;
  for (const recording::KeptFile& file : whole.files) {
    const bool isLater = file.name.starts_with("after/") && std::stoull(file.name.substr(6)) > last;
    if (!isLater) {
      files.Add(file.isFolder ? file.name + "/" : file.name, file.bytes, false);
    }
  }
  recording::Json facts = whole.facts;
  facts["outcome"] = "unfinished";
  facts["steps"] = last;
  WriteHostFile(part + "/case.json", facts.dump());
  WriteHostFile(part + "/command.xml", whole.command);
  WriteHostFile(part + "/journal.jsonl", journal);
  WriteHostFile(part + "/files.zip", files.Finish());
  const Outcome masked = RunParvex({"case", "mask", part, "-o", Masked()});
  EXPECT_EQ(masked.status, 0) << masked.err;
  ASSERT_TRUE(fs::exists(Masked()));
  EXPECT_THAT(FoundIn(Masked()), IsEmpty());
}

}  // namespace
}  // namespace parvex::test
