#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "formats/jet/databases.h"
#include "formats/jet/format.h"
#include "formats/jet/writer.h"
#include "seams/automation_error.h"
#include "tests/support/one_file.h"

// Databases that were cut off or got wrong bits are read and changed: rows or an error that says something, never a
// crash, a hang or a read outside the buffer (the sanitizers look).

namespace parvex::test {
namespace {

using standin::JetTable;
using Type = standin::JetColumn::Type;

constexpr const char* kPath = "C:\\Project.mdb";

std::string SoundDatabase(jet::Version version) {
  JetTable table{"Config",
                 {{"sPdsg"},
                  {"sKey"},
                  {"sValue"},
                  {"memo", Type::Memo},
                  {"number", Type::Long},
                  {"flag", Type::Boolean},
                  {"price", Type::Double}},
                 {}};
  for (int i = 0; i < 40; ++i) {
    const std::string n = std::to_string(i);
    table.rows.push_back({"KDQ47", "key" + n, i % 5 == 0 ? std::nullopt : std::optional("value " + n),
                          std::string(static_cast<std::size_t>(8 * i), 'm'), n, "True", "1.5"});
  }
  return standin::MakeJetDatabase(std::vector{table}, version);
}

class DamagedDatabase : public testing::TestWithParam<jet::Version> {
 protected:
  // Reads everything, then changes a row. What was read, and what failed, is counted.
  void Use(std::string bytes) {
    file_.bytes = std::move(bytes);
    jet::Databases databases(file_);
    Try([&] {
      const auto rows = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config");
      for (; !rows->AtEnd(); rows->MoveNext()) {
        for (const char* column : {"sKey", "sValue", "memo", "number", "flag", "price"}) {
          rows->Column(column);
        }
      }
    });
    Try([&] {
      const auto rows = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config WHERE sKey='key7'");
      if (!rows->AtEnd()) {
        rows->Edit();
        rows->SetColumn("sValue", std::string(200, 'x'));
        rows->Update();
      }
    });
  }

  const std::size_t pageSize = jet::PageSize(GetParam());
  int read_ = 0;
  int refused_ = 0;

 private:
  template <typename Action>
  void Try(Action action) {
    try {
      action();
      ++read_;
    } catch (const AutomationError& error) {
      ++refused_;
      EXPECT_NE(error.Description(), "");
    }
  }

  OneFile file_;
};

TEST_P(DamagedDatabase, CutOffAtAndInEveryPageIsRefusedOrRead) {
  const std::string sound = SoundDatabase(GetParam());
  Use(sound);
  ASSERT_EQ(refused_, 0);
  testing::internal::CaptureStderr();
  const std::size_t pages = sound.size() / pageSize;
  for (std::size_t page = 0; page < pages; ++page) {
    for (const std::size_t part : {std::size_t{0}, std::size_t{1}, std::size_t{100}, pageSize - 1}) {
      Use(sound.substr(0, page * pageSize + part));
    }
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  // Without its last page the file has lost rows or a definition.
  EXPECT_GE(refused_, static_cast<int>(2 * 4 * (pages - 1)));
}

TEST_P(DamagedDatabase, WithWrongBitsIsRefusedOrRead) {
  const std::string sound = SoundDatabase(GetParam());
  std::mt19937 random(471);
  testing::internal::CaptureStderr();
  for (int variant = 0; variant < 2'400; ++variant) {
    std::string bytes = sound;
    for (std::size_t flips = 1 + random() % 8; flips > 0; --flips) {
      // Every other flip meets the beginning of a page, where the structure stands.
      std::size_t at = random() % bytes.size();
      at -= flips % 2 == 0 ? at % pageSize - at % 64 : 0;
      bytes[at] = static_cast<char>(bytes[at] ^ 1 << random() % 8);
    }
    Use(std::move(bytes));
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_GT(refused_, 500);
  EXPECT_GT(read_, 500);
}

INSTANTIATE_TEST_SUITE_P(Versions, DamagedDatabase, testing::Values(jet::Version::Jet3, jet::Version::Jet4),
                         [](const auto& tested) {
                           return std::string(tested.param == jet::Version::Jet3 ? "Jet3" : "Jet4");
                         });

}  // namespace
}  // namespace parvex::test
