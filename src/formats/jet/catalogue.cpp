#include "formats/jet/catalogue.h"

namespace parvex::jet {

bool LooksLikeDatabase(std::string_view bytes) {
  constexpr std::string_view kMark{"\0\1\0\0Standard Jet DB\0", 20};
  return bytes.starts_with(kMark);
}

std::vector<NamedTable> UserTables(const File& file) {
  constexpr std::string_view kOfEngine = "MSys";
  constexpr std::uint32_t kPageOfId = 0x00FFFFFF;
  const TableDefinition catalogue = file.ReadTable(kCataloguePage);
  const auto id = catalogue.FindColumn("Id");
  const auto type = catalogue.FindColumn("Type");
  const auto name = catalogue.FindColumn("Name");
  std::vector<NamedTable> tables;
  if (!id || !type || !name) {
    return tables;
  }
  for (const Row& row : file.ReadRows(catalogue)) {
    const auto& idOfRow = row.values[*id];
    const auto& typeOfRow = row.values[*type];
    const auto& nameOfRow = row.values[*name];
    if (!idOfRow || idOfRow->size() != 4 || !typeOfRow || typeOfRow->size() != 2 || !nameOfRow ||
        Get16(*typeOfRow, 0) != kTableObject) {
      continue;
    }
    std::string text = file.Texts().Decode(*nameOfRow);
    if (!text.starts_with(kOfEngine)) {
      tables.push_back({std::move(text), Get32(*idOfRow, 0) & kPageOfId});
    }
  }
  return tables;
}

}  // namespace parvex::jet
