#include "formats/zip/entry_names.h"

#include <string>
#include <utility>
#include <vector>

#include "tests/unit/formats/zip/archive_reading.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;

struct NameCase {
  std::string name;
  const char* reason;
};

TEST_F(Packing, RefusesNamesThatLeadElsewhereOrThatWindowsDoesNotGive) {
  const std::vector<NameCase> cases = {
      {"", "no name"},
      {"/absolute", "is absolute"},
      {"\\absolute", "is absolute"},
      {"\\\\server\\share\\x", "is absolute"},
      {"/", "is absolute"},
      {"a//b", "empty component"},
      {"a//", "empty component"},
      {"..", "\"..\""},
      {"../up", "\"..\""},
      {"a/../../up", "\"..\""},
      {"a\\..\\..\\up", "\"..\""},
      {"a/..", "\"..\""},
      {"../", "\"..\""},
      {"./here", "\".\""},
      {"C:\\drive", "colon"},
      {"C:drive", "colon"},
      {"file:stream", "colon"},
      {std::string("nul\0byte", 8), "nul?byte"},
      {"line\nbreak", "line?break"},
      {"what?", "character"},
      {"star*", "character"},
      {"pipe|", "character"},
      {"quote\"", "character"},
      {"less<", "character"},
      {".. /up", "ends with a dot or a blank"},
      {"...", "ends with a dot or a blank"},
      {"a/ . ./b", "ends with a dot or a blank"},
      {" ", "ends with a dot or a blank"},
      {"NUL", "device"},
      {"nul.", "device"},
      {"aux ", "device"},
      {"Con. . ", "device"},
      {"sub/com1", "device"},
      {"COM\xC2\xB9", "device"},
      {std::string(256, 'x'), "more than 255"},
      {"\xC3(", "no valid UTF-8"},
      {"\xED\xA0\x80", "no valid UTF-8"},
      {"\xC0\xAE\xC0\xAE/up", "no valid UTF-8"},
  };
  for (const NameCase& testCase : cases) {
    EXPECT_THAT(RefusalOf(ArchiveOf({"good", testCase.name})), HasSubstr(testCase.reason))
        << testing::PrintToString(testCase.name);
  }
}

TEST_F(Packing, AcceptsUnusualNamesThatAreHarmless) {
  const std::vector<std::string> names = {"Tag",
                                          "..x",
                                          "x..y",
                                          ".hidden",
                                          "a b",
                                          " leading",
                                          "~",
                                          "a~b",
                                          "COM0",
                                          "COM10",
                                          "CONSOLE",
                                          "nul_x",
                                          "\xE2\x82\xAC",
                                          "it's",
                                          "[x]",
                                          "100%",
                                          "a,b;c",
                                          "\xF0\x9F\x91\x82",
                                          std::string(255, 'x')};
  EXPECT_EQ(UnpackBytes(ArchiveOf(names)).size(), names.size());
}

TEST_F(Packing, AcceptsTheShortNamesThatOldPackersGive) {
  const std::vector<PackedEntry> entries = UnpackBytes(ArchiveOf({"UNITDA~1.XML", "PROGRA~1/x"}));
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].name, "UNITDA~1.XML");
  EXPECT_EQ(entries[1].name, "PROGRA~1\\x");
}

TEST_F(Packing, GivesEntriesTheNamesThatWindowsWrites) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"readme.", "readme"},
      {"dot.txt...", "dot.txt"},
      {"blank ", "blank"},
      {"both . .", "both"},
      {"folder /file", "folder\\file"},
      {"folder./", "folder"},
      {" x", " x"},
      {"a. b", "a. b"},
  };
  for (const auto& [packed, written] : cases) {
    const std::vector<PackedEntry> entries = UnpackBytes(ArchiveOf({packed}));
    EXPECT_EQ(entries.at(0).name, written) << packed;
    EXPECT_EQ(entries.at(0).isFolder, packed.ends_with('/')) << packed;
  }
}

TEST_F(Packing, AcceptsADevicesNameWithAnExtension) {
  const std::vector<std::string> names = {"con.txt", "aux .txt", "LPT9.tar.gz", "nul.d/x", "aux.txt."};
  EXPECT_EQ(UnpackBytes(ArchiveOf(names)).size(), names.size());
}

TEST_F(Packing, RefusesNamesThatCannotStandSideBySide) {
  for (const std::vector<std::string>& names : std::vector<std::vector<std::string>>{
           {"a", "a"},
           {"a", "A"},
           {"\xC3\xA4", "\xC3\x84"},
           {"ж.txt", "Ж.txt"},
           {"λ/a", "Λ/A"},
           {"ž", "Ž/a"},
           {"a/b", "a\\B"},
           {"a", "a/"},
           {"a/", "A/"},
           {"a", "a/b"},
           {"A/b/c", "a"},
           {"readme", "README."},
           {"readme.", "readme "},
           {"a .", "a/b"},
           {"a", "a!", "a.b", "a/b"},  // names between a file and what lies below it
       }) {
    EXPECT_THAT(RefusalOf(ArchiveOf(names)), HasSubstr("another entry takes")) << testing::PrintToString(names);
  }
  EXPECT_EQ(UnpackBytes(ArchiveOf({"a/", "a/b", "a/c", "ab", "a!"})).size(), 5u);
  EXPECT_EQ(UnpackBytes(ArchiveOf({"ß", "ss", "ı", "I", "σ", "ς"})).size(), 6u) << "no capitals of their own";
}

}  // namespace
}  // namespace parvex::test
