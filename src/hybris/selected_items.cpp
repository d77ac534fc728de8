#include "hybris/selected_items.h"

#include <memory>
#include <utility>

#include "hybris/hybris_document.h"
#include "hybris/selection_section.h"

namespace parvex {
namespace {

/// Which property a numbered key fills.
template <class T>
struct KeyedProperty {
  std::string_view prefix;
  std::string T::*property;
};

constexpr KeyedProperty<AccessoryCls> kAccessoryKeys[] = {
    {"Description:", &AccessoryCls::Description}, {"MasterPrice:", &AccessoryCls::MasterPrice},
    {"Quantity:", &AccessoryCls::Quantity},       {"TypeOfSale:", &AccessoryCls::TypeOfSale},
    {"MarkFor:", &AccessoryCls::MarkFor},         {"MarkFor2:", &AccessoryCls::MarkFor2},
    {"MarkFor3:", &AccessoryCls::MarkFor3},       {"MarkFor4:", &AccessoryCls::MarkFor4},
    {"Supplier:", &AccessoryCls::Supplier},       {"Attribute1:", &AccessoryCls::Attribute1},
    {"Attribute2:", &AccessoryCls::Attribute2},   {"Attribute3:", &AccessoryCls::Attribute3},
    {"Attribute4:", &AccessoryCls::Attribute4},   {"Attribute5:", &AccessoryCls::Attribute5},
    {"BaseUnit1:", &AccessoryCls::BaseUnit1},     {"BaseUnit2:", &AccessoryCls::BaseUnit2},
    {"FileName:", &AccessoryCls::FileName},
};

constexpr KeyedProperty<WarrantyCls> kWarrantyKeys[] = {
    {"Quantity:", &WarrantyCls::Quantity},       {"Description:", &WarrantyCls::Description},
    {"MasterPrice:", &WarrantyCls::MasterPrice}, {"MarkFor:", &WarrantyCls::MarkFor},
    {"BaseUnit1:", &WarrantyCls::BaseUnit1},     {"BaseUnit2:", &WarrantyCls::BaseUnit2},
};

/// One line item; its name key has been read already.
template <class T, std::size_t N>
std::shared_ptr<T> ReadLineItem(SelectionSection& section, std::int32_t number, const KeyedProperty<T> (&keys)[N]) {
  auto item = std::make_shared<T>();
  for (const KeyedProperty<T>& key : keys) {
    (*item).*key.property = section.Numbered(key.prefix, number);
  }
  item->preorderreq = section.Numbered("preorderreq:", number);
  return item;
}

}  // namespace

Tags ReadSelectedTags(const Platform& platform, std::string_view qbOutputFile) {
  Tags tags;
  Counter16 count("tags");
  for (;;) {
    SelectionSection section(platform, qbOutputFile, "PartNumber", count.Value() + 1);
    std::string partNumber = section.Text("PartNumber");
    if (partNumber.empty()) {
      return tags;
    }
    count.Advance();
    auto tag = std::make_shared<TagCls>();
    tag->PartNumber = std::move(partNumber);
    tag->PDSG = section.Text("PDSG");
    tag->MarkFor = section.Text("MarkFor");
    tag->BlobFileName = section.Text("FileName");
    tags.Append(std::move(tag));
  }
}

std::string BuildEtoDescription(const Platform& platform, std::string_view qbOutputFile, std::int32_t tagIndex) {
  SelectionSection section(platform, qbOutputFile, "ETO Description", tagIndex);
  std::string description;
  section.ForEach("Description:", "ETO description lines", [&](std::int16_t number, const std::string& line) {
    description += number > 1 ? "\r\n" : "";
    description += line;
  });
  return description;
}

Accessories ReadAccessories(const Platform& platform, std::string_view qbOutputFile, std::int32_t tagIndex) {
  SelectionSection section(platform, qbOutputFile, "Accessory", tagIndex);
  Accessories accessories;
  section.ForEach("PartNumber:", "accessories", [&](std::int16_t number, std::string partNumber) {
    auto accessory = ReadLineItem(section, number, kAccessoryKeys);
    accessory->PartNumber = std::move(partNumber);
    accessory->Supplier = MapBrand(accessory->Supplier, accessory->TypeOfSale);
    accessories.Append(std::move(accessory));
  });
  return accessories;
}

Warranties ReadWarranties(const Platform& platform, std::string_view qbOutputFile, std::int32_t tagIndex) {
  SelectionSection section(platform, qbOutputFile, "Warranty", tagIndex);
  Warranties warranties;
  section.ForEach("Name:", "warranties", [&](std::int16_t number, std::string name) {
    auto warranty = ReadLineItem(section, number, kWarrantyKeys);
    warranty->Name = std::move(name);
    warranties.Append(std::move(warranty));
  });
  return warranties;
}

}  // namespace parvex
