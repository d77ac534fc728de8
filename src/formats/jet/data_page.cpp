#include "formats/jet/data_page.h"

#include <numeric>

#include "formats/jet/format.h"

namespace parvex::jet {

namespace {

constexpr std::uint16_t kHiddenFlag = 0x8000;
constexpr std::uint16_t kPointerFlag = 0x4000;
constexpr std::uint16_t kOffsetMask = 0x1FFF;

/// Two bytes for each slot follow their number.
constexpr std::size_t SlotCountAt(Version version) { return version == Version::Jet3 ? 8 : 12; }
constexpr std::size_t SlotsAt(Version version) { return SlotCountAt(version) + 2; }

/// Calls `use` with flags and bytes of each slot; false as soon as the page is found not to be a sound data page.
template <typename Use>
bool ForEachSlot(Version version, std::string_view page, Use use) {
  const std::size_t slotsAt = SlotsAt(version);
  if (page.size() != PageSize(version) || ByteAt(page, 0) != static_cast<std::uint8_t>(PageType::Data)) return false;
  const std::size_t count = Get16(page, SlotCountAt(version));
  const std::size_t rowsFrom = slotsAt + 2 * count;
  std::size_t end = page.size();
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint16_t entry = Get16(page, slotsAt + 2 * i);
    const std::size_t from = entry & kOffsetMask;
    if (from < rowsFrom || from > end) return false;
    use((entry & kHiddenFlag) != 0, (entry & kPointerFlag) != 0, page.substr(from, end - from));
    end = from;
  }
  return true;
}

}  // namespace

std::ptrdiff_t DataPage::FreeBytes() const {
  const std::size_t used =
      std::accumulate(slots.begin(), slots.end(), SlotsAt(version),
                      [](std::size_t sum, const Slot& slot) { return sum + 2 + slot.bytes.size(); });
  return static_cast<std::ptrdiff_t>(PageSize(version)) - static_cast<std::ptrdiff_t>(used);
}

bool DataPage::HasRoom(std::size_t rowLength) const {
  return slots.size() < kMostRows && FreeBytes() >= static_cast<std::ptrdiff_t>(rowLength + 2);
}

std::optional<DataPage> DecodeDataPage(Version version, std::string_view page) {
  DataPage decoded{.version = version, .owner = 0, .slots = {}};
  const auto take = [&](bool hidden, bool pointer, std::string_view bytes) {
    decoded.slots.push_back({.hidden = hidden, .pointer = pointer, .bytes = std::string(bytes)});
  };
  if (!ForEachSlot(version, page, take)) return std::nullopt;
  decoded.owner = Get32(page, 4);
  return decoded;
}

bool FindRecord(Version version, std::string_view page, std::uint8_t row, std::optional<std::string_view>& record) {
  std::size_t number = 0;
  record.reset();
  return ForEachSlot(version, page, [&](bool hidden, bool pointer, std::string_view bytes) {
    if (number++ == row && !(hidden && pointer)) record = bytes;
  });
}

std::string EncodeDataPage(const DataPage& decoded) {
  std::string page(PageSize(decoded.version), '\0');
  page[0] = static_cast<char>(PageType::Data);
  page[1] = 1;
  Put16(page, 2, static_cast<std::uint16_t>(decoded.FreeBytes()));
  Put32(page, 4, decoded.owner);
  Put16(page, SlotCountAt(decoded.version), static_cast<std::uint16_t>(decoded.slots.size()));
  std::size_t end = PageSize(decoded.version);
  for (std::size_t i = 0; i < decoded.slots.size(); ++i) {
    const DataPage::Slot& slot = decoded.slots[i];
    end -= slot.bytes.size();
    page.replace(end, slot.bytes.size(), slot.bytes);
    const int flags = (slot.hidden ? kHiddenFlag : 0) | (slot.pointer ? kPointerFlag : 0);
    Put16(page, SlotsAt(decoded.version) + 2 * i, static_cast<std::uint16_t>(end | static_cast<std::size_t>(flags)));
  }
  return page;
}

}  // namespace parvex::jet
