#include "formats/ini/profile_index.h"

#include <algorithm>
#include <bit>

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

}  // namespace

ProfileIndex::ProfileIndex(const ProfileText& file) : file_(file), text_(file.Text()) {
  std::vector<Slot> keys;
  std::vector<Slot> headers{{file_.HashOfName({}), 1}};
  std::uint32_t header = 0;
  const std::uint64_t seed = NameHashSeed();
  ForEachLine(text_, [&](std::size_t begin, std::size_t sign, std::size_t end, bool plain) {
    while (begin < end && IsProfileBlank(text_[begin])) {
      ++begin;
    }
    if (begin == end) {
      return;
    }
    const auto place = static_cast<std::uint32_t>(begin);
    if (const auto name = text_[begin] == '[' ? SectionName(LineAt(place)) : std::nullopt) {
      AddSection(header, keys);
      keys.clear();
      header = place;
      if (end - begin <= kLongestName) {
        headers.push_back({file_.HashOfName(*name), static_cast<std::uint32_t>(sections_.size() + 1)});
      }
      return;
    }
    if (sign - begin > kLongestName) {
      return;
    }
    while (sign > begin && IsProfileBlank(text_[sign - 1])) {
      --sign;
    }
    const std::string_view name = text_.substr(begin, sign - begin);
    keys.push_back({plain ? HashIgnoringAsciiCase(name, seed) : file_.HashOfName(UpToNul(name)), place + 1});
  });
  AddSection(header, keys);
  sectionTable_ = MakeTable(headers, [this](std::uint32_t number) { return SectionNameAt(number); });
}

const ProfileIndex::Section* ProfileIndex::FindSection(std::string_view name) const {
  const auto number = Find(sectionTable_, file_.HashOfName(name),
                           [&](std::uint32_t candidate) { return file_.SameName(SectionNameAt(candidate), name); });
  return number ? &sections_[*number] : nullptr;
}

std::optional<std::string_view> ProfileIndex::FindValue(const Section& section, std::string_view key) const {
  std::string_view line;
  const auto place = Find(section.keys_, file_.HashOfName(key), [&](std::uint32_t candidate) {
    line = LineAt(candidate);
    return file_.SameName(KeyName(line), key);
  });
  return place ? KeyValue(line) : std::nullopt;
}

void ProfileIndex::AddSection(std::uint32_t header, const std::vector<Slot>& keys) {
  sections_.push_back(Section(header, MakeTable(keys, [this](std::uint32_t place) { return KeyNameAt(place); })));
}

// A table of the entries without those whose name an earlier one has.
template <typename NameAt>
ProfileIndex::Table ProfileIndex::MakeTable(const std::vector<Slot>& entries, NameAt nameAt) {
  const Table table{slots_.size(), static_cast<std::uint32_t>(SlotsFor(entries.size()))};
  slots_.resize(table.firstSlot + table.slots);
  Slot* const slots = slots_.data() + table.firstSlot;
  for (const Slot& entry : entries) {
    const auto known = [&](const Slot& slot) {
      return slot.hash == entry.hash && file_.SameName(nameAt(slot.placeAndOne - 1), nameAt(entry.placeAndOne - 1));
    };
    std::size_t at = Home(entry.hash, table.slots);
    while (slots[at].placeAndOne != 0 && !known(slots[at])) {
      at = at + 1 == table.slots ? 0 : at + 1;
    }
    if (slots[at].placeAndOne == 0) {
      slots[at] = entry;
    }
  }
  return table;
}

template <typename Is>
std::optional<std::uint32_t> ProfileIndex::Find(const Table& table, std::uint32_t hash, Is is) const {
  const Slot* const slots = slots_.data() + table.firstSlot;
  for (std::size_t at = Home(hash, table.slots); slots[at].placeAndOne != 0; at = at + 1 == table.slots ? 0 : at + 1) {
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
