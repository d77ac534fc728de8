#include "formats/ini/profile_index.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "formats/ini/profile_names.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace parvex::ini {
namespace {

std::size_t SlotsFor(std::size_t entries) { return 2 * entries + 1; }

// Where in a table of `slots` slots the search for a hash begins.
std::size_t Home(std::uint32_t hash, std::size_t slots) { return std::uint64_t{hash} * slots >> 32; }

// Longer names are not found. Without a bound, a file that repeats the name of one very long line could make every
// repetition look through that line.
constexpr std::size_t kLongestName = 4096;

constexpr std::size_t kBlock = 64;

// One bit for each of 64 characters.
struct Marks {
  std::uint64_t carriages = 0;
  std::uint64_t feeds = 0;
  std::uint64_t signs = 0;  // "="
  bool odd = false;         // whether any of them is NUL or beyond ASCII
};

Marks MarksOf(const char* block) {
  Marks marks;
#ifdef __SSE2__
  const auto bits = [](__m128i bytes) { return static_cast<std::uint64_t>(_mm_movemask_epi8(bytes)); };
  __m128i odd = _mm_setzero_si128();
  for (std::size_t i = 0; i < kBlock; i += 16) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block + i));
    const auto are = [&](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
    marks.carriages |= bits(are('\r')) << i;
    marks.feeds |= bits(are('\n')) << i;
    marks.signs |= bits(are('=')) << i;
    odd = _mm_or_si128(odd, _mm_or_si128(are('\0'), bytes));
  }
  marks.odd = bits(odd) != 0;
#else
  for (std::size_t i = 0; i < kBlock; ++i) {
    const char c = block[i];
    marks.carriages |= std::uint64_t{c == '\r'} << i;
    marks.feeds |= std::uint64_t{c == '\n'} << i;
    marks.signs |= std::uint64_t{c == '='} << i;
    marks.odd = marks.odd || c == '\0' || static_cast<unsigned char>(c) >= 0x80;
  }
#endif
  return marks;
}

// Calls visit(begin, sign, end, plain) for each line: the offsets of its first character, of its first "=" (its end if
// there is none) and of its end, outer blanks included, and whether the text up to there is ASCII without NUL.
template <typename Visit>
void ForEachLine(std::string_view text, Visit visit) {
  constexpr std::size_t kNone = std::string_view::npos;
  std::size_t begin = 0;
  std::size_t sign = kNone;
  bool plain = true;
  for (std::size_t block = 0; block <= text.size(); block += kBlock) {
    // The last block, which may hold nothing of the text, is filled up with line ends: the first of them ends the last
    // line, and what follows is blank.
    char last[kBlock];
    const bool whole = block + kBlock <= text.size();
    if (!whole) {
      std::fill(std::copy(text.begin() + static_cast<std::ptrdiff_t>(block), text.end(), last), last + kBlock, '\r');
    }
    Marks marks = MarksOf(whole ? text.data() + block : last);
    plain = plain && !marks.odd;
    // The LF behind a CR becomes an outer blank of the next line; at the beginning of a block it ends an empty one.
    std::uint64_t ends = marks.carriages | (marks.feeds & ~(marks.carriages << 1));
    for (; ends != 0; ends &= ends - 1) {
      const auto bit = static_cast<unsigned>(std::countr_zero(ends));
      if (sign == kNone) {
        sign = block + static_cast<unsigned>(std::countr_zero(marks.signs));
      }
      const std::size_t end = block + bit;
      visit(begin, std::min(sign, end), end, plain);
      begin = end + 1;
      sign = kNone;
      marks.signs &= ~std::uint64_t{1} << bit;
    }
    if (sign == kNone && marks.signs != 0) {
      sign = block + static_cast<unsigned>(std::countr_zero(marks.signs));
    }
  }
}

// Calls visit(line) for each line whose first character that is no blank is a bracket. There are few, so a search for
// brackets is faster than one for lines.
template <typename Visit>
void ForEachBracketedLine(std::string_view text, Visit visit) {
  for (std::size_t at = text.find('['); at != std::string_view::npos; at = text.find('[', at)) {
    std::size_t before = at;
    while (before > 0 && IsProfileBlank(text[before - 1]) && !IsBreak(text[before - 1])) {
      --before;
    }
    if (before > 0 && !IsBreak(text[before - 1])) {
      ++at;
      continue;
    }
    const ProfileLine line = ProfileLineAt(text, at);
    visit(line);
    at = line.next;
  }
}

// Where the blanks behind a line end, and its break begins.
std::size_t EndWithBlanks(std::string_view text, const ProfileLine& line) {
  std::size_t end = line.next;
  while (end > line.end && IsBreak(text[end - 1])) {
    --end;
  }
  return end;
}

}  // namespace

ProfileIndex::ProfileIndex(const ProfileText& file) : file_(file), text_(file.Text()) {
  std::vector<Slot> headers{{file_.HashOfName({}), 1}};
  sections_.push_back(Section(0, 0, 0));
  ForEachBracketedLine(text_, [&](const ProfileLine& line) {
    const auto name = SectionName(text_.substr(line.begin, line.end - line.begin));
    if (!name) {
      return;
    }
    const auto header = static_cast<std::uint32_t>(line.begin);
    sections_.back().end_ = header;
    sections_.push_back(Section(header, static_cast<std::uint32_t>(line.next), header));
    if (EndWithBlanks(text_, line) - line.begin <= kLongestName) {
      headers.push_back({file_.HashOfName(*name), static_cast<std::uint32_t>(sections_.size())});
    }
  });
  sections_.back().end_ = static_cast<std::uint32_t>(text_.size());
  sectionTable_ = MakeTable(headers, [this](std::uint32_t number) { return SectionNameAt(number); });
}

const ProfileIndex::Section* ProfileIndex::FindSection(std::string_view name) const {
  const auto number = Find(sectionTable_, file_.HashOfName(name),
                           [&](std::uint32_t candidate) { return file_.SameName(SectionNameAt(candidate), name); });
  return number ? &sections_[*number] : nullptr;
}

std::optional<std::string_view> ProfileIndex::FindValue(const Section& section, std::string_view key) const {
  if (section.keys_.slots == nullptr) {
    section.keys_ = KeysOf(section);
  }
  std::string_view line;
  const auto place = Find(section.keys_, file_.HashOfName(key), [&](std::uint32_t candidate) {
    line = LineAt(candidate);
    return file_.SameName(KeyName(line), key);
  });
  return place ? KeyValue(line) : std::nullopt;
}

ProfileIndex::Table ProfileIndex::KeysOf(const Section& section) const {
  std::vector<Slot> keys;
  const std::uint64_t seed = NameHashSeed();
  const std::string_view lines = text_.substr(section.begin_, section.end_ - section.begin_);
  ForEachLine(lines, [&](std::size_t begin, std::size_t sign, std::size_t end, bool plain) {
    while (begin < end && IsProfileBlank(lines[begin])) {
      ++begin;
    }
    if (begin == end || sign - begin > kLongestName) {
      return;
    }
    while (sign > begin && IsProfileBlank(lines[sign - 1])) {
      --sign;
    }
    const std::string_view name = lines.substr(begin, sign - begin);
    const auto place = static_cast<std::uint32_t>(section.begin_ + begin);
    keys.push_back({plain ? HashIgnoringAsciiCase(name, seed) : file_.HashOfName(UpToNul(name)), place + 1});
  });
  return MakeTable(keys, [this](std::uint32_t place) { return KeyNameAt(place); });
}

// Tables are cut from blocks, each twice as large as the one before: of memory of their own each, they would leave a
// heap that nothing else fits into.
ProfileIndex::Table ProfileIndex::NewTable(std::size_t entries) const {
  constexpr std::size_t kLargestBlock = 65'536;
  const std::size_t size = SlotsFor(entries);
  if (size > left_) {
    const std::size_t room = std::max(size, nextBlock_);
    blocks_.push_back(std::make_unique<Slot[]>(room));
    free_ = blocks_.back().get();
    left_ = room;
    nextBlock_ = std::min(2 * room, kLargestBlock);
  }
  left_ -= size;
  return {std::exchange(free_, free_ + size), size};
}

// A table of the entries without those whose name an earlier one has.
template <typename NameAt>
ProfileIndex::Table ProfileIndex::MakeTable(const std::vector<Slot>& entries, NameAt nameAt) const {
  const Table table = NewTable(entries.size());
  for (const Slot& entry : entries) {
    const auto known = [&](const Slot& slot) {
      return slot.hash == entry.hash && file_.SameName(nameAt(slot.placeAndOne - 1), nameAt(entry.placeAndOne - 1));
    };
    std::size_t at = Home(entry.hash, table.size);
    while (table.slots[at].placeAndOne != 0 && !known(table.slots[at])) {
      at = at + 1 == table.size ? 0 : at + 1;
    }
    if (table.slots[at].placeAndOne == 0) {
      table.slots[at] = entry;
    }
  }
  return table;
}

template <typename Is>
std::optional<std::uint32_t> ProfileIndex::Find(const Table& table, std::uint32_t hash, Is is) {
  const Slot* const slots = table.slots;
  for (std::size_t at = Home(hash, table.size); slots[at].placeAndOne != 0; at = at + 1 == table.size ? 0 : at + 1) {
    if (slots[at].hash == hash && is(slots[at].placeAndOne - 1)) {
      return slots[at].placeAndOne - 1;
    }
  }
  return std::nullopt;
}

std::string_view ProfileIndex::LineAt(std::uint32_t place) const {
  const ProfileLine line = ProfileLineAt(text_, place);
  return text_.substr(line.begin, line.end - line.begin);
}

// Does not look at the value.
std::string_view ProfileIndex::KeyNameAt(std::uint32_t place) const {
  const std::string_view window = text_.substr(place, kLongestName + 1);
  const std::string_view upToSign = window.substr(0, window.find('='));
  return UpToNul(upToSign.substr(0, ProfileLineAt(upToSign, 0).end));
}

std::string_view ProfileIndex::SectionNameAt(std::uint32_t number) const {
  return number == 0 ? std::string_view() : *SectionName(LineAt(sections_[number].header_));
}

}  // namespace parvex::ini
