#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "formats/jet/format.h"
#include "formats/jet/stored_text.h"

namespace parvex::jet {

/// The bytes in which a column stores a value that is given as text; none for a false Boolean. An AutomationError that
/// names the column and the value when it cannot hold it: a text too long (3163), not of its type or with a character
/// that the file's code page lacks (3421).
std::optional<std::string> EncodeValue(const Column& column, std::string_view text, const TextForm& form);

/// What the stored bytes of a column that is not null read as; `stored` is a memo's whole text (File::ReadLongValue).
///
/// Numbers in decimal, Currency with four places and Decimal with as many as its column has, Single and Double as the
/// shortest text that is the same number, a Boolean as True, a date as YYYY-MM-DD hh:mm:ss (rounded to seconds), a GUID
/// in braces, its last two groups in one. Nothing for Binary and OLE object, for types that are not known, and for
/// bytes that are no value of their type: such a column is never read as an empty text.
std::optional<std::string> DecodeValue(const Column& column, std::string_view stored, const TextForm& form);

/// What an error calls a type.
std::string TypeName(ColumnType type);

}  // namespace parvex::jet
