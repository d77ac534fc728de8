#include "formats/text/xml_pieces.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "formats/text/unicode.h"
#include "formats/text/xml_characters.h"

namespace parvex {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

// `name` is what stands between "&" and ";" in a well-formed document without document type.
void AppendReference(std::string& text, std::string_view name) {
  if (name.starts_with('#')) {
    const bool isHex = name.starts_with("#x");
    name.remove_prefix(isHex ? 2 : 1);
    std::uint32_t code = 0;
    std::from_chars(name.data(), name.data() + name.size(), code, isHex ? 16 : 10);
    AppendUtf8(text, code);
    return;
  }
  constexpr std::pair<std::string_view, char> kNamed[] = {
      {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};
  for (const auto& [known, character] : kNamed) {
    if (name == known) {
      text += character;
    }
  }
}

// Appends what stands in a document as its reader gets it: line ends are line feeds, of which an attribute makes
// blanks.
void AppendRead(std::string& text, std::string_view raw, bool hasReferences, bool isAttribute) {
  for (std::size_t i = 0; i < raw.size(); ++i) {
    const char character = raw[i];
    if (character == '&' && hasReferences) {
      const std::size_t end = std::min(raw.find(';', i), raw.size());
      AppendReference(text, raw.substr(i + 1, end - i - 1));
      i = end;
    } else if (character == '\r') {
      text += isAttribute ? ' ' : '\n';
      i += i + 1 < raw.size() && raw[i + 1] == '\n' ? 1 : 0;
    } else {
      text += isAttribute && (character == '\n' || character == '\t') ? ' ' : character;
    }
  }
}

}  // namespace

XmlPieces::XmlPieces(std::string_view document) : document_(document) {
  Skip(document_.starts_with("\xEF\xBB\xBF") ? 3 : 0);
  if (Rest().starts_with("<?xml") && Rest().size() > 5 && xml::IsBlank(Rest().substr(5, 1))) {
    Through("?>");
  }
}

XmlPiece XmlPieces::Next() {
  if (endOfEmptyElement_) {
    return EndOf(*std::exchange(endOfEmptyElement_, std::nullopt), at_);
  }
  if (std::optional<XmlPiece> text = Text()) {
    return *std::move(text);
  }
  if (Rest().empty()) {
    return Begun(XmlPiece::Kind::End);
  }
  if (Rest().starts_with("<!--")) {
    return Opaque(XmlPiece::Kind::Comment, "<!--", "-->");
  }
  if (Rest().starts_with("<?")) {
    return Opaque(XmlPiece::Kind::Instruction, "<?", "?>");
  }
  return Rest().starts_with("</") ? EndTag() : StartTag();
}

void XmlPieces::Skip(std::size_t count) { at_ += std::min(count, document_.size() - at_); }
void XmlPieces::SkipBlanks() { Skip(std::min(Rest().find_first_not_of(kBlanks), Rest().size())); }

XmlPiece XmlPieces::Begun(XmlPiece::Kind kind) const {
  XmlPiece piece;
  piece.kind = kind;
  piece.at = at_;
  return piece;
}

// What stands before `mark`, which is gone past.
std::string_view XmlPieces::Through(std::string_view mark) {
  const std::string_view before = Rest().substr(0, Rest().find(mark));
  Skip(before.size() + mark.size());
  return before;
}

// Text and CDATA sections up to the next other markup; nothing when that is only layout.
std::optional<XmlPiece> XmlPieces::Text() {
  constexpr std::string_view kCData = "<![CDATA[";
  XmlPiece piece = Begun(XmlPiece::Kind::Text);
  bool isLayout = true;
  while (!Rest().empty() && (Rest().front() != '<' || Rest().starts_with(kCData))) {
    if (Rest().starts_with(kCData)) {
      Skip(kCData.size());
      AppendRead(piece.text, Through("]]>"), false, false);
      isLayout = false;
    } else {
      const std::string_view raw = Rest().substr(0, Rest().find('<'));
      Skip(raw.size());
      AppendRead(piece.text, raw, true, false);
      isLayout = isLayout && xml::IsBlank(raw);
    }
  }
  const bool isValue = std::exchange(followsStartTag_, false) && Rest().starts_with("</");
  const bool isKept = !preserves_.empty() && (preserves_.back() || isValue);
  return piece.text.empty() || (isLayout && !isKept) ? std::nullopt : std::optional(std::move(piece));
}

XmlPiece XmlPieces::Opaque(XmlPiece::Kind kind, std::string_view begin, std::string_view end) {
  XmlPiece piece = Begun(kind);
  Skip(begin.size());
  AppendRead(piece.text, Through(end), false, false);
  return piece;
}

XmlPiece XmlPieces::EndTag() {
  const std::size_t at = at_;
  const std::string_view written = Through(">").substr(2);
  return EndOf(written.substr(0, written.find_first_of(kBlanks)), at);
}

XmlPiece XmlPieces::EndOf(std::string_view name, std::size_t at) {
  if (!preserves_.empty()) {
    preserves_.pop_back();
  }
  return {.kind = XmlPiece::Kind::EndTag, .text = std::string(name), .attributes = {}, .at = at};
}

XmlPiece XmlPieces::StartTag() {
  XmlPiece piece = Begun(XmlPiece::Kind::StartTag);
  Skip(1);
  const std::string_view name = Rest().substr(0, Rest().find_first_of(" \t\r\n/>"));
  piece.text = name;
  Skip(name.size());
  bool preserves = !preserves_.empty() && preserves_.back();
  for (SkipBlanks(); !Rest().empty() && Rest().front() != '>' && Rest().front() != '/'; SkipBlanks()) {
    piece.attributes.push_back(Attribute());
    const auto& [attribute, value] = piece.attributes.back();
    preserves = attribute == "xml:space" ? value == "preserve" : preserves;
  }
  std::sort(piece.attributes.begin(), piece.attributes.end());
  preserves_.push_back(preserves);
  if (Rest().starts_with('/')) {
    endOfEmptyElement_ = name;
  }
  Through(">");
  followsStartTag_ = !endOfEmptyElement_;
  return piece;
}

XmlPiece::Attribute XmlPieces::Attribute() {
  const std::string_view written = Through("=");
  XmlPiece::Attribute attribute{written.substr(0, written.find_first_of(kBlanks)), {}};
  SkipBlanks();
  const std::string_view quote = Rest().substr(0, 1);
  Skip(quote.size());
  AppendRead(attribute.second, Through(quote), true, true);
  return attribute;
}

}  // namespace parvex
