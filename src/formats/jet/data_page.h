#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/jet/format.h"

namespace parvex::jet {

/// A data page taken apart: what its slots hold, in order. Slots are never renumbered, since indexes and other pages
/// point at them.
struct DataPage {
  struct Slot {
    bool hidden = false;   ///< reached only through a pointer elsewhere
    bool pointer = false;  ///< holds the place of a row that has outgrown this page
    std::string bytes;
    bool Deleted() const { return hidden && pointer; }
  };
  Version version = Version::Jet4;
  std::uint32_t owner = 0;  ///< definition page of the table
  std::vector<Slot> slots;

  /// Free bytes on the page; negative when it is overfull and cannot be written.
  std::ptrdiff_t FreeBytes() const;
  /// Whether one more row of that length has room.
  bool HasRoom(std::size_t rowLength) const;
};

/// Nothing when the bytes are not a sound data page.
std::optional<DataPage> DecodeDataPage(Version version, std::string_view page);
std::string EncodeDataPage(const DataPage& page);

/// One record, for whom taking the whole page apart is too much: false when the bytes are not a sound data page, else
/// `record` is its slot of that number, nothing when there is none or it is deleted.
bool FindRecord(Version version, std::string_view page, std::uint8_t row, std::optional<std::string_view>& record);

/// Rows of a page are numbered in one byte.
inline constexpr std::size_t kMostRows = 255;

}  // namespace parvex::jet
