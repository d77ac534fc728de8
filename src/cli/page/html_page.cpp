#include "cli/page/html_page.h"

#include <algorithm>

#include "cli/terminal/printable.h"
#include "version.h"

namespace parvex::cli {
namespace {

// In a narrow window each row of a table becomes a block, each cell of it a line that begins with its column's name.
constexpr std::string_view kStyle = R"(
:root { color-scheme: light dark; --line: #8884; --soft: #8882; --dim: #666; }
@media (prefers-color-scheme: dark) { :root { --dim: #aaa; } }
body { font: 15px/1.45 system-ui, sans-serif; max-width: 72rem; margin: 2rem auto; padding: 0 1rem; }
body { overflow-wrap: anywhere; }
h1 { margin-bottom: 0; } h2 { margin: 0; }
.sum { color: var(--dim); margin-top: .2rem; }
section { border: 1px solid var(--line); border-radius: .5rem; padding: 1rem 1.2rem; margin: 1.2rem 0; }
section > header { display: flex; justify-content: space-between; align-items: baseline; gap: 1rem; flex-wrap: wrap; }
.total, td.n, th.n { font-variant-numeric: tabular-nums; text-align: right; }
.total { font-weight: 600; font-size: 1.1rem; }
dl { display: flex; flex-wrap: wrap; gap: .2rem 1.6rem; margin: .5rem 0 1rem; }
dl div { display: flex; gap: .4rem; } dt { color: var(--dim); flex: none; } dd { margin: 0; }
article { border-top: 1px solid var(--line); padding: .8rem 0 .2rem; }
h3 { margin: 0; font-size: 1rem; } p { margin: .2rem 0; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; margin: .6rem 0; }
th, td { text-align: left; vertical-align: top; padding: .25rem 1rem .25rem .3rem; max-width: 16rem; }
th, td { border-bottom: 1px solid var(--soft); overflow-wrap: break-word; }
th { color: var(--dim); font-weight: 500; }
tr.added td { background: #2a24; } tr.removed td { background: #c224; } tr.changed td { background: #c924; }
footer { color: var(--dim); font-size: .85rem; }
@media (max-width: 45rem) {
  thead { display: none; }
  table, tbody, tr { display: block; }
  tr { padding: .3rem 0; } tr + tr { border-top: 1px solid var(--line); }
  td, td.n { display: flex; gap: .8rem; border: 0; padding: .1rem .3rem; text-align: left; max-width: none; }
  td { overflow-wrap: anywhere; }
  td::before { content: attr(data-column); color: var(--dim); flex: 0 0 7rem; }
  td:empty { display: none; }
}
@media print { section { break-inside: avoid-page; } }
)";

// Nothing of a page is loaded from elsewhere, and nothing in it may run.
constexpr std::string_view kPolicy = "default-src 'none'; style-src 'unsafe-inline'";

void AppendEscaped(std::string& escaped, std::string_view text) {
  for (const char c : Printable(text)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
}

}  // namespace

std::string Escaped(std::string_view text) {
  std::string escaped;
  AppendEscaped(escaped, text);
  return escaped;
}

std::string EscapedLines(std::string_view text) {
  std::string escaped;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    AppendEscaped(escaped, line);
    escaped += end < text.size() ? "\n" : "";
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return escaped;
}

std::string Element(const std::string& tag, std::string_view text) {
  return "<" + tag + ">" + Escaped(text) + "</" + tag.substr(0, tag.find(' ')) + ">";
}

std::string Term(std::string_view name, std::string_view value) {
  return value.empty() ? "" : "<div>" + Element("dt", name) + Element("dd", value) + "</div>\n";
}

std::string TableRow(const std::string& tag, const std::vector<Column>& columns,
                     const std::vector<std::string>& cells) {
  std::string html = "<" + tag + ">";
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string kind = columns[i].isNumber ? " class=\"n\"" : "";
    html += Element("td" + kind + " data-column=\"" + columns[i].name + "\"", cells[i]);
  }
  return html + "</tr>\n";
}

std::string TableElement(const std::vector<Column>& columns, const std::string& rows) {
  std::string html = "<div class=\"scroll\"><table>\n<thead><tr>";
  for (const Column& column : columns) {
    html += Element(column.isNumber ? "th class=\"n\"" : "th", column.name);
  }
  return html + "</tr></thead>\n<tbody>\n" + rows + "</tbody></table></div>\n";
}

std::string PageOf(std::string_view title, std::string_view style, std::string_view body, std::string_view origin) {
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
      std::string(kPolicy) + "\">\n" + Element("title", title) + "\n<style>" + std::string(kStyle);
  html += style;
  html += "</style>\n</head>\n<body>\n";
  html += body;
  return html + Element("footer", std::string(origin) + ", shown by parvex " PARVEX_VERSION) + "\n</body>\n</html>\n";
}

}  // namespace parvex::cli
