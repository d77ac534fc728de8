#include "journal/xml_difference.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "formats/text/unicode.h"
#include "seams/xml.h"

namespace parvex::journal {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool IsBlank(std::string_view text) { return text.find_first_not_of(kBlanks) == std::string_view::npos; }

// One piece of a document. An empty element is a start tag and an end tag.
struct Piece {
  enum class Kind { End, StartTag, EndTag, Text, Comment, Instruction };
  using Attribute = std::pair<std::string_view, std::string>;

  Kind kind = Kind::End;
  std::string text;  // name of a tag; text without references; what stands in a comment or an instruction
  std::vector<Attribute> attributes;  // by name
  std::size_t at = 0;

  bool SaysTheSameAs(const Piece& other) const {
    return kind == other.kind && text == other.text && attributes == other.attributes;
  }
};

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

// Goes through a document that is known to be well-formed and has no document type. It never leaves the text, whatever
// that holds.
class Pieces {
 public:
  explicit Pieces(std::string_view document) : document_(document) {
    Skip(document_.starts_with("\xEF\xBB\xBF") ? 3 : 0);
    if (Rest().starts_with("<?xml") && Rest().size() > 5 && IsBlank(Rest().substr(5, 1))) {
      Through("?>");
    }
  }

  Piece Next() {
    if (endOfEmptyElement_) {
      return EndOf(*std::exchange(endOfEmptyElement_, std::nullopt), at_);
    }
    if (std::optional<Piece> text = Text()) {
      return *std::move(text);
    }
    if (Rest().empty()) {
      return Begun(Piece::Kind::End);
    }
    if (Rest().starts_with("<!--")) {
      return Opaque(Piece::Kind::Comment, "<!--", "-->");
    }
    if (Rest().starts_with("<?")) {
      return Opaque(Piece::Kind::Instruction, "<?", "?>");
    }
    return Rest().starts_with("</") ? EndTag() : StartTag();
  }

 private:
  std::string_view Rest() const { return document_.substr(at_); }
  void Skip(std::size_t count) { at_ += std::min(count, document_.size() - at_); }
  void SkipBlanks() { Skip(std::min(Rest().find_first_not_of(kBlanks), Rest().size())); }

  Piece Begun(Piece::Kind kind) const {
    Piece piece;
    piece.kind = kind;
    piece.at = at_;
    return piece;
  }

  // What stands before `mark`, which is gone past.
  std::string_view Through(std::string_view mark) {
    const std::string_view before = Rest().substr(0, Rest().find(mark));
    Skip(before.size() + mark.size());
    return before;
  }

  // Text and CDATA sections up to the next other markup; nothing when that is only layout.
  std::optional<Piece> Text() {
    constexpr std::string_view kCData = "<![CDATA[";
    Piece piece = Begun(Piece::Kind::Text);
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
        isLayout = isLayout && IsBlank(raw);
      }
    }
    const bool isValue = std::exchange(followsStartTag_, false) && Rest().starts_with("</");
    const bool isKept = !preserves_.empty() && (preserves_.back() || isValue);
    return piece.text.empty() || (isLayout && !isKept) ? std::nullopt : std::optional(std::move(piece));
  }

  Piece Opaque(Piece::Kind kind, std::string_view begin, std::string_view end) {
    Piece piece = Begun(kind);
    Skip(begin.size());
    AppendRead(piece.text, Through(end), false, false);
    return piece;
  }

  Piece EndTag() {
    const std::size_t at = at_;
    const std::string_view written = Through(">").substr(2);
    return EndOf(written.substr(0, written.find_first_of(kBlanks)), at);
  }

  Piece EndOf(std::string_view name, std::size_t at) {
    if (!preserves_.empty()) {
      preserves_.pop_back();
    }
    return {.kind = Piece::Kind::EndTag, .text = std::string(name), .attributes = {}, .at = at};
  }

  Piece StartTag() {
    Piece piece = Begun(Piece::Kind::StartTag);
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

  Piece::Attribute Attribute() {
    const std::string_view written = Through("=");
    Piece::Attribute attribute{written.substr(0, written.find_first_of(kBlanks)), {}};
    SkipBlanks();
    const std::string_view quote = Rest().substr(0, 1);
    Skip(quote.size());
    AppendRead(attribute.second, Through(quote), true, true);
    return attribute;
  }

  std::string_view document_;
  std::size_t at_ = 0;
  std::optional<std::string_view> endOfEmptyElement_;
  bool followsStartTag_ = false;
  std::vector<bool> preserves_;  // of every open element
};

bool IsComparable(std::string_view text) {
  return text.find("<!DOCTYPE") == std::string_view::npos && !xml::Document::Parse(text).IsEmpty();
}

XmlDifference FirstByte(std::string_view expected, std::string_view actual) {
  const auto [here, there] = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  return {static_cast<std::size_t>(here - expected.begin()), static_cast<std::size_t>(there - actual.begin())};
}

// Documents that travel as texts in documents, as many times as anybody does it.
constexpr int kDeepestText = 4;

std::optional<XmlDifference> FirstDifference(std::string_view expected, std::string_view actual, int depth);

bool BeginsMarkup(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  return first != std::string_view::npos && text[first] == '<';
}

bool SaysTheSame(const Piece& expected, const Piece& actual, int depth) {
  return expected.SaysTheSameAs(actual) ||
         (expected.kind == Piece::Kind::Text && actual.kind == Piece::Kind::Text && depth < kDeepestText &&
          BeginsMarkup(expected.text) && BeginsMarkup(actual.text) &&
          !FirstDifference(expected.text, actual.text, depth + 1));
}

std::optional<XmlDifference> FirstDifference(std::string_view expected, std::string_view actual, int depth) {
  if (!IsComparable(expected) || !IsComparable(actual)) {
    return FirstByte(expected, actual);
  }
  Pieces expectedPieces(expected);
  Pieces actualPieces(actual);
  while (true) {
    const Piece expectedPiece = expectedPieces.Next();
    const Piece actualPiece = actualPieces.Next();
    if (!SaysTheSame(expectedPiece, actualPiece, depth)) {
      return XmlDifference{expectedPiece.at, actualPiece.at};
    }
    if (expectedPiece.kind == Piece::Kind::End) {
      return std::nullopt;
    }
  }
}

}  // namespace

std::optional<XmlDifference> FirstXmlDifference(std::string_view expected, std::string_view actual) {
  return expected == actual ? std::nullopt : FirstDifference(expected, actual, 0);
}

}  // namespace parvex::journal
