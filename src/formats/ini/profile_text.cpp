#include "formats/ini/profile_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "formats/ini/profile_names.h"
#include "formats/text/letter_case.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"
#include "seams/automation_error.h"

namespace parvex::ini {
namespace {

constexpr std::string_view kLineBreak = "\r\n";

// The first CR or LF from `pos` on. Looks at a piece at a time, so that in a file with only one of them the search for
// the other does not run to the end.
std::size_t LineEnd(std::string_view text, std::size_t pos) {
  constexpr std::size_t kPiece = 256;
  while (pos < text.size()) {
    const char* begin = text.data() + pos;
    const std::size_t size = std::min(kPiece, text.size() - pos);
    const auto* feed = static_cast<const char*>(std::memchr(begin, '\n', size));
    const std::size_t line = feed != nullptr ? static_cast<std::size_t>(feed - begin) : size;
    const auto* carriage = static_cast<const char*>(std::memchr(begin, '\r', line));
    if (carriage != nullptr || feed != nullptr) {
      return pos + (carriage != nullptr ? static_cast<std::size_t>(carriage - begin) : line);
    }
    pos += size;
  }
  return text.size();
}

// Where a value is to be put: the part of the text that it replaces.
struct Place {
  std::size_t begin = 0;
  std::size_t end = 0;
  bool sectionFound = false;
  std::optional<std::string_view> keyLine;
};

// The section's first line with this key, else the end of its last line that is not blank; without the section, the end
// of the text. Lines before the first header are the section with the empty name.
Place FindPlace(const ProfileText& file, std::string_view section, std::string_view key) {
  const std::string_view text = file.Text();
  Place place{0, 0, section.empty(), std::nullopt};
  for (std::size_t pos = 0; pos < text.size();) {
    const ProfileLine line = ProfileLineAt(text, pos);
    const std::string_view content = text.substr(line.begin, line.end - line.begin);
    pos = line.next;
    if (const auto name = SectionName(content)) {
      if (place.sectionFound) {
        return place;
      }
      place.sectionFound = file.SameName(*name, section);
    } else if (place.sectionFound && !line.IsBlank() && file.SameName(KeyName(content), key)) {
      return {line.begin, line.end, true, content};
    }
    if (place.sectionFound && !line.IsBlank()) {
      place.begin = place.end = line.next;
    }
  }
  if (!place.sectionFound) {
    place.begin = place.end = text.size();
  }
  return place;
}

}  // namespace

std::string CutToAnsi(std::string_view text, std::size_t mostBytes, CodePage& codePage) {
  const std::string ansi = codePage.ToAnsi(text);
  if (ansi.size() <= mostBytes || codePage.IsSingleByte()) {
    return codePage.FromAnsi(std::string_view(ansi).substr(0, mostBytes));
  }
  // Half of a character does not come back as it was.
  for (std::string_view bytes(ansi.data(), mostBytes); !bytes.empty(); bytes.remove_suffix(1)) {
    std::string cut = codePage.FromAnsi(bytes);
    if (codePage.ToAnsi(cut) == bytes) {
      return cut;
    }
  }
  return {};
}

ProfileText::ProfileText(std::string bytes, CodePage& codePage)
    : codePage_(codePage), bytes_(std::move(bytes)), encoding_(EncodingOf(bytes_)) {
  isAnsi_ = encoding_ == TextEncoding::Unmarked && (codePage_.IsSingleByte() || IsAsciiText(bytes_));
  isConverted_ = IsUtf16(encoding_) || (encoding_ == TextEncoding::Unmarked && !isAnsi_);
  if (IsUtf16(encoding_)) {
    converted_ = FromUtf16(UnitsOf(std::string_view(bytes_).substr(MarkOf(encoding_).size()), encoding_));
  } else if (isConverted_) {
    converted_ = codePage_.FromAnsi(bytes_);
  }
}

std::string_view ProfileText::Text() const {
  return isConverted_ ? std::string_view(converted_) : std::string_view(bytes_).substr(MarkOf(encoding_).size());
}

std::string ProfileText::Read(std::string_view piece, std::size_t mostBytes) const {
  if (IsAsciiText(piece)) {
    return std::string(piece.substr(0, mostBytes));
  }
  return isAnsi_ ? codePage_.FromAnsi(piece.substr(0, mostBytes)) : CutToAnsi(piece, mostBytes, codePage_);
}

std::uint32_t ProfileText::HashOfName(std::string_view name) const {
  return HashIgnoringAsciiCase(IsAsciiText(name) ? name : std::string_view(Folded(name)), seed_);
}

bool ProfileText::SameName(std::string_view a, std::string_view b) const {
  if (a == b) {
    return true;
  }
  return IsAsciiText(a) && IsAsciiText(b) ? EqualIgnoringAsciiCase(a, b) : Folded(a) == Folded(b);
}

std::string ProfileText::Folded(std::string_view name) const {
  return FoldName(isAnsi_ ? codePage_.FromAnsi(name) : std::string(name));
}

std::string ProfileText::Piece(std::string_view ansi) const {
  return isAnsi_ ? std::string(ansi) : codePage_.FromAnsi(ansi);
}

// Where a place of the text is in the bytes.
std::size_t ProfileText::PlaceInBytes(std::size_t placeInText) const {
  const std::size_t mark = MarkOf(encoding_).size();
  if (!isConverted_) {
    return mark + placeInText;
  }
  const std::string_view before = Text().substr(0, placeInText);
  if (IsUtf16(encoding_)) {
    return mark + 2 * LengthInUnits(before);
  }
  // Lines end at the same characters in both, and only blanks, a byte each, stand between one of them and the place.
  const std::size_t lineBegin = before.find_last_of("\r\n") + 1;
  std::size_t place = 0;
  for (auto breaks = std::count_if(before.begin(), before.end(), IsBreak); breaks > 0; --breaks) {
    place = bytes_.find_first_of("\r\n", place) + 1;
  }
  if (std::all_of(before.begin() + static_cast<std::ptrdiff_t>(lineBegin), before.end(), IsProfileBlank)) {
    place += before.size() - lineBegin;
  } else {
    place = std::min(bytes_.find_first_of("\r\n", place), bytes_.size()) - (LineEnd(Text(), placeInText) - placeInText);
  }
  if (place > bytes_.size() || codePage_.FromAnsi(std::string_view(bytes_).substr(0, place)) != before) {
    // Half of a character that a line's end was taken for.
    throw MakeRuntimeError(RuntimeError::PathFileAccess,
                           "the profile file has half of a character at the end of a line");
  }
  return place;
}

// Only the new piece is converted: what cannot be (half of a surrogate pair, say) stays as it is.
std::string ProfileText::Splice(std::size_t begin, std::size_t end, std::string_view piece) const {
  const std::size_t first = PlaceInBytes(begin);
  const std::string bytes = IsUtf16(encoding_) ? BytesOf(ToUtf16(piece), encoding_)
                            : isConverted_     ? codePage_.ToAnsi(piece)
                                               : std::string(piece);
  return std::string(bytes_).replace(first, PlaceInBytes(end) - first, bytes);
}

std::optional<std::string> ProfileText::WithValue(std::string_view section, std::string_view key,
                                                  std::string_view value) const {
  const std::string sectionPiece = Piece(TrimProfileBlanks(section));
  const std::string keyPiece = Piece(TrimProfileBlanks(key));
  value.remove_prefix(std::find_if_not(value.begin(), value.end(), IsProfileBlank) - value.begin());
  const std::string valuePiece = Piece(value);

  const Place place = FindPlace(*this, sectionPiece, keyPiece);
  if (place.keyLine) {
    if (KeyValue(*place.keyLine) == valuePiece) {
      return std::nullopt;
    }
    return Splice(place.begin, place.end, std::string(KeyName(*place.keyLine)) + "=" + valuePiece);
  }
  std::string piece;
  if (place.begin > 0 && Text()[place.begin - 1] != '\n' && Text()[place.begin - 1] != '\r') {
    piece += kLineBreak;
  }
  if (!place.sectionFound) {
    piece.append("[").append(sectionPiece).append("]").append(kLineBreak);
  }
  return Splice(place.begin, place.end, piece.append(keyPiece).append("=").append(valuePiece).append(kLineBreak));
}

ProfileLine ProfileLineAt(std::string_view text, std::size_t pos) {
  std::size_t end = LineEnd(text, pos);
  std::size_t next = end;
  if (next < text.size()) {
    next += text.substr(next, 2) == kLineBreak ? 2 : 1;
  }
  while (pos < end && IsProfileBlank(text[pos])) {
    ++pos;
  }
  while (end > pos && IsProfileBlank(text[end - 1])) {
    --end;
  }
  return {pos, end, next};
}

std::optional<std::string_view> SectionName(std::string_view line) {
  if (line.empty() || line.front() != '[') {
    return std::nullopt;
  }
  const std::size_t close = line.rfind(']');
  if (close == std::string_view::npos) {
    return std::nullopt;
  }
  return UpToNul(TrimProfileBlanks(line.substr(1, close - 1)));
}

std::string_view KeyName(std::string_view line) {
  std::size_t end = std::min(line.find('='), line.size());
  while (end > 0 && IsProfileBlank(line[end - 1])) {
    --end;
  }
  return UpToNul(line.substr(0, end));
}

std::optional<std::string_view> KeyValue(std::string_view line) {
  const std::size_t sign = line.find('=');
  if (sign == std::string_view::npos) {
    return std::nullopt;
  }
  return UpToNul(TrimProfileBlanks(line.substr(sign + 1)));
}

std::string_view TrimProfileBlanks(std::string_view text) {
  while (!text.empty() && IsProfileBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && IsProfileBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

std::string_view UpToNul(std::string_view text) { return text.substr(0, text.find('\0')); }

std::string_view WithoutQuotes(std::string_view text) {
  const bool quoted = text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
  return quoted ? text.substr(1, text.size() - 2) : text;
}

}  // namespace parvex::ini
