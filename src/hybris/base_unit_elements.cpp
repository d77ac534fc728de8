#include "hybris/base_unit_elements.h"

#include <cmath>
#include <limits>

#include "formats/text/text.h"
#include "hybris/hybris_document.h"
#include "hybris/leading_number.h"
#include "hybris/selection_section.h"
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

void AppendBaseUnits(const Platform& platform, const xml::Document& document, std::int32_t tagIndex,
                     std::string_view qbOutputFile, const xml::Node& baseUnitsElement, const BaseUnits& baseUnits,
                     std::string_view familyCode) {
  Counter16 sequence("base units");
  for (const auto& unit : baseUnits) {
    sequence.Advance();
    const BaseUnitElement element = NewBaseUnitElement(document, baseUnitsElement);
    AddDescription(document, element.extendedDescriptions, unit->description);
    if (sequence.Value() == 1) {
      AddExtendedDescriptions(platform, document, tagIndex, qbOutputFile, element.extendedDescriptions);
    }
    FillBaseUnit(element, *unit, sequence.Value(), familyCode);

    Counter16 components("components of one base unit");
    AppendAccessoryComponents(document, unit->accessories, element.components, components);
    AppendWarrantyComponents(document, element.components, unit->warranties, components);
    AppendBlanketComponents(platform, document, tagIndex, qbOutputFile, element.components, components);
    SetSapXml(document, element.sapXml, unit->sapXml);
  }
}

BaseUnitElement NewBaseUnitElement(const xml::Document& document, const xml::Node& baseUnitsElement) {
  BaseUnitElement unit;
  unit.element = AppendElement(document, baseUnitsElement, "BASEUNIT");
  unit.extendedDescriptions = AppendElement(document, unit.element, "EXTENDED_DESCRIPTIONS");
  const xml::Node attributes = AppendElement(document, unit.element, "ATTRIBUTES_LIST");
  AppendElement(document, attributes, "DELIVERYGROUP");
  unit.supplier = AppendElement(document, attributes, "SUPPLIER");
  unit.typeOfSale = AppendElement(document, attributes, "TYPEOFSALE");
  unit.ton = AppendElement(document, attributes, "TON");
  unit.cfm = AppendElement(document, attributes, "CFM");
  for (std::size_t i = 0; i < unit.attributes.size(); ++i) {
    unit.attributes[i] = AppendElement(document, attributes, "ATTRIBUTE" + std::to_string(i + 1));
  }
  unit.preOrderReq = AppendElement(document, attributes, "PREORDERREQ");
  unit.eto = AppendElement(document, attributes, "ETO");
  unit.components = AppendElement(document, unit.element, "COMPONENTS");
  unit.sapXml = AppendElement(document, unit.element, "SAP_XML");
  return unit;
}

ComponentElement NewComponentElement(const xml::Document& document, const xml::Node& componentsElement,
                                     Counter16& sequenceCounter) {
  const std::string sequence = std::to_string(sequenceCounter.Advance());
  ComponentElement component;
  component.element = AppendElement(document, componentsElement, "COMPONENT");
  component.element.SetAttribute("SEQUENCE", sequence);
  component.description = AppendElement(document, component.element, "DESCRIPTION");
  const xml::Node attributes = AppendElement(document, component.element, "ATTRIBUTES_LIST");
  AppendElement(document, attributes, "DELIVERYGROUP");
  component.supplier = AppendElement(document, attributes, "SUPPLIER");
  component.typeOfSale = AppendElement(document, attributes, "TYPEOFSALE");
  component.preOrderReq = AppendElement(document, attributes, "PREORDERREQ");
  return component;
}

void AddDescription(const xml::Document& document, const xml::Node& parentElement, std::string_view text) {
  AppendElement(document, parentElement, "DESCRIPTION").SetText(text);
}

void AddExtendedDescriptions(const Platform& platform, const xml::Document& document, std::int32_t tagIndex,
                             std::string_view qbOutputFile, const xml::Node& extendedDescriptionsElement) {
  SelectionSection section(platform, qbOutputFile, "Extended Description", tagIndex);
  section.ForEach("Description:", "extended description lines", [&](std::int16_t, const std::string& line) {
    AddDescription(document, extendedDescriptionsElement, line);
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

void AppendAccessoryComponents(const xml::Document& document, const Accessories& accessories,
                               const xml::Node& componentsElement, Counter16& sequenceCounter) {
  for (const auto& accessory : accessories) {
    const ComponentElement component = NewComponentElement(document, componentsElement, sequenceCounter);
    SetComponentAttributes(component, "ACCESSORY", accessory->partNumber, accessory->quantity, accessory->masterPrice);
    component.description.SetText(accessory->description);
    component.supplier.SetText(accessory->supplier);
    component.typeOfSale.SetText(accessory->typeOfSale);
    component.preOrderReq.SetText(accessory->preOrder.Text());
  }
}

void AppendWarrantyComponents(const xml::Document& document, const xml::Node& componentsElement,
                              const Warranties& warranties, Counter16& sequenceCounter) {
  for (const auto& warranty : warranties) {
    const ComponentElement component = NewComponentElement(document, componentsElement, sequenceCounter);
    SetComponentAttributes(component, "WARRANTY", warranty->name, warranty->quantity, warranty->masterPrice);
    component.description.SetText(warranty->description);
    component.supplier.SetText(kWarrantySupplier);
    component.preOrderReq.SetText(warranty->preOrder.Text());
  }
}

void AppendBlanketComponents(const Platform& platform, const xml::Document& document, std::int32_t tagIndex,
                             std::string_view qbOutputFile, const xml::Node& componentsElement,
                             Counter16& sequenceCounter) {
  SelectionSection section(platform, qbOutputFile, "BlanketQuoteControl", tagIndex);
  section.ForEach("PartNumber:", "blanket items", [&](std::int16_t number, const std::string& partNumber) {
    const ComponentElement component = NewComponentElement(document, componentsElement, sequenceCounter);
    const std::string quantity = section.Numbered("Quantity:", number);
    const std::string price = section.Numbered("MasterPrice:", number);
    SetComponentAttributes(component, "BLANKETETO", partNumber, quantity, price);
    component.description.SetText(section.Numbered("Description:", number));
    component.supplier.SetText(section.Numbered("Supplier:", number));
    component.typeOfSale.SetText(section.Numbered("TypeOfSale:", number));
    // No colon in this one, deliberately: the quote builder writes it so.
    component.preOrderReq.SetText(section.Numbered("preorderreq", number));
  });
}

void SetSapXml(const xml::Document& document, const xml::Node& sapXmlElement, std::string_view sapXmlText) {
  if (!sapXmlText.empty()) {
    sapXmlElement.Append(document.CreateCData(sapXmlText));
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
