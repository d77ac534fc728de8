#pragma once

#include "formats/jet/table.h"

namespace parvex::posix {

/// libmdb decodes the rows. It trusts what it reads, so `file` has checked every page and row that it gets to see.
jet::Table ReadTableByLibmdb(const jet::File& file, std::uint32_t definitionPage);

}  // namespace parvex::posix
