#pragma once

#include "formats/jet/table.h"

namespace parvex::jet {

/// Reads a table, by the page of its definition, and decodes its rows.
Table DecodeTable(const File& file, std::uint32_t definitionPage);

}  // namespace parvex::jet
