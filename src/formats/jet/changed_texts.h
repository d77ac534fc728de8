#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/jet/code_page.h"

namespace parvex::jet {

/// The columns of a row that hold a text or an amount, as their texts read (DecodeValue).
struct RowTexts {
  struct Field {
    std::string_view column;
    std::optional<std::string> text;  ///< nothing for a null
    bool isNumber = false;            ///< Currency, Single, Double or Decimal
  };
  std::vector<Field> fields;
};

/// The database with all texts but the names of its tables and columns as `change` leaves them, and without everything
/// that nobody can look into: OLE objects and binary columns of the application's tables become zeros of their length,
/// and so does what no row reaches any more (deleted rows, free pages, the space behind the last row), every index and
/// the password.
///
/// A text keeps its place in the file: what `change` gives has to be as long as the text was, in the form in which the
/// file stores it. An AutomationError says otherwise, and that the file is damaged, encrypted or of another kind.
std::string WithChangedTexts(std::string bytes, const std::function<void(RowTexts&)>& change,
                             const CodePages& codePages = WesternCodePage);

}  // namespace parvex::jet
