#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "formats/zip/zip_reader.h"
#include "formats/zip/zip_writer.h"
#include "hybris/stored_tag_text.h"
#include "tests/faults/limited_child.h"
#include "tests/support/fake_platform.h"
#include "tests/support/zip_patch.h"

// Archives that were made to do harm, read as the export reads a tag's stored data: each is refused with an error that
// names the blob, quickly and in little memory, and nothing is written.

namespace parvex::test {
namespace {

using testing::HasSubstr;

constexpr const char* kBlob = "C:\\Korvane\\TQ5-VX\\Projects\\Tower\\unit.blb";

constexpr std::uint32_t kMegabyte = 1u << 20;
// Fields of a record of the directory and of the record at the archive's end.
constexpr std::size_t kPackedLength = 20, kLength = 24, kOffset = 42;
constexpr std::size_t kEndEntriesHere = 8, kEndEntries = 10;

struct Attack {
  std::string name;
  std::function<std::string()> make;
};

void PrintTo(const Attack& attack, std::ostream* out) { *out << attack.name; }

std::vector<std::string> FilesBelow(const std::filesystem::path& root) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    files.push_back(std::filesystem::relative(entry.path(), root).string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void ExpectRefused(const std::string& archive) {
  FakeMachine machine;
  machine.Write(kBlob, archive);
  const std::vector<std::string> before = FilesBelow(machine.folder.Path());
  const ChildOutcome outcome = InLimitedChild([&] {
    ReadStoredTagText(machine.platform, kBlob);
    return std::string("read");
  });
  ExpectQuick(outcome);
  EXPECT_THAT(outcome.answer, HasSubstr(std::string("the blob \"") + kBlob + "\" is refused: "));
  EXPECT_EQ(FilesBelow(machine.folder.Path()), before);
}

// --- Names that lead elsewhere ---

class EscapingName : public testing::TestWithParam<std::string> {};

TEST_P(EscapingName, IsRefusedAndNothingIsWritten) {
  ZipWriter writer;
  writer.Add("Tag", "<Product/>", true);
  writer.Add(GetParam(), "written where it does not belong", true);
  ExpectRefused(writer.Finish());
}

INSTANTIATE_TEST_SUITE_P(InAnArchive, EscapingName,
                         testing::Values("../up", "..\\up", "a/../../up", "a\\..\\..\\up", "a/..", "..", "../",
                                         "./here", ".", "a/./b", "/root", "\\root", "//server/share/x",
                                         "\\\\server\\share\\x", "\\\\?\\C:\\x", "\\\\.\\C:\\x", "C:\\x", "C:/x", "C:x",
                                         "c:", "x:stream", "x::$DATA", "Tag:hidden", "a//b", "a\\\\b", "NUL", "nul.",
                                         "a/CON", "COM1", "LPT9", "aux ", "... ", ".. /up", "a/.../b",
                                         std::string("x\0y", 3), std::string("../\0x", 5), "x\ny", "x\x1Fy", "x?", "*",
                                         "a|b", "<x>", "\xC0\xAE\xC0\xAE/up", "\xE0\x80\xAE./up", "\xED\xA0\x80",
                                         "\xFF/x", std::string(300, 'n'), "unit.blb", "UNIT.BLB", "unit.blb/inside"));

// --- Bombs ---

// The entry is `length` zeros, and the directory says so.
std::string Zeros(std::size_t length, int entries = 1) {
  const std::string zeros(length, '\0');
  ZipWriter writer;
  for (int i = 0; i < entries; ++i) {
    writer.Add("zeros" + std::to_string(i), zeros, true);
  }
  return writer.Finish();
}

std::string WithField(std::string archive, std::size_t field, std::uint32_t value) {
  Put32(archive, DirectoryRecord(archive, 0) + field, value);
  return archive;
}

// Many entries of the directory that all mean the first one's data, each under a name of its own.
std::string SharedData(int entries) {
  ZipWriter writer;
  writer.Add("000", std::string(kMegabyte, '\0'), true);
  for (int i = 1; i < entries; ++i) {
    writer.Add(std::to_string(1000 + i).substr(1), "", true);
  }
  std::string archive = writer.Finish();
  const std::size_t first = DirectoryRecord(archive, 0);
  for (int i = 1; i < entries; ++i) {
    const std::size_t record = DirectoryRecord(archive, static_cast<std::size_t>(i));
    archive.replace(record + 16, 12, archive, first + 16, 12);  // checksum and both lengths
    Put32(archive, record + kOffset, 0);
  }
  return archive;
}

// An archive within the data of another's entry, its own entry listed as well.
std::string NestedRecords() {
  ZipWriter inner;
  inner.Add("inner", "inner content", false);
  ZipWriter writer;
  writer.Add("outer", inner.Finish(), false);
  writer.Add("inner", "inner content", false);
  std::string archive = writer.Finish();
  Put32(archive, DirectoryRecord(archive, 1) + kOffset, 30 + 5);
  return archive;
}

std::string WithEntryCount(std::uint16_t count) {
  std::string archive = Zeros(10);
  const std::size_t end = EndRecord(archive);
  Put16(archive, end + kEndEntriesHere, count);
  Put16(archive, end + kEndEntries, count);
  return archive;
}

// Deflated data that says nothing for a megabyte: empty blocks, none of them the last.
std::string EmptyBlocks() {
  std::string blocks;
  while (blocks.size() < kMegabyte) {
    blocks.append("\x00\x00\x00\xFF\xFF", 5);
  }
  ZipWriter writer;
  writer.Add("a", blocks, false);
  std::string archive = writer.Finish();
  const std::size_t local = LocalRecord(archive, 0);
  const std::size_t record = DirectoryRecord(archive, 0);
  Put16(archive, local + 8, 8);
  Put16(archive, record + 10, 8);
  Put32(archive, record + kLength, 100);
  return archive;
}

class Bomb : public testing::TestWithParam<Attack> {};

TEST_P(Bomb, IsRefused) { ExpectRefused(GetParam().make()); }

INSTANTIATE_TEST_SUITE_P(
    InAnArchive, Bomb,
    testing::Values(
        Attack{"OneLargeEntry", [] { return Zeros(65 * kMegabyte); }},
        Attack{"LargeEntriesTogether", [] { return Zeros(45 * kMegabyte, 3); }},
        Attack{"AHundredMegabytesSaidToBeTenBytes", [] { return WithField(Zeros(100 * kMegabyte), kLength, 10); }},
        Attack{"AHundredMegabytesSaidToBeJustAllowed",
               [] { return WithField(Zeros(100 * kMegabyte), kLength, 64 * kMegabyte); }},
        Attack{"TenBytesSaidToBeFourGigabytes", [] { return WithField(Zeros(10), kLength, 0xFFFFFFFE); }},
        Attack{"TenBytesSaidToBeSixtyMegabytes", [] { return WithField(Zeros(10), kLength, 60 * kMegabyte); }},
        Attack{"LengthsElsewhere", [] { return WithField(Zeros(10), kLength, 0xFFFFFFFF); }},
        Attack{"DataBeyondTheFile", [] { return WithField(Zeros(10), kPackedLength, 60 * kMegabyte); }},
        Attack{"DataAtAnotherPlace", [] { return WithField(Zeros(10), kOffset, 0xFFFFFFF0); }},
        Attack{"ManyEntriesOfOneData", [] { return SharedData(100); }}, Attack{"EntriesWithinEntries", NestedRecords},
        Attack{"MoreEntriesThanTheDirectoryHolds", [] { return WithEntryCount(60'000); }},
        Attack{"EntriesCountedElsewhere", [] { return WithEntryCount(0xFFFF); }},
        Attack{"DataWithoutAnEnd", EmptyBlocks}),
    [](const testing::TestParamInfo<Attack>& info) { return info.param.name; });

// --- Crowds ---

std::string Named(std::size_t count, const std::function<std::string(std::size_t)>& name) {
  ZipWriter writer;
  for (std::size_t i = 0; i < count; ++i) {
    writer.Add(name(i), "", false);
  }
  return writer.Finish();
}

std::string DeepName(const std::string& component, std::size_t depth) {
  std::string name;
  for (std::size_t i = 0; i < depth; ++i) {
    name += component + "/";
  }
  return name;
}

class Crowd : public testing::TestWithParam<Attack> {};

TEST_P(Crowd, IsRefused) { ExpectRefused(GetParam().make()); }

INSTANTIATE_TEST_SUITE_P(
    InAnArchive, Crowd,
    testing::Values(
        Attack{"OfFiles", [] { return Named(65'534, [](std::size_t i) { return std::to_string(i); }); }},
        Attack{"OfJustTooManyFiles",
               [] { return Named(kUnpackedAsFiles.entries + 1, [](std::size_t i) { return std::to_string(i); }); }},
        Attack{"OfFolders", [] { return Named(20'000, [](std::size_t i) { return std::to_string(i) + "/"; }); }},
        Attack{"OfFoldersThatHoldAFile",
               [] { return Named(1'999, [](std::size_t i) { return std::to_string(i) + "/a"; }); }},
        Attack{"OfFoldersInFolders",
               [] {
                 return Named(1'999, [](std::size_t i) { return std::to_string(i) + "/" + DeepName("a", 60) + "x"; });
               }}),
    [](const testing::TestParamInfo<Attack>& info) { return info.param.name; });

// As many as are unpacked, in as many folders, each under a name that may be a short one.
TEST(LargestCrowd, IsUnpackedInTheTimeThatHostileOnesMayTake) {
  FakeMachine machine;
  const std::string folder = DeepName("a~1", kUnpackedAsFiles.folders / 8);
  machine.Write(kBlob, Named(kUnpackedAsFiles.entries, [&](std::size_t i) {
                  return i < kUnpackedAsFiles.folders * 7 / 8 - 1 ? std::to_string(i) + "~1/"
                                                                  : folder + std::to_string(i) + "~1";
                }));
  const ChildOutcome outcome = InLimitedChild([&] {
    ReadStoredTagText(machine.platform, kBlob);
    return std::string("read");
  });
  ExpectQuick(outcome);
  EXPECT_EQ(outcome.answer, "read");
}

TEST(LargestArchive, IsReadInTheMemoryThatHostileOnesMayTake) {
  const std::string archive = Zeros(63 * kMegabyte, 2);
  FakeMachine machine;
  const ChildOutcome outcome =
      InLimitedChild([&] { return std::to_string(Unpack(*machine.platform.codePage, archive, kBlob).size()); });
  ExpectQuick(outcome);
  EXPECT_EQ(outcome.answer, "2");
}

}  // namespace
}  // namespace parvex::test
