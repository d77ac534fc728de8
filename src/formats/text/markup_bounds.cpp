#include "formats/text/markup_bounds.h"

#include <algorithm>

#include "formats/text/markup_tags.h"
#include "formats/text/xml_characters.h"

namespace parvex::xml {
namespace {

constexpr std::size_t kNowhere = std::string_view::npos;
constexpr std::size_t kShortestAttribute = 5;  // a blank, a letter, =, two quotes
constexpr std::size_t kShortestRefused = kShortestAttribute * kMostAttributes;

std::size_t AttributesOf(std::string_view text, const MarkupTag& tag) {
  std::size_t count = 0;
  ForEachAttribute(text, tag, [&](std::string_view) { ++count; });
  return count;
}

// The "<" with which a search that has come to the one at `from` goes on: where tags are near each other one that is
// far ahead, where they are not the next.
std::size_t FurtherTag(std::string_view text, std::size_t from) {
  constexpr std::size_t kNear = 64;
  const std::size_t ahead = from + kShortestRefused - kNear;
  const std::size_t last = text.substr(ahead, kNear).rfind('<');
  return last == kNowhere ? text.find('<', from + 1) : ahead + last;
}

// Whether some tag seems to have too many attributes. A "<" ends what was a tag so far, so only stretches without one
// are looked at, and of others none but every so many bytes.
bool SeemsToHaveTooManyAttributes(std::string_view text) {
  std::size_t from = text.find('<');
  while (from != kNowhere && text.size() - from > kShortestRefused) {
    const std::size_t next = std::min(FurtherTag(text, from), text.size());
    if (next - from < kShortestRefused) {
      from = next;
      continue;
    }
    const std::string_view stretch = text.substr(from, next - from);
    MarkupTag tag{};
    if (MarkupTags tags(stretch); tags.Next(tag) && AttributesOf(stretch, tag) > kMostAttributes) {
      return true;
    }
    from = next == text.size() ? kNowhere : next;
  }
  return false;
}

// Where the tag begins that has too many attributes; npos when none has.
std::size_t TooManyAttributesAt(std::string_view text) {
  if (!SeemsToHaveTooManyAttributes(text)) {
    return kNowhere;
  }
  MarkupTags tags(text);
  for (MarkupTag tag{}; tags.Next(tag);) {
    if (tag.end - tag.begin > kShortestRefused && AttributesOf(text, tag) > kMostAttributes) {
      return tag.begin;
    }
  }
  return kNowhere;
}

bool HasLargeDoctype(std::string_view text, std::size_t doctype) {
  return text.size() - doctype > kLargestDoctype &&
         EndOfDoctype(text.substr(0, doctype + kLargestDoctype), doctype) == kNowhere;
}

}  // namespace

std::string BeyondBounds(std::string_view text) {
  if (const std::size_t doctype = DoctypeIn(text); doctype != kNowhere && HasLargeDoctype(text, doctype)) {
    return PlaceOf(text, doctype) + ": the DOCTYPE is longer than " + std::to_string(kLargestDoctype) + " bytes";
  }
  const std::size_t at = TooManyAttributesAt(text);
  return at == kNowhere
             ? ""
             : PlaceOf(text, at) + ": an element with more than " + std::to_string(kMostAttributes) + " attributes";
}

}  // namespace parvex::xml
