#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "formats/ini/profile_text.h"

namespace parvex::ini {

/// Where the sections and keys of one profile text stand. Finding one costs the same however many there are; names of
/// more than 4096 characters are not found. Every section has a hash table of eight-byte slots: a name's hash, and the
/// place of its line, which is read again when it is asked for. The table of a section's keys is made when one of them
/// is first asked for: who reads a large file section by section finds each in the processor's cache. Belongs to one
/// thread at a time.
class ProfileIndex {
 public:
  class Section;

  /// Of a text of less than 4 GiB, which must outlive this.
  explicit ProfileIndex(const ProfileText& file);

  /// The first section of this name, null when there is none. Lines before the first header are the section with the
  /// empty name. Names are pieces in the file's own encoding, without outer blanks.
  const Section* FindSection(std::string_view name) const;

  /// The value of the section's first line with this key, as it stands in the text; nothing when there is no such line,
  /// or it has no value.
  std::optional<std::string_view> FindValue(const Section& section, std::string_view key) const;

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t placeAndOne = 0;  // 0: free
  };
  struct Table {
    Slot* slots = nullptr;  // null until it is made
    std::size_t size = 0;   // of which at least one slot is free
  };

  Table KeysOf(const Section& section) const;
  Table NewTable(std::size_t entries) const;
  template <typename NameAt>
  Table MakeTable(const std::vector<Slot>& entries, NameAt nameAt) const;
  template <typename Is>
  static std::optional<std::uint32_t> Find(const Table& table, std::uint32_t hash, Is is);
  std::string_view LineAt(std::uint32_t place) const;
  std::string_view KeyNameAt(std::uint32_t place) const;
  std::string_view SectionNameAt(std::uint32_t number) const;

  const ProfileText& file_;
  std::string_view text_;
  mutable std::vector<std::unique_ptr<Slot[]>> blocks_;  // that hold the tables
  mutable Slot* free_ = nullptr;                         // the rest of the last block
  mutable std::size_t left_ = 0;
  mutable std::size_t nextBlock_ = 128;
  std::vector<Section> sections_;
  Table sectionTable_;
};

class ProfileIndex::Section {
  friend ProfileIndex;
  std::uint32_t header_;  // where its header stands
  std::uint32_t begin_;   // where its lines begin and end
  std::uint32_t end_;
  mutable Table keys_;
  Section(std::uint32_t header, std::uint32_t begin, std::uint32_t end) : header_(header), begin_(begin), end_(end) {}
};

}  // namespace parvex::ini
