#include "formats/ini/profile_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "formats/ini/profile_names.h"
#include "formats/text/letter_case.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"

namespace parvex::posix {
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

ProfileText::ProfileText(std::string bytes, CodePage& codePage)
    : codePage_(codePage), bytes_(std::move(bytes)), encoding_(EncodingOf(bytes_)) {
  if (IsUtf16(encoding_)) {
    converted_ = FromUtf16(UnitsOf(std::string_view(bytes_).substr(MarkOf(encoding_).size()), encoding_));
  }
}

std::string_view ProfileText::Text() const {
  if (IsUtf16(encoding_)) {
    return converted_;
  }
  return std::string_view(bytes_).substr(MarkOf(encoding_).size());
}

std::string ProfileText::Read(std::string_view piece, std::size_t mostBytes) const {
  if (IsAsciiText(piece)) {
    return std::string(piece.substr(0, mostBytes));
  }
  if (encoding_ == TextEncoding::Unmarked) {
    return codePage_.FromAnsi(piece.substr(0, mostBytes));
  }
  return codePage_.FromAnsi(std::string_view(codePage_.ToAnsi(piece)).substr(0, mostBytes));
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
  return FoldName(encoding_ == TextEncoding::Unmarked ? codePage_.FromAnsi(name) : std::string(name));
}

std::string ProfileText::Piece(std::string_view ansi) const {
  return encoding_ == TextEncoding::Unmarked ? std::string(ansi) : codePage_.FromAnsi(ansi);
}

// Only the new piece is converted: what cannot be (half of a surrogate pair, say) stays as it is.
std::string ProfileText::Splice(std::size_t begin, std::size_t end, std::string_view piece) const {
  const std::size_t mark = bytes_.size() - (IsUtf16(encoding_) ? 0 : Text().size());
  if (!IsUtf16(encoding_)) {
    return std::string(bytes_).replace(mark + begin, end - begin, piece);
  }
  const auto byteOffset = [&](std::size_t offset) {
    return MarkOf(encoding_).size() + 2 * LengthInUnits(Text().substr(0, offset));
  };
  const std::size_t first = byteOffset(begin);
  return std::string(bytes_).replace(first, byteOffset(end) - first, BytesOf(ToUtf16(piece), encoding_));
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

}  // namespace parvex::posix
