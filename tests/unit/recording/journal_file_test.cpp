#include "recording/journal_file.h"

#include <gtest/gtest.h>

#include "seams/automation_error.h"

namespace parvex::recording {
namespace {

struct JournalInMemory : HostSystem::File {
  std::string bytes;
  std::size_t room = std::string::npos;
  int pieces = 0;
  void Append(std::string_view more) override {
    ++pieces;
    const std::size_t fits = std::min(room - bytes.size(), more.size());
    bytes += more.substr(0, fits);
    if (fits < more.size()) {
      throw MakeRuntimeError(RuntimeError::DiskFull, "full");
    }
  }
  void Overwrite(std::uint64_t, std::string_view) override {}
  void Truncate(std::uint64_t size) override { bytes.resize(size); }
  std::string Read(std::uint64_t at, std::size_t most) override { return bytes.substr(at, most); }
};

class JournalFileTest : public testing::Test {
 protected:
  JournalInMemory file;
  std::string lost;
  JournalFile journal{file, [this](std::uint64_t step, const char* at, std::string_view why) {
                        lost += std::to_string(step) + " " + at + " " + std::string(why) + "\n";
                      }};
};

TEST_F(JournalFileTest, WritesTheLinesThatWaitTogether) {
  journal.Add(1, "once", "a\n");
  journal.Add(2, "before", "bb\n");
  EXPECT_EQ(file.bytes, "");
  journal.Flush();
  EXPECT_EQ(file.bytes, "a\nbb\n");
  EXPECT_EQ(file.pieces, 1);
  EXPECT_EQ(journal.Size(), 5u);
}

TEST_F(JournalFileTest, KeepsOnlySoMuchWaiting) {
  for (std::uint64_t step = 1; step <= 1'000; ++step) {
    journal.Add(step, "once", std::string(99, 'x') + "\n");
  }
  EXPECT_GT(file.bytes.size(), 30'000u);
  journal.Flush();
  EXPECT_EQ(file.bytes.size(), 100'000u);
}

TEST_F(JournalFileTest, LeavesOutOnlyLinesThatDoNotFit) {
  file.room = 8;
  journal.Add(1, "before", "one\n");
  journal.Add(1, "after", "more than fits\n");
  journal.Add(2, "once", "two\n");
  journal.Flush();
  EXPECT_EQ(file.bytes, "one\ntwo\n");
  EXPECT_EQ(lost, "1 after full\n");
}

}  // namespace
}  // namespace parvex::recording
