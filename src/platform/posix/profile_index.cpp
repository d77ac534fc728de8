#include "platform/posix/profile_index.h"

#include <algorithm>
#include <array>
#include <bit>

namespace parvex::posix {
namespace {

// Stands for the place of the section in the hash of a section's own name.
constexpr std::uint32_t kSections = 0xFFFFFFFF;

// From the density of the lines at the text's beginning; the table grows where the rest is denser.
std::size_t EstimatedLines(std::string_view text) {
  const std::string_view sample = text.substr(0, 1 << 16);
  const auto lines = static_cast<std::size_t>(std::count(sample.begin(), sample.end(), '\n')) + 1;
  return lines * (text.size() / std::max<std::size_t>(sample.size(), 1) + 1);
}

}  // namespace

ProfileIndex::ProfileIndex(const ProfileText& file)
    : file_(file), text_(file.Text()), sectionTable_(16), keys_(EstimatedLines(text_)) {
  sections_.push_back({0, 0, 0});
  sectionTable_.Add(file_.HashOfName({}, kSections), 0, [](std::uint32_t) { return false; });
  // A line is added some lines after it was read; meanwhile its place in the table is on the way to the cache.
  constexpr std::size_t kWaiting = 16;
  std::array<Waiting, kWaiting> waiting;
  std::size_t read = 0;
  std::size_t added = 0;
  for (std::size_t pos = 0; pos < text_.size();) {
    const ProfileLine line = ProfileLineAt(text_, pos);
    const std::string_view content = text_.substr(line.begin, line.end - line.begin);
    pos = line.next;
    if (const auto name = SectionName(content)) {
      AddSection(*name, line);
    } else if (!line.IsBlank()) {
      const std::uint32_t section = sections_.back().begin;
      const std::uint32_t hash = file_.HashOfName(KeyName(content), section);
      keys_.Prefetch(hash);
      if (read - added == kWaiting) {
        AddKey(waiting[added++ % kWaiting]);
      }
      waiting[read++ % kWaiting] = {hash, static_cast<std::uint32_t>(line.begin), section};
    }
  }
  while (added < read) {
    AddKey(waiting[added++ % kWaiting]);
  }
  sections_.back().end = static_cast<std::uint32_t>(text_.size());
}

const ProfileIndex::Section* ProfileIndex::FindSection(std::string_view name) const {
  const auto found =
      sectionTable_.Find(file_.HashOfName(name, kSections), [&](std::uint32_t number) { return file_.SameName(NameOf(number), name); });
  return found ? &sections_[*found] : nullptr;
}

std::optional<std::string_view> ProfileIndex::FindValue(const Section& section, std::string_view key) const {
  const auto found = keys_.Find(file_.HashOfName(key, section.begin), [&](std::uint32_t line) {
    return line >= section.begin && line < section.end && file_.SameName(KeyName(LineAt(line)), key);
  });
  return found ? KeyValue(LineAt(*found)) : std::nullopt;
}

void ProfileIndex::AddSection(std::string_view name, const ProfileLine& header) {
  sections_.back().end = static_cast<std::uint32_t>(header.begin);
  const auto number = static_cast<std::uint32_t>(sections_.size());
  sections_.push_back({static_cast<std::uint32_t>(header.begin), static_cast<std::uint32_t>(header.next), 0});
  sectionTable_.Add(file_.HashOfName(name, kSections), number,
                    [&](std::uint32_t other) { return file_.SameName(NameOf(other), name); });
}

void ProfileIndex::AddKey(const Waiting& key) {
  keys_.Add(key.hash, key.line, [&](std::uint32_t other) {
    return other >= key.section && file_.SameName(KeyName(LineAt(other)), KeyName(LineAt(key.line)));
  });
}

std::string_view ProfileIndex::NameOf(std::uint32_t section) const {
  return section == 0 ? std::string_view() : *SectionName(LineAt(sections_[section].header));
}

std::string_view ProfileIndex::LineAt(std::size_t begin) const {
  const ProfileLine line = ProfileLineAt(text_, begin);
  return text_.substr(line.begin, line.end - line.begin);
}

ProfileIndex::Table::Table(std::size_t expected)
    : slots_(std::bit_ceil(std::max<std::size_t>(expected * 3 / 2, 16))),
      shift_(32 - static_cast<unsigned>(std::bit_width(slots_.size() - 1))) {}

template <typename Is>
std::optional<std::uint32_t> ProfileIndex::Table::Find(std::uint32_t hash, Is is) const {
  for (std::size_t i = hash >> shift_; slots_[i].numberAndOne != 0; i = (i + 1) % slots_.size()) {
    if (slots_[i].hash == hash && is(slots_[i].numberAndOne - 1)) {
      return slots_[i].numberAndOne - 1;
    }
  }
  return std::nullopt;
}

template <typename Is>
void ProfileIndex::Table::Add(std::uint32_t hash, std::uint32_t number, Is is) {
  if (Find(hash, is)) {
    return;
  }
  if (used_ >= slots_.size() / 8 * 6) {
    Grow();
  }
  Place({hash, number + 1});
  ++used_;
}

void ProfileIndex::Table::Place(Slot slot) {
  std::size_t i = slot.hash >> shift_;
  while (slots_[i].numberAndOne != 0) {
    i = (i + 1) % slots_.size();
  }
  slots_[i] = slot;
}

void ProfileIndex::Table::Grow() {
  std::vector<Slot> before(2 * slots_.size());
  before.swap(slots_);
  --shift_;
  for (const Slot& slot : before) {
    if (slot.numberAndOne != 0) {
      Place(slot);
    }
  }
}

}  // namespace parvex::posix
