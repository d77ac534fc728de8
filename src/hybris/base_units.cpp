#include "hybris/base_units.h"

#include <cmath>
#include <utility>
#include <vector>

#include "formats/text/text.h"
#include "hybris/leading_number.h"
#include "hybris/stored_tag_text.h"
#include "seams/automation_error.h"
#include "seams/xml.h"

namespace parvex {
namespace {

constexpr std::string_view kMadeIntoBaseUnit = "XX1";

/// A BaseUnit1 of fewer than three characters has nothing behind its first two, which reads as 0.
bool IsFurtherBaseUnit(const Accessory& accessory) { return LeadingNumber(DropUnits(accessory.baseUnit1, 2)) > 1; }

bool HasStoredDataOfItsOwn(const Accessory& accessory) {
  return accessory.baseUnit1.empty() && !accessory.fileName.empty();
}

/// The whole number of the base unit that a line belongs to. A double, so that no number is out of range.
double BaseUnitNumber(std::string_view baseUnit2) {
  if (baseUnit2.empty()) {
    return 1;
  }
  if (LengthInUnits(baseUnit2) < 4) {
    throw MakeRuntimeError(RuntimeError::InvalidCall,
                           "BaseUnit2 \"" + std::string(baseUnit2) + "\" is shorter than four characters");
  }
  return std::nearbyint(LeadingNumber(DropUnits(baseUnit2, 4)));
}

/// Deals the items out to the base units, each of which gets its `list` anew, in the order of the items. `alsoToFirst`
/// says of an item's number whether the first base unit gets the item besides. Every item is looked at once, whatever
/// the number of base units.
template <class Items, class AlsoToFirst>
void DealOut(const Items& items, const BaseUnits& baseUnits, Items BaseUnit::*list, AlsoToFirst alsoToFirst) {
  if (baseUnits.Count() == 0) {
    return;
  }
  std::vector<Items> dealt(baseUnits.Count());
  for (const auto& item : items) {
    const double number = BaseUnitNumber(item->baseUnit2);
    if (number >= 1 && number <= static_cast<double>(dealt.size())) {
      dealt[static_cast<std::size_t>(number) - 1].Append(item);
    }
    if (number != 1 && alsoToFirst(number)) {
      dealt.front().Append(item);
    }
  }
  for (std::size_t i = 0; i < dealt.size(); ++i) {
    (*baseUnits.At(i + 1)).*list = std::move(dealt[i]);
  }
}

bool FirstIs(const BaseUnits& baseUnits, std::string_view baseUnit1) {
  return baseUnits.Count() > 0 && baseUnits.At(1)->baseUnit1 == baseUnit1;
}

}  // namespace

BaseUnits BuildBaseUnits(const Platform& platform, std::shared_ptr<BaseUnit> first, const Accessories& accessories,
                         NamedBlobs* named) {
  BaseUnits baseUnits;
  baseUnits.Append(std::move(first));
  for (const auto& accessory : accessories) {
    if (IsFurtherBaseUnit(*accessory)) {
      baseUnits.Append(BaseUnitFromAccessory(platform, *accessory, named));
    } else if (HasStoredDataOfItsOwn(*accessory)) {
      baseUnits.Append(BaseUnitFromAccessory(platform, *accessory, named));
      accessory->baseUnit1 = kMadeIntoBaseUnit;
    }
  }
  return baseUnits;
}

std::shared_ptr<BaseUnit> BaseUnitFromAccessory(const Platform& platform, const Accessory& accessory,
                                                NamedBlobs* named) {
  auto unit = std::make_shared<BaseUnit>();
  unit->description = accessory.description;
  unit->partNumber = accessory.partNumber;
  unit->quantity = accessory.quantity;
  unit->masterPrice = accessory.masterPrice;
  unit->supplier = accessory.supplier;
  unit->typeOfSale = accessory.typeOfSale;
  unit->sapXml = ReadStoredTagText(platform, accessory.fileName, named).text;
  if (!unit->sapXml.empty()) {
    if (const xml::Node sapData = xml::Document::Parse(unit->sapXml).First("descendant::SAPDATA")) {
      unit->sapXml = sapData.Xml();
    }
  }
  unit->attributes = accessory.attributes;
  unit->baseUnit1 = accessory.baseUnit1;
  unit->baseUnit2 = accessory.baseUnit2;
  return unit;
}

Accessories SelectLooseAccessories(const Accessories& accessories) {
  Accessories loose;
  for (const auto& accessory : accessories) {
    if (accessory->baseUnit1.empty()) {
      loose.Append(accessory);
    }
  }
  return loose;
}

void AttachAccessories(const BaseUnits& baseUnits, const Accessories& accessories) {
  const bool firstTakesAll = FirstIs(baseUnits, "BU2");
  DealOut(accessories, baseUnits, &BaseUnit::accessories, [&](double) { return firstTakesAll; });
}

void AttachWarranties(const BaseUnits& baseUnits, const Warranties& warranties) {
  const bool firstTakesAll = FirstIs(baseUnits, "BU2");
  const bool firstTakesUnnumbered = FirstIs(baseUnits, "BU1");
  DealOut(warranties, baseUnits, &BaseUnit::warranties,
          [&](double number) { return firstTakesAll || (firstTakesUnnumbered && number == 0); });
}

}  // namespace parvex
