#include "hybris/selected_items.h"

#include <array>
#include <cstddef>
#include <memory>
#include <utility>

#include "hybris/hybris_document.h"
#include "hybris/protected_files.h"
#include "hybris/selection_section.h"

namespace parvex {
namespace {

/// Which text a numbered key fills.
template <class T>
struct KeyedText {
  std::string_view prefix;
  std::string T::*text;
};

constexpr KeyedText<Accessory> kAccessoryKeys[] = {
    {"Description:", &Accessory::description}, {"MasterPrice:", &Accessory::masterPrice},
    {"Quantity:", &Accessory::quantity},       {"TypeOfSale:", &Accessory::typeOfSale},
    {"Supplier:", &Accessory::supplier},       {"BaseUnit1:", &Accessory::baseUnit1},
    {"BaseUnit2:", &Accessory::baseUnit2},     {"FileName:", &Accessory::fileName},
};

constexpr std::array<std::string_view, 4> kMarkForKeys = {"MarkFor:", "MarkFor2:", "MarkFor3:", "MarkFor4:"};
constexpr std::array<std::string_view, 5> kAttributeKeys = {
    "Attribute1:", "Attribute2:", "Attribute3:", "Attribute4:", "Attribute5:"};

constexpr KeyedText<Warranty> kWarrantyKeys[] = {
    {"Quantity:", &Warranty::quantity},       {"Description:", &Warranty::description},
    {"MasterPrice:", &Warranty::masterPrice}, {"MarkFor:", &Warranty::markFor},
    {"BaseUnit1:", &Warranty::baseUnit1},     {"BaseUnit2:", &Warranty::baseUnit2},
};

/// One line item; its name key has been read already.
template <class T, std::size_t N>
std::shared_ptr<T> ReadLineItem(SelectionSection& section, std::int32_t number, const KeyedText<T> (&keys)[N]) {
  auto item = std::make_shared<T>();
  for (const KeyedText<T>& key : keys) {
    (*item).*key.text = section.Numbered(key.prefix, number);
  }
  item->preOrder = section.Numbered("preorderreq:", number);
  return item;
}

template <std::size_t N>
void ReadNumbered(SelectionSection& section, std::int32_t number, const std::array<std::string_view, N>& prefixes,
                  std::array<std::string, N>& texts) {
  for (std::size_t i = 0; i < N; ++i) {
    texts[i] = section.Numbered(prefixes[i], number);
  }
}

}  // namespace

std::vector<SelectedTag> ReadSelectedTags(const Platform& platform, std::string_view qbOutputFile) {
  std::vector<SelectedTag> tags;
  Counter16 count("tags");
  const auto namedBlobs = std::make_shared<NamedBlobs>(platform, qbOutputFile);
  for (;;) {
    SelectedTag tag(platform, qbOutputFile, count.Value() + 1);
    SelectionSection section = tag.Section("PartNumber");
    tag.partNumber = section.Text("PartNumber");
    if (tag.partNumber.empty()) {
      return tags;
    }
    count.Advance();
    tag.pdsg = section.Text("PDSG");
    tag.markFor = section.Text("MarkFor");
    tag.blobFileName = section.Text("FileName");
    tag.namedBlobs = namedBlobs;
    tags.push_back(std::move(tag));
  }
}

std::string BuildEtoDescription(const SelectedTag& tag) {
  SelectionSection section = tag.Section("ETO Description");
  std::string description;
  section.ForEach("Description:", "ETO description lines", [&](std::int16_t number, const std::string& line) {
    description += number > 1 ? "\r\n" : "";
    description += line;
  });
  return description;
}

Accessories ReadAccessories(const SelectedTag& tag) {
  SelectionSection section = tag.Section("Accessory");
  Accessories accessories;
  section.ForEach("PartNumber:", "accessories", [&](std::int16_t number, std::string partNumber) {
    auto accessory = ReadLineItem(section, number, kAccessoryKeys);
    ReadNumbered(section, number, kMarkForKeys, accessory->markFor);
    ReadNumbered(section, number, kAttributeKeys, accessory->attributes);
    accessory->partNumber = std::move(partNumber);
    accessory->supplier = MapBrand(accessory->supplier, accessory->typeOfSale);
    accessories.Append(std::move(accessory));
  });
  return accessories;
}

Warranties ReadWarranties(const SelectedTag& tag) {
  SelectionSection section = tag.Section("Warranty");
  Warranties warranties;
  section.ForEach("Name:", "warranties", [&](std::int16_t number, std::string name) {
    auto warranty = ReadLineItem(section, number, kWarrantyKeys);
    warranty->name = std::move(name);
    warranties.Append(std::move(warranty));
  });
  return warranties;
}

}  // namespace parvex
