#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace parvex::cli {

// Pages for a browser that need nothing beside them: no script, no font, no image from elsewhere. Texts come from
// outside and are escaped here; a page says itself that nothing in it may run.

/// Text as content or as the value of an attribute, on one line.
std::string Escaped(std::string_view text);
/// The same with its line breaks.
std::string EscapedLines(std::string_view text);

/// `<tag>text</tag>`; `tag` may carry attributes.
std::string Element(const std::string& tag, std::string_view text);

/// A pair of a list of terms; nothing for an empty value.
std::string Term(std::string_view name, std::string_view value);

/// Markup that stays folded until somebody opens it under its summary. On paper a folded one says that it is folded.
std::string Folded(std::string_view summary, std::string_view markup);

/// A text with its lines, cut behind `longest` UTF-16 units; how many bytes are left out is said.
std::string CutLines(std::string_view text, std::size_t longest);
/// The same in a block of its own.
std::string TextBlock(std::string_view text, std::size_t longest);

/// A link to the element of this page with that id.
std::string LinkTo(const std::string& id, std::string_view text);

struct Column {
  const char* name;
  bool isNumber;
  bool isRowHeading = false;  ///< what the other cells of its row are about
};

struct Cell {
  Cell(std::string shown, std::string id = {}) : text(std::move(shown)), target(std::move(id)) {}

  std::string text;
  std::string target;  ///< id of the element that the text leads to; empty for none
};

/// A row with a cell a column; `tag` is "tr", with attributes when it has some.
std::string TableRow(const std::string& tag, const std::vector<Column>& columns, const std::vector<Cell>& cells);
/// A table whose caption only screen readers tell. In a narrow window each cell is a line behind its column's name; it
/// stays a table for screen readers. `sums` are rows below all others.
std::string TableElement(const std::string& caption, const std::vector<Column>& columns, const std::string& rows);
/// What stands around the rows of a long one.
std::string TableBegin(const std::string& caption, const std::vector<Column>& columns);
std::string TableEnd(const std::string& sums = {});

/// The whole page. `style` stands behind the style that all pages have; `title` and `origin` are text, `body` is
/// markup.
std::string PageOf(std::string_view title, std::string_view style, std::string_view body, std::string_view origin);
/// What stands around the body of a long one.
std::string PageBegin(std::string_view title, std::string_view style);
std::string PageEnd(std::string_view origin);

}  // namespace parvex::cli
