#include "adapters/libxml2/encoding.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include "formats/text/encoding_names.h"
#include "formats/text/unicode.h"
#include "formats/text/xml_characters.h"
#include "seams/automation_error.h"

namespace parvex::xml {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LittleMark = "\xFF\xFE";
constexpr std::string_view kUtf16BigMark = "\xFE\xFF";

constexpr unsigned kUtf8 = 65001;
constexpr unsigned kUtf16Little = 1200;
constexpr unsigned kUtf16Big = 1201;

struct Renamed {
  unsigned codePage;
  const char* name;
};

// What this system calls code pages that it does not know by their number.
constexpr Renamed kRenamed[] = {
    {kUtf8, "UTF-8"},       {kUtf16Little, "UTF-16LE"}, {kUtf16Big, "UTF-16BE"}, {65000, "UTF-7"},
    {20127, "US-ASCII"},    {20866, "KOI8-R"},          {21866, "KOI8-U"},       {51932, "EUC-JP"},
    {50220, "ISO-2022-JP"}, {50225, "ISO-2022-KR"},     {54936, "GB18030"},      {10000, "MACINTOSH"},
};

/// How iconv calls an encoding that a document names. Names mean what they mean on Windows; one that is not known there
/// goes to iconv as it is.
std::string IconvNameOf(std::string_view encoding) {
  const std::optional<unsigned> codePage = CodePageNamed(encoding);
  if (!codePage) {
    return std::string(encoding);
  }
  for (const Renamed& renamed : kRenamed) {
    if (renamed.codePage == *codePage) {
      return renamed.name;
    }
  }
  constexpr unsigned kIsoParts = 28590;
  return *codePage > kIsoParts && *codePage < kIsoParts + 20 ? "ISO-8859-" + std::to_string(*codePage - kIsoParts)
                                                             : "CP" + std::to_string(*codePage);
}

bool IsUtf8Name(std::string_view name) { return name.empty() || CodePageNamed(name) == kUtf8; }

bool IsUtf16Name(std::string_view name) {
  const std::optional<unsigned> codePage = CodePageNamed(name);
  return codePage == kUtf16Little || codePage == kUtf16Big;
}

bool IsNameCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '_' || c == '-';
}

// Null for an encoding that is not known.
Converter OpenConverter(const std::string& to, const std::string& from) {
  const iconv_t converter = iconv_open(to.c_str(), from.c_str());
  return Converter(converter == reinterpret_cast<iconv_t>(-1) ? nullptr : converter);
}

// Nothing when some byte or character has no counterpart.
std::optional<std::string> Convert(iconv_t converter, std::string_view text) {
  iconv(converter, nullptr, nullptr, nullptr, nullptr);
  std::string result;
  std::array<char, 16384> piece;
  char* in = const_cast<char*>(text.data());
  std::size_t inLeft = text.size();
  bool flushing = false;
  for (;;) {
    char* out = piece.data();
    std::size_t outLeft = piece.size();
    const std::size_t done =
        flushing ? iconv(converter, nullptr, nullptr, &out, &outLeft) : iconv(converter, &in, &inLeft, &out, &outLeft);
    const int problem = done == static_cast<std::size_t>(-1) ? errno : 0;
    result.append(piece.data(), piece.size() - outLeft);
    // A count above 0 means that characters were replaced by something that cannot be turned back.
    if ((problem != 0 && problem != E2BIG) || (problem == 0 && done != 0)) {
      return std::nullopt;
    }
    if (problem == 0) {
      if (flushing) {
        return result;
      }
      flushing = true;
    }
  }
}

Decoded DecodeFrom(const std::string& encoding, std::string_view bytes) {
  const Converter converter = OpenConverter("UTF-8", IconvNameOf(encoding));
  if (converter == nullptr) {
    return {"", "", "the encoding " + Quoted(encoding) + " cannot be read"};
  }
  std::optional<std::string> text = Convert(converter.get(), bytes);
  if (!text) {
    return {"", "", "bytes that are not valid in the encoding " + Quoted(encoding)};
  }
  std::string declared(DeclaredEncoding(*text));
  return {*std::move(text), std::move(declared), ""};
}

}  // namespace

std::string_view DeclaredEncoding(std::string_view text) {
  constexpr std::string_view kKeyword = "encoding";
  if (!text.starts_with("<?xml") || text.size() < 6 || !IsBlank(text[5])) {
    return {};
  }
  const std::string_view declaration = text.substr(0, text.find("?>"));
  std::size_t pos = declaration.find(kKeyword);
  if (pos == std::string_view::npos || !IsBlank(declaration[pos - 1])) {
    return {};
  }
  pos += kKeyword.size();
  const auto skipBlanks = [&] {
    while (pos < declaration.size() && IsBlank(declaration[pos])) {
      ++pos;
    }
  };
  skipBlanks();
  if (pos == declaration.size() || declaration[pos++] != '=') {
    return {};
  }
  skipBlanks();
  if (pos == declaration.size() || (declaration[pos] != '"' && declaration[pos] != '\'')) {
    return {};
  }
  const std::size_t end = declaration.find(declaration[pos], pos + 1);
  if (end == std::string_view::npos) {
    return {};
  }
  const std::string_view name = declaration.substr(pos + 1, end - pos - 1);
  return std::all_of(name.begin(), name.end(), IsNameCharacter) ? name : std::string_view{};
}

Decoded Decode(std::string_view bytes) {
  if (bytes.starts_with(kUtf8Mark)) {
    const std::string_view text = bytes.substr(kUtf8Mark.size());
    return {std::string(text), std::string(DeclaredEncoding(text)), ""};
  }
  if (bytes.starts_with(kUtf16LittleMark)) {
    return DecodeFrom("UTF-16LE", bytes.substr(kUtf16LittleMark.size()));
  }
  if (bytes.starts_with(kUtf16BigMark)) {
    return DecodeFrom("UTF-16BE", bytes.substr(kUtf16BigMark.size()));
  }
  if (bytes.starts_with(std::string_view("<\0", 2))) {
    return DecodeFrom("UTF-16LE", bytes);
  }
  if (bytes.starts_with(std::string_view("\0<", 2))) {
    return DecodeFrom("UTF-16BE", bytes);
  }
  const std::string encoding(DeclaredEncoding(bytes));
  if (IsUtf8Name(encoding)) {
    return {std::string(bytes), encoding, ""};
  }
  if (IsUtf16Name(encoding)) {
    return {"", "", "the declaration names " + Quoted(encoding) + ", but the bytes are not in it"};
  }
  return DecodeFrom(encoding, bytes);
}

std::unique_ptr<Encoding> Encoding::Named(std::string_view name) {
  std::unique_ptr<Encoding> encoding(new Encoding);
  if (IsUtf8Name(name)) {
    encoding->unicode_ = true;
    return encoding;
  }
  const bool utf16 = IsUtf16Name(name);
  encoding->converter_ = OpenConverter(IconvNameOf(name), "UTF-8");
  if (encoding->converter_ == nullptr) {
    return nullptr;
  }
  if (utf16) {
    encoding->unicode_ = true;
    encoding->mark_ = CodePageNamed(name) == kUtf16Big ? kUtf16BigMark : kUtf16LittleMark;
    return encoding;
  }
  std::string ascii = "\t\n\r";
  for (char c = 0x20; c < 0x7F; ++c) {
    ascii += c;
  }
  return encoding->Encode(ascii) == ascii ? std::move(encoding) : nullptr;
}

bool Encoding::Has(char32_t character) {
  if (unicode_ || character < 0x80) {
    return true;
  }
  const auto [entry, isNew] = known_.try_emplace(character, false);
  if (isNew) {
    entry->second = Convert(converter_.get(), Utf8Of(character)).has_value();
  }
  return entry->second;
}

std::optional<std::string> Encoding::Encode(std::string_view text) {
  if (converter_ == nullptr) {
    return std::string(text);
  }
  std::optional<std::string> bytes = Convert(converter_.get(), text);
  if (bytes) {
    bytes->insert(0, mark_);
  }
  return bytes;
}

}  // namespace parvex::xml
