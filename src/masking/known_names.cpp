#include "masking/known_names.h"

#include <algorithm>

#include "formats/text/unicode.h"
#include "masking/letters.h"

namespace parvex::masking {
namespace {

constexpr std::size_t kShortestName = 3;
constexpr std::size_t kShortestNumber = 7;  // digits of a telephone number
constexpr std::size_t kShortestDescription = 8;
constexpr std::size_t kShortestPrice = 4;
constexpr std::size_t kLongestFamily = 8;
constexpr std::size_t kShortestInside = 5;  // of names that are looked for inside longer words

std::u32string Lower(std::u32string_view text) {
  std::u32string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), Lowered);
  return lower;
}

std::u32string CodesIn(std::string_view text) {
  std::u32string codes;
  for (std::size_t pos = 0; pos < text.size();) {
    codes.push_back(NextCodePoint(text, pos));
  }
  return codes;
}

// Of the first three characters; every name that is looked for has them.
std::uint64_t StartOf(std::u32string_view text) {
  return text[0] | std::uint64_t{text[1]} << 21 | std::uint64_t{text[2]} << 42;
}

bool IsWordPart(char32_t c) { return IsMasked(c) || IsUnknownLetter(c); }

// Whether nothing around it makes a longer word of it.
bool StandsAlone(std::u32string_view text, std::size_t at, std::size_t length) {
  const auto joins = [&](std::size_t inside, std::size_t outside) {
    return IsWordPart(text[inside]) && IsWordPart(text[outside]);
  };
  return (at == 0 || !joins(at, at - 1)) && (at + length == text.size() || !joins(at + length - 1, at + length));
}

bool HoldsAlone(std::u32string_view text, std::u32string_view what) {
  for (std::size_t at = text.find(what); at != text.npos; at = text.find(what, at + 1)) {
    if (StandsAlone(text, at, what.size())) {
      return true;
    }
  }
  return false;
}

// A price goes on where another digit, or a point or comma with one, follows.
bool IsWholeNumber(std::u32string_view text, std::size_t at, std::size_t length) {
  const auto isPart = [](char32_t c) { return IsDigit(c) || c == U'.' || c == U','; };
  const std::size_t end = at + length;
  const bool goesOn = end < text.size() &&
                      (IsDigit(text[end]) || (end + 1 < text.size() && isPart(text[end]) && IsDigit(text[end + 1])));
  return !goesOn && (at == 0 || !isPart(text[at - 1]));
}

}  // namespace

void KnownNames::Add(Place place, std::u32string_view text) {
  const auto isMasked = [](char32_t c) { return IsMasked(c); };
  if (std::none_of(text.begin(), text.end(), isMasked)) {
    return;
  }
  std::u32string key(1, static_cast<char32_t>(place));
  key += Lower(text);
  if (known_.insert(std::move(key)).second) {
    names_.push_back({.text = std::u32string(text), .place = place});
  }
}

void KnownNames::AddProtocolText(std::string_view text) {
  std::u32string lower = Lower(CodesIn(text));
  if (protocolWords_.insert(lower).second) {
    protocol_.append(U"\n").append(lower);
  }
}

void KnownNames::AddFamily(std::string_view code) {
  const std::u32string codes = CodesIn(code);
  if (codes.size() <= kLongestFamily && std::all_of(codes.begin(), codes.end(), IsMasked)) {
    AddProtocolText(code);
  }
}

void KnownNames::Close() {
  protocol_.push_back(U'\n');
  for (std::size_t i = 0; i < names_.size(); ++i) {
    Name& name = names_[i];
    const std::u32string lower = Lower(name.text);
    const auto count = [&](auto is) { return static_cast<std::size_t>(std::count_if(lower.begin(), lower.end(), is)); };
    const std::size_t size = count(IsMasked);
    const std::size_t digits = count(IsDigit);
    if (name.place == Place::Price) {
      name.isLookedFor = digits >= kShortestPrice && lower.find(U'.') != lower.npos && digits == size;
      name.standsAlone = true;
    } else {
      const std::size_t shortest = name.place == Place::Description ? kShortestDescription : kShortestName;
      name.isLookedFor = (digits < size ? size >= shortest : size >= kShortestNumber) && !HoldsAlone(protocol_, lower);
      name.standsAlone = size < kShortestInside || digits == size || protocol_.find(lower) != protocol_.npos;
    }
    if (name.isLookedFor) {
      byStart_[StartOf(lower)].emplace_back(lower, i);
    }
  }
  for (auto& [start, names] : byStart_) {
    std::sort(names.begin(), names.end(), [](const auto& a, const auto& b) { return a.first.size() > b.first.size(); });
  }
}

std::vector<KnownNames::Found> KnownNames::FindIn(std::u32string_view text) const {
  std::vector<Found> found;
  if (byStart_.empty()) {
    return found;
  }
  const std::u32string lower = Lower(text);
  for (std::size_t at = 0; at + 2 < lower.size();) {
    const auto names = byStart_.find(StartOf(std::u32string_view(lower).substr(at)));
    std::size_t length = 0;
    if (names != byStart_.end()) {
      for (const auto& [name, index] : names->second) {
        if (lower.compare(at, name.size(), name) != 0) {
          continue;
        }
        const bool isPrice = names_[index].place == Place::Price;
        if (isPrice ? IsWholeNumber(lower, at, name.size())
                    : !names_[index].standsAlone || StandsAlone(lower, at, name.size())) {
          length = name.size();
          found.push_back({at, length, isPrice});
          break;
        }
      }
    }
    at += std::max<std::size_t>(length, 1);
  }
  return found;
}

}  // namespace parvex::masking
