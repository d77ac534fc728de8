#include "cli/page/html_page.h"

#include <algorithm>

#include "cli/terminal/printable.h"
#include "formats/text/escaped_markup.h"
#include "formats/text/text.h"
#include "version.h"

namespace parvex::cli {
namespace {

// In a narrow window each row of a table becomes a block, each cell of it a line that begins with its column's name.
// The heading row is then out of sight, not away: screen readers go on telling it, and leave out the names before the
// cells (the empty text behind the slash).
//
// On paper a folded part stays folded, and says so: what somebody opened is what somebody wants to have printed. There
// are browsers in which no style unfolds it anyway.
constexpr std::string_view kStyle = R"css(
:root { color-scheme: light dark; --line: #8884; --soft: #8882; --dim: #666; }
@media (prefers-color-scheme: dark) { :root { --dim: #aaa; } }
body { font: 15px/1.45 system-ui, sans-serif; max-width: 72rem; margin: 2rem auto; padding: 0 1rem; }
body { overflow-wrap: anywhere; }
h1 { margin-bottom: 0; } h2 { margin: 0; }
.sum { color: var(--dim); margin-top: .2rem; }
section, nav { border: 1px solid var(--line); border-radius: .5rem; padding: 1rem 1.2rem; margin: 1.2rem 0; }
section > header { display: flex; justify-content: space-between; align-items: baseline; gap: 1rem; flex-wrap: wrap; }
.total, td.n, th.n { font-variant-numeric: tabular-nums; text-align: right; }
.total { font-weight: 600; font-size: 1.1rem; }
dl { display: flex; flex-wrap: wrap; gap: .2rem 1.6rem; margin: .5rem 0 1rem; }
dl div { display: flex; gap: .4rem; } dt { color: var(--dim); flex: none; } dd { margin: 0; }
article { border-top: 1px solid var(--line); padding: .8rem 0 .2rem; }
h3 { margin: 0; font-size: 1rem; } p { margin: .2rem 0; }
a { text-underline-offset: .15em; text-decoration-thickness: 1px; } :target { outline: 2px solid var(--line); }
details { margin: .3rem 0; } summary { cursor: pointer; }
pre { background: var(--soft); padding: .6rem; border-radius: .3rem; max-height: 40rem; overflow: auto; }
pre { white-space: pre-wrap; overflow-wrap: anywhere; margin: .3rem 0; }
.scroll { overflow-x: auto; position: relative; }
table { border-collapse: collapse; width: 100%; margin: .6rem 0; }
caption { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); white-space: nowrap; }
th, td { text-align: left; vertical-align: top; padding: .25rem 1rem .25rem .3rem; max-width: 16rem; }
th, td { border-bottom: 1px solid var(--soft); overflow-wrap: break-word; }
th { font-weight: 500; } thead th { color: var(--dim); } tfoot th, tfoot td { font-weight: 600; }
tr.added > * { background: #2a24; } tr.removed > * { background: #c224; } tr.changed > * { background: #c924; }
footer { color: var(--dim); font-size: .85rem; }
@media screen and (max-width: 45rem) {
  table, tbody, tfoot, tr { display: block; }
  thead { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); }
  tr { padding: .3rem 0; } tr + tr, tfoot tr { border-top: 1px solid var(--line); }
  tbody th, tfoot th, td, td.n { display: flex; gap: .8rem; border: 0; padding: .1rem .3rem; text-align: left; max-width: none; }
  tbody th, td { overflow-wrap: anywhere; }
  [data-column]::before { content: attr(data-column); content: attr(data-column) / ""; color: var(--dim); }
  [data-column]::before { flex: 0 0 7rem; font-weight: 400; }
  td:empty { display: none; }
}
@media print {
  :root { color-scheme: light; --dim: #000; --line: #000; --soft: #888; }
  body { max-width: none; margin: 0; padding: 0; font-size: 10pt; color: #000; background: #fff; }
  section, nav { padding: .5rem .7rem; }
  section, article, tr, dl { break-inside: avoid; }
  h1, h2, h3, section > header { break-after: avoid; } thead { display: table-header-group; }
  a { color: inherit; text-decoration: none; } :target { outline: none; }
  pre { background: none; border: 1px solid var(--soft); max-height: none; overflow: visible; }
  .scroll { overflow: visible; }
  details:not([open]) > summary::after { content: " (folded)"; }
}
)css";

// Nothing of a page is loaded from elsewhere, and nothing in it may run.
constexpr std::string_view kPolicy = "default-src 'none'; style-src 'unsafe-inline'";

}  // namespace

std::string Escaped(std::string_view text) {
  std::string escaped;
  AppendEscapedMarkup(escaped, Printable(text));
  return escaped;
}

std::string EscapedLines(std::string_view text) {
  std::string escaped;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    AppendEscapedMarkup(escaped, Printable(line));
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

std::string Folded(std::string_view summary, std::string_view markup) {
  std::string html = "<details>" + Element("summary", summary) + "\n";
  html += markup;
  return html + "</details>\n";
}

std::string CutLines(std::string_view text, std::size_t longest) {
  const std::string_view shown = FirstUnits(text, longest);
  const std::size_t more = text.size() - shown.size();
  return EscapedLines(shown) + (more == 0 ? "" : "\n... and " + Counted(more, "byte") + " more");
}

std::string TextBlock(std::string_view text, std::size_t longest) {
  return "<pre>" + CutLines(text, longest) + "</pre>\n";
}

std::string LinkTo(const std::string& id, std::string_view text) { return Element("a href=\"#" + id + "\"", text); }

std::string TableRow(const std::string& tag, const std::vector<Column>& columns, const std::vector<Cell>& cells) {
  std::string html = "<" + tag + " role=\"row\">";
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string name = columns[i].isRowHeading ? "th" : "td";
    html += "<" + name + (columns[i].isRowHeading ? " scope=\"row\" role=\"rowheader\"" : " role=\"cell\"");
    if (!cells[i].text.empty()) {
      html += std::string(columns[i].isNumber ? " class=\"n\"" : "") + " data-column=\"" + columns[i].name + "\"";
    }
    html += ">";
    html += cells[i].target.empty() ? Escaped(cells[i].text) : LinkTo(cells[i].target, cells[i].text);
    html += "</" + name + ">";
  }
  return html + "</tr>\n";
}

std::string TableElement(const std::string& caption, const std::vector<Column>& columns, const std::string& rows) {
  return TableBegin(caption, columns) + rows + TableEnd();
}

std::string TableBegin(const std::string& caption, const std::vector<Column>& columns) {
  std::string html = "<div class=\"scroll\"><table role=\"table\">" + Element("caption", caption) +
                     "\n<thead role=\"rowgroup\"><tr role=\"row\">";
  for (const Column& column : columns) {
    html += Element(std::string("th scope=\"col\" role=\"columnheader\"") + (column.isNumber ? " class=\"n\"" : ""),
                    column.name);
  }
  return html + "</tr></thead>\n<tbody role=\"rowgroup\">\n";
}

std::string TableEnd(const std::string& sums) {
  return "</tbody>" + (sums.empty() ? "" : "\n<tfoot role=\"rowgroup\">\n" + sums + "</tfoot>") + "</table></div>\n";
}

std::string PageOf(std::string_view title, std::string_view style, std::string_view body, std::string_view origin) {
  std::string html = PageBegin(title, style);
  html += body;
  return html + PageEnd(origin);
}

std::string PageBegin(std::string_view title, std::string_view style) {
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
      std::string(kPolicy) + "\">\n" + Element("title", title) + "\n<style>" + std::string(kStyle);
  html += style;
  return html + "</style>\n</head>\n<body>\n";
}

std::string PageEnd(std::string_view origin) {
  return Element("footer", std::string(origin) + ", shown by parvex " PARVEX_VERSION) + "\n</body>\n</html>\n";
}

}  // namespace parvex::cli
