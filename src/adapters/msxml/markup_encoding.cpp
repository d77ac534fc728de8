#include "adapters/msxml/markup_encoding.h"

#include <windows.h>

#include <optional>

#include "adapters/windows/code_page_text.h"
#include "adapters/windows/mlang.h"
#include "formats/text/encoded_text.h"
#include "formats/text/encoding_names.h"
#include "formats/text/markup_bounds.h"
#include "formats/text/markup_tags.h"
#include "formats/text/text.h"
#include "formats/text/tree_bounds.h"
#include "formats/text/unicode.h"
#include "formats/text/xml_characters.h"
#include "seams/automation_error.h"

namespace parvex::windows {
namespace {

constexpr UINT kUtf8 = 65001;
constexpr UINT kUtf16Little = 1200;
constexpr UINT kUtf16Big = 1201;

/// Names that are not known to every platform are asked of the system.
std::optional<UINT> CodePageOf(const std::string& name) {
  const std::optional<unsigned> known = CodePageNamed(name);
  return known ? known : CodePageByMlang(name);
}

bool IsUtf16CodePage(UINT codePage) { return codePage == kUtf16Little || codePage == kUtf16Big; }

/// How bytes are encoded that tell it without a declaration: by a byte order mark, or as UTF-16 by the zero bytes
/// beside their first character.
TextEncoding EncodingOfMarkup(std::string_view bytes) {
  if (bytes.starts_with(std::string_view("<\0", 2))) {
    return TextEncoding::Utf16Little;
  }
  return bytes.starts_with(std::string_view("\0<", 2)) ? TextEncoding::Utf16Big : EncodingOf(bytes);
}

/// Where a pseudo-attribute and its value stand in a declaration's content.
struct Place {
  std::size_t begin = 0;
  std::size_t value = 0;
  std::size_t end = 0;  ///< behind the quote that closes it
};

std::optional<Place> PlaceOfAttribute(std::string_view declaration, std::string_view name) {
  for (std::size_t pos = declaration.find(name); pos != std::string_view::npos; pos = declaration.find(name, pos + 1)) {
    std::size_t at = pos + name.size();
    while (at < declaration.size() && (xml::IsBlank(declaration[at]) || declaration[at] == '=')) {
      ++at;
    }
    if (at < declaration.size() && (declaration[at] == '"' || declaration[at] == '\'')) {
      const std::size_t close = declaration.find(declaration[at], at + 1);
      if (close != std::string_view::npos) {
        return Place{pos, at + 1, close + 1};
      }
    }
  }
  return std::nullopt;
}

/// The value of a pseudo-attribute in a declaration's content; empty when it has none.
std::string PseudoAttribute(std::string_view declaration, std::string_view name) {
  const auto place = PlaceOfAttribute(declaration, name);
  return place ? std::string(declaration.substr(place->value, place->end - 1 - place->value)) : std::string();
}

/// What stands between "<?xml" and "?>" at the head of a text; empty when there is no declaration.
std::string_view DeclarationIn(std::string_view text) {
  if (!text.starts_with("<?xml") || text.size() == 5 || !xml::IsBlank(text[5])) {
    return {};
  }
  const std::size_t end = text.find("?>");
  return end == std::string_view::npos ? std::string_view() : text.substr(5, end - 5);
}

/// Whether markup can be written in a code page: one in which ASCII is single bytes, or the declaration could not be
/// read back.
bool KeepsAscii(UINT codePage) {
  std::string ascii = "\t\n\r";
  for (char c = 0x20; c < 0x7F; ++c) {
    ascii += c;
  }
  return ToCodePageExactly(ascii, codePage) == ascii;
}

/// The code page to write markup in that names this encoding; UTF-8 without a name, nothing for a name that is not
/// known or does not keep ASCII.
std::optional<UINT> CodePageToWrite(const std::string& name) {
  const std::optional<UINT> codePage = name.empty() ? kUtf8 : CodePageOf(name);
  const bool isUsable = codePage && (*codePage == kUtf8 || IsUtf16CodePage(*codePage) || KeepsAscii(*codePage));
  return isUsable ? codePage : std::nullopt;
}

/// Markup in a code page; a character that it lacks is a reference.
std::string MarkupIn(std::string_view markup, UINT codePage) {
  std::string bytes;
  bytes.reserve(markup.size());
  bool inSection = false;
  for (std::size_t pos = 0; pos < markup.size();) {
    const std::string_view rest = markup.substr(pos);
    if (!inSection && rest.starts_with("<![CDATA[")) {
      inSection = true;
    } else if (inSection && rest.starts_with("]]>")) {
      inSection = false;
    }
    const std::size_t from = pos;
    const char32_t code = NextCodePoint(markup, pos);
    const std::string_view character = markup.substr(from, pos - from);
    if (code < 0x80) {
      bytes.append(character);
    } else if (const auto known = ToCodePageExactly(character, codePage)) {
      bytes.append(*known);
    } else {
      const std::string reference = "&#" + std::to_string(static_cast<std::uint32_t>(code)) + ";";
      bytes.append(inSection ? "]]>" + reference + "<![CDATA[" : reference);
    }
  }
  return bytes;
}

/// The replacement text of an entity declaration that begins at `text`; nothing when it names anything but a literal.
std::optional<std::string_view> EntityLiteral(std::string_view text) {
  const std::size_t end = text.find('>');
  const std::size_t quote = text.find_first_of("\"'");
  const std::string_view head = text.substr(0, quote == std::string_view::npos ? end : quote);
  if (quote == std::string_view::npos || head.find("SYSTEM") != std::string_view::npos ||
      head.find("PUBLIC") != std::string_view::npos || head.find('%') != std::string_view::npos) {
    return std::nullopt;
  }
  const std::size_t close = text.find(text[quote], quote + 1);
  return close == std::string_view::npos ? std::nullopt : std::optional(text.substr(quote + 1, close - quote - 1));
}

/// What is wrong with the DOCTYPE's entities and defaulted attributes; empty when nothing is, or there is none.
std::string RefusedEntities(std::string_view text) {
  const std::size_t begin = xml::DoctypeIn(text);
  if (begin == std::string_view::npos) {
    return {};
  }
  const std::string_view doctype = text.substr(begin, xml::EndOfDoctype(text, begin) - begin);
  std::size_t longestEntity = 0;
  for (std::size_t at = doctype.find("<!ENTITY"); at != std::string_view::npos; at = doctype.find("<!ENTITY", at + 1)) {
    const auto literal = EntityLiteral(doctype.substr(at + 8));
    if (!literal || literal->find_first_of("&%<") != std::string_view::npos) {
      return "a DOCTYPE with entities that are more than plain text";
    }
    longestEntity = literal->size() > longestEntity ? literal->size() : longestEntity;
  }
  std::size_t defaults = 0;
  for (std::size_t at = doctype.find("<!ATTLIST"); at != std::string_view::npos;
       at = doctype.find("<!ATTLIST", at + 1)) {
    defaults += xml::EndOfTag(doctype, at) - at;
  }
  std::size_t references = 0;
  std::size_t tags = 0;
  for (const char c : text) {
    references += c == '&';
    tags += c == '<';
  }
  return references * longestEntity > xml::kMostExpansion || tags * defaults > xml::kMostExpansion
             ? "entities and defaulted attributes may expand to more than " + std::to_string(xml::kMostExpansion) +
                   " bytes"
             : "";
}

}  // namespace

std::string DecodeMarkup(std::string_view bytes, std::string& refusal) {
  const TextEncoding encoding = EncodingOfMarkup(bytes);
  const std::string_view mark = MarkOf(encoding);
  const std::string_view content = bytes.substr(bytes.starts_with(mark) ? mark.size() : 0);
  if (IsUtf16(encoding)) {
    // Half of a surrogate pair is kept: the component refuses it.
    return FromUtf16(UnitsOf(content, encoding), LoneSurrogates::Kept);
  }
  const bool hasMark = encoding == TextEncoding::Utf8;
  const std::string name = hasMark ? "UTF-8" : PseudoAttribute(DeclarationIn(content), "encoding");
  const std::optional<UINT> codePage = name.empty() ? kUtf8 : CodePageOf(name);
  if (codePage && IsUtf16CodePage(*codePage)) {
    refusal = "the declaration names " + Quoted(name) + ", but the bytes are not in it";
    return {};
  }
  if (!codePage || !IsKnownCodePage(*codePage)) {
    refusal = "the encoding " + Quoted(name) + " cannot be read";
    return {};
  }
  const std::optional<std::string> text = FromCodePageExactly(content, *codePage);
  if (!text) {
    refusal = "bytes that are not valid in the encoding " + Quoted(name.empty() ? "UTF-8" : name);
  }
  return text.value_or("");
}

NeutralMarkup WithoutEncoding(std::string_view markup) {
  const std::string_view declaration = DeclarationIn(markup);
  const auto place = PlaceOfAttribute(declaration, "encoding");
  if (!place) {
    return {std::string(markup), ""};
  }
  NeutralMarkup neutral = {std::string(markup), std::string(TrimBlanks(declaration))};
  constexpr std::size_t kBeforeDeclaration = 5;
  neutral.text.replace(kBeforeDeclaration + place->begin, place->end - place->begin, place->end - place->begin, ' ');
  return neutral;
}

std::string EncodeMarkup(std::string_view markup, std::string_view declaration) {
  if (declaration.empty()) {
    return std::string(markup);
  }
  const std::string version = PseudoAttribute(declaration, "version");
  const std::string standalone = PseudoAttribute(declaration, "standalone");
  std::string name = PseudoAttribute(declaration, "encoding");
  const std::optional<UINT> known = CodePageToWrite(name);
  const UINT codePage = known.value_or(kUtf8);
  if (!known) {
    name = "UTF-8";
  }
  std::string text = "<?xml version=\"" + (version.empty() ? "1.0" : version) + "\"";
  text += name.empty() ? "" : " encoding=\"" + name + "\"";
  text += standalone.empty() ? "" : " standalone=\"" + standalone + "\"";
  text += "?>";
  text.append(DeclarationIn(markup).empty() ? markup : markup.substr(markup.find("?>") + 2));
  if (IsUtf16CodePage(codePage)) {
    return WithMark(text, codePage == kUtf16Big ? TextEncoding::Utf16Big : TextEncoding::Utf16Little);
  }
  return codePage == kUtf8 ? text : MarkupIn(text, codePage);
}

std::string RefusedMarkup(std::string_view text) {
  for (const auto refusalOf : {xml::BeyondBounds, RefusedEntities, xml::BeyondTreeBounds}) {
    if (std::string refusal = refusalOf(text); !refusal.empty()) {
      return refusal;
    }
  }
  return "";
}

}  // namespace parvex::windows
