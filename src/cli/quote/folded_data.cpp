#include "cli/quote/folded_data.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "cli/page/file_text.h"
#include "cli/page/html_page.h"
#include "cli/terminal/printable.h"
#include "codec/bin_encoder.h"
#include "formats/text/indented_markup.h"
#include "formats/text/text.h"
#include "seams/xml.h"

namespace parvex::cli {
namespace {

std::string Sized(const std::string& name, std::size_t bytes) { return name + ", " + Counted(bytes, "byte"); }

// XML laid out for people; nothing when the text is none, is too long for a tree, or declares what it is made of.
std::optional<IndentedMarkup> LaidOut(const std::string& text) {
  if (text.size() > kLargestReadable || text.find('<') == std::string::npos) {
    return std::nullopt;
  }
  const xml::Document document = xml::Document::Parse(text);
  if (document.IsEmpty()) {
    return std::nullopt;
  }
  const std::string markup = document.Xml();
  // Of the bytes of a text at most every third is a UTF-16 unit of its own.
  return markup.find("<!DOCTYPE") == std::string::npos ? std::optional(Indented(markup, 3 * kLongestUnfolded))
                                                       : std::nullopt;
}

}  // namespace

std::string FoldedData::OrderConfiguration(const QuoteUnit& unit) {
  const std::string& text = unit.orderConfiguration;
  return text.empty()
             ? text
             : Folded("Order configuration, " + Counted(text.size(), "character"), Readable(text, text.size()));
}

std::string FoldedData::StoredData(const QuoteTag& tag) {
  const std::size_t bytes = StoredBytes(tag);
  return bytes == 0 ? "" : Folded(Sized("Stored data", bytes), Entries(tag));
}

// The text, and how many bytes the whole has when it was cut or is too much for the page.
std::string FoldedData::Block(std::string_view text, bool isCut, std::size_t bytes) {
  const std::string_view shown = FirstUnits(text, kLongestUnfolded);
  std::string html = "<pre>" + EscapedLines(shown);
  html += isCut || shown.size() < text.size() ? "\n... cut here, the whole has " + Counted(bytes, "byte") : "";
  html += "</pre>\n";
  if (unfolded_ + html.size() > kMostUnfolded) {
    return Element("p", "Not shown, " + Counted(bytes, "byte") + ": the page has no room for more texts.") + "\n";
  }
  unfolded_ += html.size();
  return html;
}

std::string FoldedData::Readable(const std::string& text, std::size_t bytes) {
  if (unfolded_ >= kMostUnfolded) {
    return Block(text, false, bytes);
  }
  const std::optional<IndentedMarkup> laidOut = LaidOut(text);
  return laidOut ? Block(laidOut->text, laidOut->isCut, bytes) : Block(text, false, bytes);
}

std::string FoldedData::Entry(const std::string& name, const std::string& bytes) {
  if (bytes.size() > kLargestReadable) {
    return Element("p", Sized(name, bytes.size()) + ", too large to be shown") + "\n";
  }
  const std::optional<std::string> text = TextOfFile(bytes);
  if (!text || bytes.empty()) {
    return Element("p", Sized(name, bytes.size()) + (bytes.empty() ? "" : ", no text")) + "\n";
  }
  return Folded(Sized(name, bytes.size()), Readable(*text, bytes.size()));
}

std::string FoldedData::Entries(const QuoteTag& tag) {
  const StoredArchive archive = OpenStoredData(tag, stored_);
  const std::vector<PackedEntry>& entries = archive.entries;
  if (entries.empty()) {
    return Element("p", "Not opened: " + archive.refusal) + "\n" + Entry("The bytes", DecodeBase64(tag.storedData));
  }
  std::string html = Element("p", entries.size() == 1 ? "1 entry" : std::to_string(entries.size()) + " entries") + "\n";
  for (std::size_t i = 0; i < std::min(entries.size(), kMostListedEntries); ++i) {
    html += entries[i].isFolder ? Element("p", entries[i].name + ", a folder") + "\n"
                                : Entry(entries[i].name, entries[i].bytes);
  }
  const std::size_t more = entries.size() - std::min(entries.size(), kMostListedEntries);
  return html + (more == 0 ? "" : Element("p", "... and " + std::to_string(more) + " more") + "\n");
}

}  // namespace parvex::cli
