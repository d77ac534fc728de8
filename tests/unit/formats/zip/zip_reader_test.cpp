#include "formats/zip/zip_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "formats/zip/zip_writer.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"
#include "tests/support/zip_patch.h"

namespace parvex {
namespace {

using testing::HasSubstr;

constexpr const char* kBlob = "C:\\data\\tag.dat";

class Packing : public testing::Test {
 protected:
  test::FakeMachine machine_;

  std::vector<PackedEntry> UnpackBytes(const std::string& archive) {
    // A buffer of exactly the archive's size, so that the sanitizers see a read beyond it.
    const std::vector<char> exact(archive.begin(), archive.end());
    return Unpack(*machine_.platform.codePage, std::string_view(exact.data(), exact.size()), kBlob);
  }

  // The description of the error that refuses an archive; a test fails when it is accepted.
  std::string RefusalOf(const std::string& archive) {
    try {
      UnpackBytes(archive);
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.RuntimeNumber(), static_cast<std::uint16_t>(RuntimeError::InvalidCall));
      EXPECT_THAT(error.Description(), HasSubstr(kBlob));
      return error.Description();
    }
    ADD_FAILURE() << "accepted";
    return "accepted";
  }
};

std::string ArchiveOf(const std::vector<std::string>& names) {
  ZipWriter writer;
  for (const std::string& name : names) {
    writer.Add(name, "", false);
  }
  return writer.Finish();
}

// Two entries, "stored.txt" and "deflated.txt".
std::string SampleArchive() {
  ZipWriter writer;
  writer.Add("stored.txt", "stored content", false);
  writer.Add("deflated.txt", "deflated deflated deflated content", true);
  return writer.Finish();
}

constexpr std::size_t kStored = 0;
constexpr std::size_t kDeflated = 1;

// --- What is read ---

TEST_F(Packing, UnpacksStoredAndDeflatedEntriesInTheirOrder) {
  std::string large;
  for (int i = 0; i < 100000; ++i) {
    large += std::to_string(i * 7919);
  }
  ZipWriter writer;
  writer.Add("b.txt", std::string("with\0NUL", 8), false);
  writer.Add("a.txt", large, true);
  writer.Add("empty stored", "", false);
  writer.Add("empty deflated", "", true);
  const std::vector<PackedEntry> entries = UnpackBytes(writer.Finish());
  ASSERT_EQ(entries.size(), 4u);
  EXPECT_EQ(entries[0].name, "b.txt");
  EXPECT_EQ(entries[0].bytes, std::string("with\0NUL", 8));
  EXPECT_EQ(entries[1].name, "a.txt");
  EXPECT_EQ(entries[1].bytes, large);
  EXPECT_EQ(entries[2].bytes, "");
  EXPECT_EQ(entries[3].bytes, "");
}

TEST_F(Packing, ReadsFoldersAndBothSeparators) {
  ZipWriter writer;
  writer.Add("outer/", "", false);
  writer.Add("outer/inner\\file", "x", false);
  const std::vector<PackedEntry> entries = UnpackBytes(writer.Finish());
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].name, "outer");
  EXPECT_TRUE(entries[0].isFolder);
  EXPECT_EQ(entries[1].name, "outer\\inner\\file");
  EXPECT_FALSE(entries[1].isFolder);
}

TEST_F(Packing, ReadsNamesAsUtf8OnlyWhereTheEntrySaysSo) {
  std::string archive = ArchiveOf({"\xC3\xA4.txt"});
  EXPECT_EQ(UnpackBytes(archive).at(0).name, "\xC3\xA4.txt");
  test::Put16(archive, test::DirectoryRecord(archive, 0) + 8, 0);
  EXPECT_EQ(UnpackBytes(archive).at(0).name, "\xC3\x83\xC2\xA4.txt");  // the two bytes as ANSI letters
}

TEST_F(Packing, ReadsAnArchiveWithoutEntries) { EXPECT_TRUE(UnpackBytes(ZipWriter().Finish()).empty()); }

TEST_F(Packing, ReadsAnEntryWhoseLengthsStandBehindItsData) {
  // Such a writer leaves lengths and checksum of the local record 0.
  std::string archive = SampleArchive();
  for (const std::size_t index : {kStored, kDeflated}) {
    const std::size_t local = test::LocalRecord(archive, index);
    test::Put16(archive, local + 6, 0x0008);
    test::Put16(archive, test::DirectoryRecord(archive, index) + 8, 0x0008);
    test::Put32(archive, local + 14, 0);
    test::Put32(archive, local + 18, 0);
    test::Put32(archive, local + 22, 0);
  }
  EXPECT_EQ(UnpackBytes(archive).at(kDeflated).bytes, "deflated deflated deflated content");
}

TEST_F(Packing, FindsTheEndRecordInFrontOfAComment) {
  for (const std::string& comment :
       {std::string("short"), std::string(65535, 'c'), std::string("PK\5\6") + std::string(30, '\0')}) {
    std::string archive = SampleArchive();
    test::Put16(archive, test::EndRecord(archive) + 20, static_cast<std::uint16_t>(comment.size()));
    EXPECT_EQ(UnpackBytes(archive + comment).size(), 2u) << comment.size();
  }
}

// --- What is no archive ---

TEST_F(Packing, FindsNoEntriesInWhatIsNoArchive) {
  std::mt19937 random(1);
  for (std::size_t length = 0; length < 200; ++length) {
    std::string bytes(length, '\0');
    for (char& byte : bytes) {
      byte = static_cast<char>(random());
    }
    EXPECT_TRUE(UnpackBytes(bytes).empty());
  }
  EXPECT_TRUE(UnpackBytes("").empty());
  EXPECT_TRUE(UnpackBytes("PK\5\6").empty());
  EXPECT_TRUE(UnpackBytes(std::string(100000, 'P')).empty());
}

TEST_F(Packing, FindsNoEntriesInAnArchiveCutOffAnywhere) {
  const std::string archive = SampleArchive();
  for (std::size_t length = 0; length < archive.size(); ++length) {
    EXPECT_TRUE(UnpackBytes(archive.substr(0, length)).empty()) << length;
  }
}

TEST_F(Packing, TakesNoEndRecordWhoseCommentDoesNotReachTheEnd) {
  EXPECT_TRUE(UnpackBytes(SampleArchive() + "x").empty());
  std::string archive = SampleArchive();
  test::Put16(archive, test::EndRecord(archive) + 20, 1);
  EXPECT_TRUE(UnpackBytes(archive).empty());
}

// --- Names ---

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
      {"..", "'..'"},
      {"../up", "'..'"},
      {"a/../../up", "'..'"},
      {"a\\..\\..\\up", "'..'"},
      {"a/..", "'..'"},
      {"../", "'..'"},
      {"./here", "'.'"},
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
}

// --- Kinds ---

TEST_F(Packing, RefusesLinksAndSpecialFiles) {
  for (const std::uint32_t attributes :
       {0xA1FF0000u, 0x21FF0000u, 0x61FF0000u, 0x11FF0000u, 0xC1FF0000u, 0x41FF0000u, 0x400u}) {
    std::string archive = SampleArchive();
    test::Put32(archive, test::DirectoryRecord(archive, kStored) + 38, attributes);
    EXPECT_THAT(RefusalOf(archive), HasSubstr("'stored.txt' is a link or another special file")) << attributes;
  }
}

TEST_F(Packing, AcceptsTheAttributesOfFilesAndFolders) {
  std::string archive = ArchiveOf({"file", "folder/"});
  test::Put32(archive, test::DirectoryRecord(archive, 0) + 38, 0x81A40020);
  test::Put32(archive, test::DirectoryRecord(archive, 1) + 38, 0x41ED0010);
  EXPECT_EQ(UnpackBytes(archive).size(), 2u);
}

TEST_F(Packing, RefusesEncryptedEntries) {
  for (const std::uint16_t flags : {0x0001, 0x0040, 0x2000}) {
    std::string archive = SampleArchive();
    test::Put16(archive, test::DirectoryRecord(archive, kDeflated) + 8, flags);
    EXPECT_THAT(RefusalOf(archive), HasSubstr("'deflated.txt' is encrypted")) << flags;
  }
}

TEST_F(Packing, RefusesOtherMethods) {
  std::string archive = SampleArchive();
  test::Put16(archive, test::DirectoryRecord(archive, kDeflated) + 10, 12);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("'deflated.txt' is packed by a method that is not read (12)"));
  archive = SampleArchive();
  test::Put16(archive, test::DirectoryRecord(archive, kDeflated) + 8, 0x0020);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("method"));
}

TEST_F(Packing, RefusesZip64) {
  for (const std::size_t field : {20u, 24u, 42u}) {
    std::string archive = SampleArchive();
    test::Put32(archive, test::DirectoryRecord(archive, kDeflated) + field, 0xFFFFFFFF);
    EXPECT_THAT(RefusalOf(archive), HasSubstr("ZIP64")) << field;
  }
  std::string archive = SampleArchive();
  test::Put16(archive, test::EndRecord(archive) + 8, 0xFFFF);
  test::Put16(archive, test::EndRecord(archive) + 10, 0xFFFF);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("ZIP64"));
}

TEST_F(Packing, RefusesAPartOfAnArchive) {
  for (const std::size_t field : {4u, 6u, 8u}) {
    std::string archive = SampleArchive();
    test::Put16(archive, test::EndRecord(archive) + field, 1);
    EXPECT_THAT(RefusalOf(archive), HasSubstr("one part of an archive")) << field;
  }
  std::string archive = SampleArchive();
  test::Put16(archive, test::DirectoryRecord(archive, kStored) + 34, 1);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("another part"));
}

// --- Damage ---

TEST_F(Packing, RefusesDataThatDoesNotMatchItsChecksum) {
  std::string archive = SampleArchive();
  archive[archive.find("stored content")] ^= 1;
  EXPECT_THAT(RefusalOf(archive), HasSubstr("'stored.txt' is damaged: its checksum is wrong"));
  archive = SampleArchive();
  test::Put32(archive, test::DirectoryRecord(archive, kDeflated) + 16, 0);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("'deflated.txt' is damaged: its checksum is wrong"));
}

TEST_F(Packing, RefusesADamagedDeflateStream) {
  std::string archive = SampleArchive();
  const std::size_t data = test::LocalRecord(archive, kDeflated) + 30 + std::string("deflated.txt").size();
  archive[data] = '\x07';  // a block of no known type
  EXPECT_THAT(RefusalOf(archive), HasSubstr("'deflated.txt' is damaged: its data does not unpack"));
}

TEST_F(Packing, RefusesDataThatUnpacksToAnotherLength) {
  const std::uint32_t length = std::string("deflated deflated deflated content").size();
  for (const std::uint32_t declared : {0u, 1u, length - 1, length + 1, 60u << 20}) {
    std::string archive = SampleArchive();
    test::Put32(archive, test::DirectoryRecord(archive, kDeflated) + 24, declared);
    EXPECT_THAT(RefusalOf(archive), HasSubstr("'deflated.txt' is damaged: its data does not unpack")) << declared;
  }
  std::string archive = SampleArchive();
  test::Put32(archive, test::DirectoryRecord(archive, kStored) + 24, 3);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("stored with two lengths"));
}

TEST_F(Packing, RefusesBytesBehindADeflateStream) {
  std::string archive = SampleArchive();
  const std::size_t directory = test::DirectoryRecord(archive, 0);
  archive.insert(directory, "more");
  test::Put32(archive, test::EndRecord(archive) + 16, static_cast<std::uint32_t>(directory + 4));
  ASSERT_EQ(UnpackBytes(archive).size(), 2u);
  const std::size_t packedLength = test::DirectoryRecord(archive, kDeflated) + 20;
  test::Put32(archive, packedLength, test::Get32(archive, packedLength) + 4);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("'deflated.txt' is damaged: its data does not unpack"));
}

TEST_F(Packing, RefusesADirectoryThatIsCutShort) {
  const std::string good = SampleArchive();
  const std::uint32_t length = test::Get32(good, test::EndRecord(good) + 12);
  for (std::uint32_t shorter = 0; shorter < length; ++shorter) {
    std::string archive = good;
    test::Put32(archive, test::EndRecord(archive) + 12, shorter);
    EXPECT_THAT(RefusalOf(archive), HasSubstr("its directory is damaged")) << shorter;
  }
}

TEST_F(Packing, RefusesAFolderWithContent) {
  ZipWriter writer;
  writer.Add("folder/", "content", false);
  EXPECT_THAT(RefusalOf(writer.Finish()), HasSubstr("folder with content"));
}

TEST_F(Packing, RefusesEntriesOutsideOfTheFile) {
  for (const std::uint32_t offset : {1u, 1000u, 0x7FFFFFFFu, 0xFFFFFFFEu}) {
    std::string archive = SampleArchive();
    test::Put32(archive, test::DirectoryRecord(archive, kDeflated) + 42, offset);
    EXPECT_THAT(RefusalOf(archive), HasSubstr("is not where the directory says")) << offset;
  }
  std::string archive = SampleArchive();
  test::Put32(archive, test::DirectoryRecord(archive, kDeflated) + 20, 10000);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("reaches into the directory"));
  archive = SampleArchive();
  test::Put16(archive, test::LocalRecord(archive, kDeflated) + 28, 0xFFFF);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("reaches into the directory"));
}

TEST_F(Packing, RefusesADirectoryThatIsNotWhereTheEndRecordSays) {
  for (const std::uint32_t offset : {0u, 1u, 0x7FFFFFFFu, 0xFFFFFFFEu}) {
    std::string archive = SampleArchive();
    test::Put32(archive, test::EndRecord(archive) + 16, offset);
    EXPECT_THAT(RefusalOf(archive), HasSubstr("its directory")) << offset;
  }
  EXPECT_THAT(RefusalOf("in front" + SampleArchive()), HasSubstr("its directory"));
}

TEST_F(Packing, RefusesAnotherNumberOfEntriesThanTheDirectoryHolds) {
  for (const std::uint16_t entries : {0, 1, 3, 0xFFFE}) {
    std::string archive = SampleArchive();
    test::Put16(archive, test::EndRecord(archive) + 8, entries);
    test::Put16(archive, test::EndRecord(archive) + 10, entries);
    EXPECT_THAT(RefusalOf(archive), HasSubstr("its directory")) << entries;
  }
}

TEST_F(Packing, RefusesAnEntryThatItsOwnRecordDescribesDifferently) {
  std::string archive = SampleArchive();
  archive[test::LocalRecord(archive, kStored) + 30] = 'S';
  EXPECT_THAT(RefusalOf(archive), HasSubstr("'stored.txt' is described in two ways"));
  archive = SampleArchive();
  test::Put16(archive, test::LocalRecord(archive, kStored) + 8, 8);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("'stored.txt' is described in two ways"));
  archive = SampleArchive();
  test::Put16(archive, test::LocalRecord(archive, kStored) + 6, 1);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("'stored.txt' is described in two ways"));
}

TEST_F(Packing, RefusesOverlappingEntries) {
  ZipWriter inner;
  inner.Add("inner", "inner content", false);
  const std::string record = inner.Finish();
  ZipWriter writer;
  writer.Add("outer", record, false);
  writer.Add("inner", "inner content", false);
  std::string archive = writer.Finish();
  ASSERT_EQ(UnpackBytes(archive).size(), 2u);
  // The directory says that the second entry is the one within the first one's data.
  test::Put32(archive, test::DirectoryRecord(archive, 1) + 42, 30 + 5);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("'inner' overlaps another entry"));
}

// --- Limits ---

TEST_F(Packing, RefusesAnEntryBeyondTheLimitBeforeUnpackingIt) {
  std::string archive = SampleArchive();
  test::Put32(archive, test::DirectoryRecord(archive, kDeflated) + 24, (64u << 20) + 1);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("'deflated.txt' has 67108865 bytes, more than are unpacked"));
}

TEST_F(Packing, RefusesAnArchiveBeyondTheLimitBeforeUnpackingIt) {
  ZipWriter writer;
  for (int i = 0; i < 5; ++i) {
    writer.Add("entry" + std::to_string(i), "x", true);
  }
  std::string archive = writer.Finish();
  for (std::size_t i = 0; i < 5; ++i) {
    test::Put32(archive, test::DirectoryRecord(archive, i) + 24, 30u << 20);
  }
  EXPECT_THAT(RefusalOf(archive), HasSubstr("'entry4' brings the archive to more bytes than are unpacked"));
}

TEST_F(Packing, UnpacksAnEntryUpToTheLimit) {
  ZipWriter writer;
  writer.Add("large", std::string(kLargestPackedEntry, '\0'), true);
  EXPECT_EQ(UnpackBytes(writer.Finish()).at(0).bytes.size(), kLargestPackedEntry);
}

TEST_F(Packing, ReadsManyEntries) {
  ZipWriter writer;
  for (int i = 0; i < 65534; ++i) {
    writer.Add("entry" + std::to_string(i), "", false);
  }
  EXPECT_EQ(UnpackBytes(writer.Finish()).size(), 65534u);
}

// --- Mutations ---

TEST_F(Packing, SurvivesThousandsOfMutatedArchives) {
  ZipWriter writer;
  writer.Add("Tag", "<Document><Product TagVersion=\"4.70\" lTagID=\"7\"/></Document>\r\n", true);
  writer.Add("folder/", "", false);
  writer.Add("folder/drawing.dat", std::string(300, 'd'), false);
  writer.Add("folder/more.dat", std::string(3000, 'm'), true);
  const std::string good = writer.Finish();
  const std::size_t firstDirectoryByte = test::DirectoryRecord(good, 0);

  std::mt19937 random(470);
  const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
  const std::vector<std::uint32_t> extremes = {0,      1,      2,          0x7F,       0xFF,      0x7FFF,
                                               0xFFFE, 0xFFFF, 0x7FFFFFFF, 0xFFFFFFFE, 0xFFFFFFFF};
  int refused = 0;
  int accepted = 0;
  int without = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string archive = good;
    for (std::size_t changes = 1 + below(3); changes > 0; --changes) {
      // Most changes meet the directory, where they do most harm.
      const std::size_t from = below(4) == 0 ? 0 : firstDirectoryByte;
      const std::size_t at = from + below(archive.size() - from - 4);
      switch (below(5)) {
        case 0:
          archive[at] ^= static_cast<char>(1 << below(8));
          break;
        case 1:
          archive[at] = static_cast<char>(random());
          break;
        case 2:
          test::Put16(archive, at, static_cast<std::uint16_t>(extremes[below(extremes.size())]));
          break;
        case 3:
          test::Put32(archive, at, extremes[below(extremes.size())]);
          break;
        default:
          test::Put32(archive, at, static_cast<std::uint32_t>(below(good.size())));
          break;
      }
    }
    try {
      const std::vector<PackedEntry> entries = UnpackBytes(archive);
      (entries.empty() ? without : accepted) += 1;
      for (const PackedEntry& entry : entries) {
        ASSERT_LE(entry.bytes.size(), kLargestPackedEntry);
        ASSERT_EQ(entry.name.find(':'), std::string::npos);
        ASSERT_NE(entry.name.front(), '\\');
      }
    } catch (const AutomationError& error) {
      ++refused;
      ASSERT_THAT(error.Description(), HasSubstr(kBlob));
    }
  }
  // All three ends are reached often: the mutations are neither harmless nor always caught by the first check.
  EXPECT_GT(refused, 5000);
  EXPECT_GT(accepted, 1000);
  EXPECT_GT(without, 500);
}

}  // namespace
}  // namespace parvex
