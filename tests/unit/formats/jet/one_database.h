#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "formats/jet/databases.h"
#include "formats/jet/writer.h"
#include "tests/support/one_file.h"

namespace parvex::jet {

inline constexpr const char* kPath = "C:\\Project.mdb";
/// Of the first table that is not the system's.
inline constexpr std::uint32_t kDefinitionPage = kCataloguePage + 4;

inline standin::JetTable ConfigTable(int rows) {
  standin::JetTable table{"Config", {{"sPdsg"}, {"sKey"}, {"sValue"}}, {}};
  for (int i = 0; i < rows; ++i) table.rows.push_back({"KDQ47", "key" + std::to_string(i), "v" + std::to_string(i)});
  return table;
}

/// A database of either version in the only file of its machine.
class OneDatabase : public testing::TestWithParam<Version> {
 protected:
  test::OneFile file;
  Databases databases{file};
  const std::size_t pageSize = PageSize(GetParam());
  /// A letter beyond Latin-1 that either version can store.
  const std::string beyond = "€";

  void Make(standin::JetTable table) {
    file.bytes = standin::MakeJetDatabase(std::vector{std::move(table)}, GetParam());
  }

  std::unique_ptr<RecordSet> Rows(const std::string& sql) {
    database_ = databases.Open(kPath);
    return database_->OpenRecordSet(sql);
  }
  std::vector<std::optional<std::string>> Column(const std::string& name, const std::string& table = "Config") {
    const auto rows = Rows("SELECT * FROM " + table);
    std::vector<std::optional<std::string>> texts;
    for (; !rows->AtEnd(); rows->MoveNext()) texts.push_back(rows->Column(name));
    return texts;
  }
  void SetValue(RecordSet& rows, const std::string& value) {
    rows.Edit();
    rows.SetColumn("sValue", value);
    rows.Update();
  }

 private:
  std::unique_ptr<Database> database_;
};

/// The database with its header changed behind its mask.
template <typename Change>
std::string WithHeader(const std::string& database, Change change) {
  const Version version = static_cast<Version>(database[0x14]);
  std::string header = database.substr(0, PageSize(version));
  ToggleHeaderMask(header, version);
  change(header);
  ToggleHeaderMask(header, version);
  return header + database.substr(PageSize(version));
}

inline std::string VersionName(const testing::TestParamInfo<Version>& tested) {
  return tested.param == Version::Jet3 ? "Jet3" : "Jet4";
}

}  // namespace parvex::jet
