#include <random>
#include <string>
#include <vector>

#include "tests/support/zip_patch.h"
#include "tests/unit/formats/zip/archive_reading.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;

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
}  // namespace parvex::test
