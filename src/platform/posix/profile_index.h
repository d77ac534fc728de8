#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/posix/profile_text.h"

namespace parvex::posix {

/// Where the sections and keys of one profile text stand. Finding one costs the same however many there are. Eight bytes
/// a slot of the table: a hash, and the place of the line, which is read again when it is asked for.
class ProfileIndex {
 public:
  /// Offsets in the text: the header's line, and the stretch of the lines behind it.
  struct Section {
    std::uint32_t header;
    std::uint32_t begin;
    std::uint32_t end;
  };

  /// Of a text of less than 4 GiB, which must outlive this.
  explicit ProfileIndex(const ProfileText& file);

  /// The first section of this name, null when there is none. Lines before the first header are the section with the
  /// empty name. Names are pieces in the file's own encoding, without outer blanks.
  const Section* FindSection(std::string_view name) const;

  /// The value of the section's first line with this key, as it stands in the text; nothing when there is no such line,
  /// or it has no value.
  std::optional<std::string_view> FindValue(const Section& section, std::string_view key) const;

 private:
  // Numbers by the hash of their name; open addressing, the hash's upper bits are the first slot to look at.
  class Table {
   public:
    explicit Table(std::size_t expected);
    void Prefetch(std::uint32_t hash) const { __builtin_prefetch(&slots_[hash >> shift_]); }
    /// The first number stored under the hash for which `is` holds.
    template <typename Is>
    std::optional<std::uint32_t> Find(std::uint32_t hash, Is is) const;
    /// Stores the number unless there already is one for which `is` holds.
    template <typename Is>
    void Add(std::uint32_t hash, std::uint32_t number, Is is);

   private:
    struct Slot {
      std::uint32_t hash = 0;
      std::uint32_t numberAndOne = 0;  // 0: free
    };
    void Place(Slot slot);
    void Grow();

    std::vector<Slot> slots_;
    unsigned shift_;
    std::size_t used_ = 0;
  };

  // A key's line that is on its way into the table.
  struct Waiting {
    std::uint32_t hash;
    std::uint32_t line;
    std::uint32_t section;  // where the section's lines begin
  };

  void AddSection(std::string_view name, const ProfileLine& header);
  void AddKey(const Waiting& key);
  std::string_view NameOf(std::uint32_t section) const;
  std::string_view LineAt(std::size_t begin) const;

  const ProfileText& file_;
  std::string_view text_;
  std::vector<Section> sections_;
  Table sectionTable_;
  Table keys_;
};

}  // namespace parvex::posix
