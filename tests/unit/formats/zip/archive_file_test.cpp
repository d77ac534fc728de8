#include "formats/zip/archive_file.h"

#include <gtest/gtest.h>

#include "formats/text/windows_1252.h"
#include "formats/zip/zip_reader.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

struct MemoryFile : HostSystem::File {
  std::string bytes;
  std::size_t room = std::string::npos;
  void Append(std::string_view more) override {
    bytes += more.substr(0, room - bytes.size());
    if (bytes.size() >= room) {
      throw MakeRuntimeError(RuntimeError::DiskFull, "full");
    }
  }
  void Overwrite(std::uint64_t at, std::string_view more) override { bytes.replace(at, more.size(), more); }
  void Truncate(std::uint64_t size) override { bytes.resize(size); }
  std::string Read(std::uint64_t at, std::size_t most) override { return bytes.substr(at, most); }
};

class ArchiveFileTest : public testing::Test {
 protected:
  std::vector<PackedEntry> Entries(std::string_view bytes) { return Unpack(codePage, bytes, "a"); }

  posix::Windows1252 codePage;
  MemoryFile file;
  ArchiveFile archive{file};
};

TEST_F(ArchiveFileTest, IsReadBackAsAnArchive) {
  archive.Add("one.txt", "1");
  archive.Begin("two/\xC3\xA9.bin");
  archive.Append("ab");
  archive.Append("c");
  EXPECT_EQ(archive.End(), ChecksumOf("abc"));
  archive.Add("folder/", "");
  archive.Finish();
  const std::vector<PackedEntry> entries = Entries(file.bytes);
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[0].bytes, "1");
  EXPECT_EQ(entries[1].name, "two\\\xC3\xA9.bin");
  EXPECT_EQ(entries[1].bytes, "abc");
  EXPECT_TRUE(entries[2].isFolder);
}

TEST_F(ArchiveFileTest, HasItsWholeEntriesBeforeItIsFinished) {
  archive.Add("one.txt", "1");
  archive.Add("two.txt", "22");
  archive.Begin("three.txt");
  archive.Append("333");
  const std::vector<PackedEntry> entries = Entries(WithDirectory(file.bytes));
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[1].bytes, "22");
  archive.End();
  EXPECT_EQ(Entries(WithDirectory(file.bytes)).size(), 3u);
}

// A host that dies leaves the file cut off anywhere.
TEST_F(ArchiveFileTest, CutOffAnywhereItHasTheEntriesBefore) {
  archive.Add("one.txt", "1");
  const std::size_t first = file.bytes.size();
  archive.Add("two.txt", "22");
  for (std::size_t size = 0; size <= file.bytes.size(); ++size) {
    const std::size_t whole = size == file.bytes.size() ? 2 : size >= first ? 1 : 0;
    EXPECT_EQ(Entries(WithDirectory(std::string_view(file.bytes).substr(0, size))).size(), whole) << size;
  }
}

TEST_F(ArchiveFileTest, LeavesOutAnEntryThatTheFileRefused) {
  archive.Add("one.txt", "1");
  file.room = file.bytes.size() + 50;
  EXPECT_THROW(archive.Add("large.txt", std::string(100, 'x')), AutomationError);
  archive.Begin("pieces");
  EXPECT_THROW(archive.Append(std::string(100, 'x')), AutomationError);
  archive.Drop();
  file.room = std::string::npos;
  archive.Add("two.txt", "22");
  archive.Finish();
  const std::vector<PackedEntry> entries = Entries(file.bytes);
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[1].name, "two.txt");
}

class GatheringArchiveFile : public ArchiveFileTest {
 protected:
  std::vector<std::string> lost;
  ArchiveFile gathering{file, 1'000, [this](std::string_view name, std::string_view) { lost.emplace_back(name); }};
};

TEST_F(GatheringArchiveFile, WritesSmallEntriesTogether) {
  gathering.Add("one.txt", "1");
  gathering.Add("two.txt", "22");
  EXPECT_EQ(file.bytes, "");
  EXPECT_GT(gathering.Size(), 3u);
  gathering.Flush();
  EXPECT_EQ(Entries(WithDirectory(file.bytes)).size(), 2u);
  gathering.Add("three.txt", "333");
  gathering.Finish();
  const std::vector<PackedEntry> entries = Entries(file.bytes);
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[2].bytes, "333");
}

TEST_F(GatheringArchiveFile, KeepsTheOrderAmongSmallAndLargeOnes) {
  gathering.Add("small.txt", "s");
  gathering.Add("large.txt", std::string(5'000, 'l'));
  gathering.Add("next.txt", "n");
  gathering.Begin("pieces.txt");
  for (int i = 0; i < 30; ++i) {
    gathering.Append(std::string(100, static_cast<char>('a' + i % 26)));
  }
  gathering.End();
  for (int i = 0; i < 100; ++i) {
    gathering.Add("many" + std::to_string(i), std::string(50, 'm'));
  }
  gathering.Finish();
  const std::vector<PackedEntry> entries = Entries(file.bytes);
  ASSERT_EQ(entries.size(), 104u);
  EXPECT_EQ(entries[1].bytes, std::string(5'000, 'l'));
  EXPECT_EQ(entries[2].name, "next.txt");
  EXPECT_EQ(entries[3].bytes.size(), 3'000u);
  EXPECT_EQ(entries[103].name, "many99");
}

TEST_F(GatheringArchiveFile, TellsWhichEntriesCouldNotBeWritten) {
  file.room = 200;
  gathering.Add("one.txt", std::string(100, '1'));
  gathering.Add("two.txt", std::string(100, '2'));
  gathering.Add("three.txt", "3");
  gathering.Flush();
  EXPECT_EQ(lost, std::vector<std::string>{"two.txt"});
  file.room = std::string::npos;
  gathering.Finish();
  const std::vector<PackedEntry> entries = Entries(file.bytes);
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[1].name, "three.txt");
}

}  // namespace
}  // namespace parvex
