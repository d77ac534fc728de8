#include "formats/zip/zip_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "formats/zip/zip_writer.h"
#include "tests/support/zip_patch.h"
#include "tests/unit/formats/zip/archive_reading.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;

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

// --- Kinds ---

TEST_F(Packing, RefusesLinksAndSpecialFiles) {
  for (const std::uint32_t attributes :
       {0xA1FF0000u, 0x21FF0000u, 0x61FF0000u, 0x11FF0000u, 0xC1FF0000u, 0x41FF0000u, 0x400u}) {
    std::string archive = SampleArchive();
    test::Put32(archive, test::DirectoryRecord(archive, kStored) + 38, attributes);
    EXPECT_THAT(RefusalOf(archive), HasSubstr("\"stored.txt\" is a link or another special file")) << attributes;
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
    EXPECT_THAT(RefusalOf(archive), HasSubstr("\"deflated.txt\" is encrypted")) << flags;
  }
}

TEST_F(Packing, RefusesOtherMethods) {
  std::string archive = SampleArchive();
  test::Put16(archive, test::DirectoryRecord(archive, kDeflated) + 10, 12);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("\"deflated.txt\" is packed by a method that is not read (12)"));
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
  EXPECT_THAT(RefusalOf(archive), HasSubstr("\"stored.txt\" is damaged: its checksum is wrong"));
  archive = SampleArchive();
  test::Put32(archive, test::DirectoryRecord(archive, kDeflated) + 16, 0);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("\"deflated.txt\" is damaged: its checksum is wrong"));
}

TEST_F(Packing, RefusesADamagedDeflateStream) {
  std::string archive = SampleArchive();
  const std::size_t data = test::LocalRecord(archive, kDeflated) + 30 + std::string("deflated.txt").size();
  archive[data] = '\x07';  // a block of no known type
  EXPECT_THAT(RefusalOf(archive), HasSubstr("\"deflated.txt\" is damaged: its data does not unpack"));
}

TEST_F(Packing, RefusesDataThatUnpacksToAnotherLength) {
  const std::uint32_t length = std::string("deflated deflated deflated content").size();
  for (const std::uint32_t declared : {0u, 1u, length - 1, length + 1, 60u << 20}) {
    std::string archive = SampleArchive();
    test::Put32(archive, test::DirectoryRecord(archive, kDeflated) + 24, declared);
    EXPECT_THAT(RefusalOf(archive), HasSubstr("\"deflated.txt\" is damaged: its data does not unpack")) << declared;
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
  EXPECT_THAT(RefusalOf(archive), HasSubstr("\"deflated.txt\" is damaged: its data does not unpack"));
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
  EXPECT_THAT(RefusalOf(archive), HasSubstr("\"stored.txt\" is described in two ways"));
  archive = SampleArchive();
  test::Put16(archive, test::LocalRecord(archive, kStored) + 8, 8);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("\"stored.txt\" is described in two ways"));
  archive = SampleArchive();
  test::Put16(archive, test::LocalRecord(archive, kStored) + 6, 1);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("\"stored.txt\" is described in two ways"));
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
  EXPECT_THAT(RefusalOf(archive), HasSubstr("\"inner\" overlaps another entry"));
}

// --- Limits ---

TEST_F(Packing, RefusesAnEntryBeyondTheLimitBeforeUnpackingIt) {
  std::string archive = SampleArchive();
  test::Put32(archive, test::DirectoryRecord(archive, kDeflated) + 24, (64u << 20) + 1);
  EXPECT_THAT(RefusalOf(archive), HasSubstr("\"deflated.txt\" has 67108865 bytes, more than are unpacked"));
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
  EXPECT_THAT(RefusalOf(archive), HasSubstr("\"entry4\" brings the archive to more bytes than are unpacked"));
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

}  // namespace
}  // namespace parvex::test
