#include "masking/masker.h"

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

#include "codec/bin_encoder.h"
#include "formats/jet/changed_texts.h"
#include "formats/jet/format.h"
#include "formats/text/encoded_text.h"
#include "formats/text/encoding_names.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"
#include "formats/text/windows_1252.h"
#include "formats/zip/zip_reader.h"
#include "formats/zip/zip_writer.h"
#include "masking/text_walk.h"
#include "seams/automation_error.h"

namespace parvex::masking {
namespace {

constexpr int kMostArchives = 12;
constexpr std::uint64_t kMostUnpacked = std::uint64_t{4} << 30;
constexpr std::size_t kLargestText = std::size_t{512} << 20;
constexpr std::size_t kShortFile = 4'096;
constexpr std::size_t kShortestWord = 8;
constexpr std::size_t kSurelyOfAFile = 64;  // Base64 that reads as text
constexpr std::u32string_view kCopy = U"copy of ";

constexpr unsigned kWindows1252 = 1252;
constexpr unsigned kLatin1 = 28591;
constexpr unsigned kCodePageUtf8 = 65001;

bool IsControl(unsigned char c) { return c < 0x20 && c != '\t' && c != '\r' && c != '\n' && c != '\f' && c != 0x1A; }

// The name of the encoding in an XML declaration.
std::optional<std::string> DeclaredEncoding(std::string_view bytes) {
  if (!bytes.starts_with("<?xml")) {
    return std::nullopt;
  }
  const std::string_view declaration = bytes.substr(0, std::min(bytes.find("?>"), bytes.size()));
  const std::size_t name = declaration.find("encoding");
  const std::size_t quote = declaration.find_first_of("\"'", name == declaration.npos ? declaration.size() : name);
  if (quote == declaration.npos) {
    return std::nullopt;
  }
  const std::size_t end = declaration.find(declaration[quote], quote + 1);
  return end == declaration.npos ? std::nullopt
                                 : std::optional(std::string(declaration.substr(quote + 1, end - quote - 1)));
}

TextEncoding UnmarkedUtf16(std::string_view bytes) {
  if (bytes.starts_with(std::string_view("<\0", 2))) {
    return TextEncoding::Utf16Little;
  }
  return bytes.starts_with(std::string_view("\0<", 2)) ? TextEncoding::Utf16Big : TextEncoding::Unmarked;
}

}  // namespace

void Masker::MaskWith(const Key& key) {
  letters_ = Letters(key);
  work_ = Work::Mask;
  unpacked_ = 0;
}

void Masker::Check() {
  work_ = Work::Check;
  unpacked_ = 0;
  left_.clear();
}

std::string Masker::Text(std::string_view text, Place place) {
  if (text.size() > kLargestText) {
    throw MakeRuntimeError(RuntimeError::InvalidCall, "a text in the case is too long to be masked");
  }
  return TextWalk(*this, text).Walked(place);
}

std::string Masker::File(std::string_view name, std::string_view bytes) {
  const std::string_view last = name.substr(name.find_last_of("\\/") + 1);
  const bool isKnown = EqualIgnoringCase(last, "UIKeys.txt") || EqualIgnoringCase(last, "Tag");
  if (!isKnown && bytes.size() <= kShortFile) {
    files_.emplace(bytes);
  }
  return Bytes(bytes, isKnown ? Place::Other : Place::Free);
}

std::string Masker::Bytes(std::string_view bytes, Place place) {
  if (std::optional<std::string> masked = LookedInto(bytes, place)) {
    return std::move(*masked);
  }
  return std::string(bytes.size(), '\0');
}

std::optional<std::string> Masker::LookedInto(std::string_view bytes, Place place) {
  if (bytes.empty()) {
    return std::string();
  }
  unpacked_ += bytes.size();
  if (depth_ >= kMostArchives || unpacked_ > kMostUnpacked) {
    throw MakeRuntimeError(RuntimeError::InvalidCall, "archives in the case are nested too deeply to be masked");
  }
  ++depth_;
  std::optional<std::string> masked;
  if (bytes.starts_with(jet::kFileStart)) {
    masked = Database(bytes);
  } else if (masked = Archive(bytes); !masked) {
    masked = EncodedText(bytes, place);
  }
  --depth_;
  return masked;
}

std::u32string Masker::Masked(std::u32string_view text, Place place) {
  std::u32string masked(text);
  if (place == Place::Price) {
    letters_.MaskNumbers(masked);
    return masked;
  }
  // What the protocol itself puts around a name to make another: "Copy of RTU-1", "RTU-1[2]".
  std::size_t from = 0;
  std::size_t end = masked.size();
  std::u32string lower(text.substr(0, kCopy.size()));
  std::transform(lower.begin(), lower.end(), lower.begin(), Lowered);
  if (lower == kCopy) {
    from = kCopy.size();
  }
  if (const std::size_t open = masked.rfind(U'[');
      open != masked.npos && open >= from && masked.back() == U']' &&
      std::all_of(masked.begin() + static_cast<std::ptrdiff_t>(open) + 1, masked.end() - 1, IsDigit)) {
    end = open;
  }
  letters_.Mask(std::span(masked).subspan(from, end - from));
  return masked;
}

std::optional<std::string> Masker::Archive(std::string_view bytes) {
  posix::Windows1252 codePage;
  std::vector<PackedEntry> entries;
  try {
    entries = Unpack(codePage, bytes, "");
  } catch (const AutomationError&) {
    return std::nullopt;
  }
  if (entries.empty()) {
    return std::nullopt;
  }
  ZipWriter writer;
  for (const PackedEntry& entry : entries) {
    std::string name = Path(entry.name);
    std::replace(name.begin(), name.end(), '\\', '/');
    if (entry.isFolder) {
      writer.Add(name + "/", "", false);
    } else {
      writer.Add(name, File(entry.name, entry.bytes), !entry.bytes.empty());
    }
  }
  return writer.Finish();
}

std::string Masker::Database(std::string_view bytes) {
  const auto change = [&](jet::RowTexts& row) {
    // A table of settings names in one column what the other holds.
    Place setting = Place::Other;
    for (const jet::RowTexts::Field& field : row.fields) {
      if (field.text && EqualIgnoringCase(field.column, "sKey")) {
        setting = PlaceNamed(*field.text);
      }
    }
    for (jet::RowTexts::Field& field : row.fields) {
      if (!field.text) {
        continue;
      }
      if (field.isNumber) {
        if (PlaceNamed(field.column) == Place::Price) {
          field.text = Text(*field.text, Place::Price);
        }
        continue;
      }
      field.text = Text(*field.text, EqualIgnoringCase(field.column, "sValue") ? setting : PlaceNamed(field.column));
    }
  };
  try {
    return jet::WithChangedTexts(std::string(bytes), change);
  } catch (const AutomationError&) {
    return std::string(bytes.size(), '\0');
  }
}

std::optional<std::string> Masker::EncodedText(std::string_view bytes, Place place) {
  TextEncoding encoding = EncodingOf(bytes);
  const std::string_view mark = MarkOf(encoding);
  std::string_view body = bytes.substr(mark.size());
  if (encoding == TextEncoding::Unmarked) {
    encoding = UnmarkedUtf16(bytes);
  }
  if (IsUtf16(encoding)) {
    if (body.size() % 2 != 0) {
      return std::nullopt;
    }
    const std::string text = FromUtf16(UnitsOf(body, encoding), LoneSurrogates::Kept);
    if (std::any_of(text.begin(), text.end(), [](char c) { return IsControl(static_cast<unsigned char>(c)); })) {
      return std::nullopt;
    }
    return std::string(mark) + BytesOf(ToUtf16(Text(text, place), LoneSurrogates::Kept), encoding);
  }
  if (std::any_of(body.begin(), body.end(), [](char c) { return IsControl(static_cast<unsigned char>(c)); })) {
    return std::nullopt;
  }
  const std::optional<std::string> declared = DeclaredEncoding(body);
  const std::optional<unsigned> codePage = declared ? CodePageNamed(*declared) : std::nullopt;
  if (declared && codePage != kWindows1252 && codePage != kLatin1 && codePage != kCodePageUtf8) {
    const bool isAscii =
        std::all_of(body.begin(), body.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (!isAscii) {
      return std::nullopt;
    }
  }
  const bool isWestern = codePage == kWindows1252 || codePage == kLatin1;
  if (!isWestern && IsWellFormed(body)) {
    return std::string(mark) + Text(body, place);
  }
  posix::Windows1252 western;
  return std::string(mark) + western.ToAnsi(Text(western.FromAnsi(body), place));
}

std::string Masker::Packed(std::string_view base64, bool isSure) {
  std::size_t digits = 0;
  for (const char c : base64) {
    digits += c != '\r' && c != '\n' ? 1 : 0;
  }
  if (!isSure && (digits < kShortestWord || digits % 4 != 0)) {
    return {};
  }
  const std::string bytes = DecodeBase64(base64);
  // A few letters may be a word; it is one of a file where such a file was seen.
  const bool isFile = isSure || digits >= kSurelyOfAFile || files_.contains(bytes);
  if (std::optional<std::string> masked = LookedInto(bytes, isFile ? Place::Free : Place::Other)) {
    return work_ == Work::Mask && *masked != bytes ? EncodeBase64(*masked) : std::string();
  }
  const bool isClosed = isSure || files_.contains(bytes);
  return work_ == Work::Mask && isClosed ? EncodeBase64(std::string(bytes.size(), '\0')) : std::string();
}

}  // namespace parvex::masking
