#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "formats/jet/file.h"

namespace parvex::jet {

/// Whether bytes begin as a database of any version does.
bool LooksLikeDatabase(std::string_view bytes);

/// A table that the catalogue names.
struct NamedTable {
  std::string name;
  std::uint32_t definitionPage;
};

/// The tables of a database but for those of the engine itself, in the order of the catalogue; none for one without a
/// catalogue.
std::vector<NamedTable> UserTables(const File& file);

}  // namespace parvex::jet
