#pragma once

#include <string>
#include <string_view>
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

struct Column {
  const char* name;
  bool isNumber;
};

/// A row with a cell a column; `tag` is "tr", with attributes when it has some.
std::string TableRow(const std::string& tag, const std::vector<Column>& columns, const std::vector<std::string>& cells);
std::string TableElement(const std::vector<Column>& columns, const std::string& rows);

/// The whole page. `style` stands behind the style that all pages have; `title` and `origin` are text, `body` is
/// markup.
std::string PageOf(std::string_view title, std::string_view style, std::string_view body, std::string_view origin);

}  // namespace parvex::cli
