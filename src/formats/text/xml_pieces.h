#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace parvex {

/// One piece of a document. An empty element is a start tag and an end tag.
struct XmlPiece {
  enum class Kind { End, StartTag, EndTag, Text, Comment, Instruction };
  using Attribute = std::pair<std::string_view, std::string>;

  Kind kind = Kind::End;
  std::string text;  ///< name of a tag; text without references; what stands in a comment or an instruction
  std::vector<Attribute> attributes;  ///< by name
  std::size_t at = 0;                 ///< where it begins, in bytes

  bool SaysTheSameAs(const XmlPiece& other) const {
    return kind == other.kind && text == other.text && attributes == other.attributes;
  }
};

/// Goes through a document in UTF-8 that is known to be well-formed and has no document type; pieces refer to its text.
/// It never leaves the text, whatever that holds. Text of white space only is layout, and no piece, but where
/// xml:space="preserve" is in force, and but between the start tag and the end tag of one element, which may hold a
/// blank as its value.
class XmlPieces {
 public:
  explicit XmlPieces(std::string_view document);

  /// The next piece; one of the kind End behind the last one.
  XmlPiece Next();

 private:
  std::string_view Rest() const { return document_.substr(at_); }
  void Skip(std::size_t count);
  void SkipBlanks();
  XmlPiece Begun(XmlPiece::Kind kind) const;
  std::string_view Through(std::string_view mark);
  std::optional<XmlPiece> Text();
  XmlPiece Opaque(XmlPiece::Kind kind, std::string_view begin, std::string_view end);
  XmlPiece EndTag();
  XmlPiece EndOf(std::string_view name, std::size_t at);
  XmlPiece StartTag();
  XmlPiece::Attribute Attribute();

  std::string_view document_;
  std::size_t at_ = 0;
  std::optional<std::string_view> endOfEmptyElement_;
  bool followsStartTag_ = false;
  std::vector<bool> preserves_;  // of every open element
};

}  // namespace parvex
