#include "formats/jet/table.h"

#include "formats/text/text.h"

namespace parvex::jet {

std::vector<std::size_t> Table::Find(const std::vector<std::pair<std::size_t, std::string>>& conditions) {
  // A length before each text keeps the texts of a key apart.
  const auto append = [](std::string& key, const std::string& text) {
    key += std::to_string(text.size()) + ':' + ToUpper(text);
  };
  std::string asked;
  std::string key;
  for (const auto& [column, text] : conditions) {
    asked += std::to_string(column) + ',';
    append(key, text);
  }
  auto [lookup, isNew] = lookups_.try_emplace(asked);
  if (isNew) {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      // A null adds nothing, and a key with a text missing is none that is ever asked for.
      std::string rowKey;
      for (const auto& condition : conditions) {
        const std::optional<std::string>& text = rows_[i].texts[condition.first];
        if (text) append(rowKey, *text);
      }
      lookup->second[rowKey].push_back(i);
    }
  }
  const auto found = lookup->second.find(key);
  return found == lookup->second.end() ? std::vector<std::size_t>{} : found->second;
}

}  // namespace parvex::jet
