#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "formats/jet/format.h"

namespace parvex::jet {

/// A row. Values are as many as columns; the value of a fixed column has exactly its size.
std::string EncodeRow(const RowShape& shape, const StoredValues& values);
/// The reverse; nothing when the row's bytes contradict themselves or the shape.
std::optional<StoredValues> DecodeRow(const RowShape& shape, std::string_view row);

}  // namespace parvex::jet
