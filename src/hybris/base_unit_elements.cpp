#include "hybris/base_unit_elements.h"

#include <cmath>
#include <limits>

#include "formats/text/text.h"
#include "hybris/leading_number.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

constexpr std::string_view kWarrantySupplier = "Korvane";

/// What a part number begins with; a part number too short to tell is of an unknown kind.
std::string_view BaseUnitId(std::string_view partNumber) {
  return LengthInUnits(partNumber) > 2 ? FirstUnits(partNumber, 3) : "UNK";
}

/// Only "Y" is a yes; an empty value leaves the element empty.
void SetYesNo(const xml::Node& element, std::string_view value) {
  if (!value.empty()) {
    element.SetText(value == "Y" ? "1" : "0");
  }
}

/// A base unit's own properties.
void FillBaseUnit(const BaseUnitElement& to, const BaseUnit& unit, std::int16_t sequence, std::string_view familyCode) {
  to.element.SetAttribute("PARTNUMBER", unit.partNumber);
  to.element.SetAttribute("ID", BaseUnitId(unit.partNumber));
  to.element.SetAttribute("QUANTITY", unit.quantity);
  to.element.SetAttribute("PRICE", unit.masterPrice);
  to.element.SetAttribute("SEQUENCE", std::to_string(sequence));
  to.supplier.SetText(unit.supplier);
  to.typeOfSale.SetText(unit.typeOfSale);
  to.ton.SetText(unit.ton);
  to.cfm.SetText(RoundToWhole(unit.cfm));
  for (int slot = 1; slot <= static_cast<int>(unit.attributes.size()); ++slot) {
    SetAttributeSlot(to, familyCode, slot, unit.attributes[static_cast<std::size_t>(slot - 1)]);
  }
  SetYesNo(to.preOrderReq, unit.preOrder);
  SetYesNo(to.eto, unit.eto);
  to.eto.SetAttribute("ETODESCRIPTION", unit.etoDescription);
}

void SetComponentAttributes(const ComponentElement& component, std::string_view type, std::string_view partNumber,
                            std::string_view quantity, std::string_view price) {
  component.element.SetAttribute("TYPE", type);
  component.element.SetAttribute("PARTNUMBER", partNumber);
  component.element.SetAttribute("QUANTITY", quantity);
  component.element.SetAttribute("PRICE", price);
}

}  // namespace

void BlanketRoom::Take(std::size_t bytes) {
  Expect(bytes);
  taken_ += bytes;
}

void BlanketRoom::Expect(std::uint64_t bytes) const {
  if (taken_ + bytes > kMost) {
    throw MakeRuntimeError(RuntimeError::Overflow,
                           "the blanket items of all base units take more than " + std::to_string(kMost >> 20) + " MB");
  }
}

void AppendBaseUnits(const SelectedTag& tag, const xml::Node& baseUnitsElement, const BaseUnits& baseUnits,
                     BlanketRoom& blanketRoom) {
  Counter16 sequence("base units");
  for (const auto& unit : baseUnits) {
    sequence.Advance();
    const BaseUnitElement element = NewBaseUnitElement(baseUnitsElement);
    xml::AppendElement(element.extendedDescriptions, "DESCRIPTION", unit->description);
    if (sequence.Value() == 1) {
      AddExtendedDescriptions(tag, element.extendedDescriptions);
    }
    FillBaseUnit(element, *unit, sequence.Value(), tag.FamilyCode());

    Counter16 components("components of one base unit");
    AppendAccessoryComponents(element.components, unit->accessories, components);
    AppendWarrantyComponents(element.components, unit->warranties, components);
    const std::size_t taken = blanketRoom.Taken();
    AppendBlanketComponents(tag, element.components, components, blanketRoom);
    if (sequence.Value() == 1) {
      blanketRoom.Expect(std::uint64_t{baseUnits.Count() - 1} * (blanketRoom.Taken() - taken));
    }
    element.components.Fold();
    SetSapXml(element.sapXml, unit->sapXml);
  }
}

BaseUnitElement NewBaseUnitElement(const xml::Node& baseUnitsElement) {
  BaseUnitElement unit;
  unit.element = xml::AppendElement(baseUnitsElement, "BASEUNIT");
  unit.extendedDescriptions = xml::AppendElement(unit.element, "EXTENDED_DESCRIPTIONS");
  const xml::Node attributes = xml::AppendElement(unit.element, "ATTRIBUTES_LIST");
  xml::AppendElement(attributes, "DELIVERYGROUP");
  unit.supplier = xml::AppendElement(attributes, "SUPPLIER");
  unit.typeOfSale = xml::AppendElement(attributes, "TYPEOFSALE");
  unit.ton = xml::AppendElement(attributes, "TON");
  unit.cfm = xml::AppendElement(attributes, "CFM");
  for (std::size_t i = 0; i < unit.attributes.size(); ++i) {
    unit.attributes[i] = xml::AppendElement(attributes, "ATTRIBUTE" + std::to_string(i + 1));
  }
  unit.preOrderReq = xml::AppendElement(attributes, "PREORDERREQ");
  unit.eto = xml::AppendElement(attributes, "ETO");
  unit.components = xml::AppendElement(unit.element, "COMPONENTS");
  unit.sapXml = xml::AppendElement(unit.element, "SAP_XML");
  return unit;
}

ComponentElement NewComponentElement(const xml::Node& componentsElement, Counter16& sequenceCounter) {
  const std::string sequence = std::to_string(sequenceCounter.Advance());
  ComponentElement component;
  component.element = xml::AppendElement(componentsElement, "COMPONENT");
  component.element.SetAttribute("SEQUENCE", sequence);
  component.description = xml::AppendElement(component.element, "DESCRIPTION");
  const xml::Node attributes = xml::AppendElement(component.element, "ATTRIBUTES_LIST");
  xml::AppendElement(attributes, "DELIVERYGROUP");
  component.supplier = xml::AppendElement(attributes, "SUPPLIER");
  component.typeOfSale = xml::AppendElement(attributes, "TYPEOFSALE");
  component.preOrderReq = xml::AppendElement(attributes, "PREORDERREQ");
  return component;
}

void AddExtendedDescriptions(const SelectedTag& tag, const xml::Node& extendedDescriptionsElement) {
  SelectionSection section = tag.Section("Extended Description");
  section.ForEach("Description:", "extended description lines", [&](std::int16_t, const std::string& line) {
    xml::AppendElement(extendedDescriptionsElement, "DESCRIPTION", line);
  });
}

void SetAttributeSlot(const BaseUnitElement& baseUnit, std::string_view familyCode, int slot, std::string_view value) {
  const xml::Node& attribute = baseUnit.attributes.at(static_cast<std::size_t>(slot - 1));
  attribute.SetText(value);
  const std::string_view type = AttributeTypeFor(familyCode, slot, value);
  if (!type.empty()) {
    attribute.SetAttribute("TYPE", type);
  }
}

std::string_view AttributeTypeFor(std::string_view familyCode, int slot, std::string_view value) {
  return familyCode == "FCB" && !value.empty() && slot == 1 ? "REPORTINFO" : "";
}

void AppendAccessoryComponents(const xml::Node& componentsElement, const Accessories& accessories,
                               Counter16& sequenceCounter) {
  for (const auto& accessory : accessories) {
    const ComponentElement component = NewComponentElement(componentsElement, sequenceCounter);
    SetComponentAttributes(component, "ACCESSORY", accessory->partNumber, accessory->quantity, accessory->masterPrice);
    component.description.SetText(accessory->description);
    component.supplier.SetText(accessory->supplier);
    component.typeOfSale.SetText(accessory->typeOfSale);
    component.preOrderReq.SetText(accessory->preOrder.Text());
  }
}

void AppendWarrantyComponents(const xml::Node& componentsElement, const Warranties& warranties,
                              Counter16& sequenceCounter) {
  for (const auto& warranty : warranties) {
    const ComponentElement component = NewComponentElement(componentsElement, sequenceCounter);
    SetComponentAttributes(component, "WARRANTY", warranty->name, warranty->quantity, warranty->masterPrice);
    component.description.SetText(warranty->description);
    component.supplier.SetText(kWarrantySupplier);
    component.preOrderReq.SetText(warranty->preOrder.Text());
  }
}

void AppendBlanketComponents(const SelectedTag& tag, const xml::Node& componentsElement, Counter16& sequenceCounter,
                             BlanketRoom& room) {
  SelectionSection section = tag.Section("BlanketQuoteControl");
  section.ForEach("PartNumber:", "blanket items", [&](std::int16_t number, const std::string& partNumber) {
    const ComponentElement component = NewComponentElement(componentsElement, sequenceCounter);
    const std::string quantity = section.Numbered("Quantity:", number);
    const std::string price = section.Numbered("MasterPrice:", number);
    const std::string description = section.Numbered("Description:", number);
    const std::string supplier = section.Numbered("Supplier:", number);
    const std::string typeOfSale = section.Numbered("TypeOfSale:", number);
    // No colon in this one, deliberately: the quote builder writes it so.
    const std::string preOrder = section.Numbered("preorderreq", number);
    constexpr std::size_t kNodes = 1'600;
    room.Take(kNodes + partNumber.size() + quantity.size() + price.size() + description.size() + supplier.size() +
              typeOfSale.size() + preOrder.size());
    SetComponentAttributes(component, "BLANKETETO", partNumber, quantity, price);
    component.description.SetText(description);
    component.supplier.SetText(supplier);
    component.typeOfSale.SetText(typeOfSale);
    component.preOrderReq.SetText(preOrder);
  });
}

void SetSapXml(const xml::Node& sapXmlElement, std::string_view sapXmlText) {
  if (!sapXmlText.empty()) {
    sapXmlElement.Append(sapXmlElement.Owner().CreateCData(sapXmlText));
  }
}

std::string RoundToWhole(std::string_view value) {
  if (value.empty()) {
    return {};
  }
  const double whole = std::floor(LeadingNumber(value) + 0.5);
  if (whole < std::numeric_limits<std::int32_t>::min() || whole > std::numeric_limits<std::int32_t>::max()) {
    throw MakeRuntimeError(RuntimeError::Overflow, "\"" + std::string(value) + "\" does not fit a 32-bit number");
  }
  return std::to_string(static_cast<std::int32_t>(whole));
}

}  // namespace parvex
