#pragma once

#include "formats/jet/table.h"

namespace parvex::jet {

/// Decodes rows where no library does: texts, memos, Booleans and the binary numbers. Currency, Decimal, dates and
/// GUIDs have no text, like binary values.
Table DecodeTable(const File& file, std::uint32_t definitionPage);

}  // namespace parvex::jet
