#pragma once

#include <array>
#include <string>
#include <string_view>

#include "hybris/counter16.h"
#include "hybris/selected_tag.h"
#include "hybris/unit_model.h"
#include "seams/xml.h"

namespace parvex {

// What stands under a tag's BASEUNITS:
//
//   BASEUNIT             PARTNUMBER, ID, QUANTITY, PRICE, SEQUENCE
//     EXTENDED_DESCRIPTIONS    DESCRIPTION, any number
//     ATTRIBUTES_LIST          DELIVERYGROUP (nobody fills it), SUPPLIER, TYPEOFSALE, TON, CFM, ATTRIBUTE1
//                              (which may carry TYPE) to ATTRIBUTE5, PREORDERREQ, ETO with ETODESCRIPTION
//     COMPONENTS
//       COMPONENT              SEQUENCE, TYPE, PARTNUMBER, QUANTITY, PRICE
//         DESCRIPTION
//         ATTRIBUTES_LIST      DELIVERYGROUP (nobody fills it), SUPPLIER, TYPEOFSALE, PREORDERREQ
//     SAP_XML                  at most one CDATA section
//
// Values are written as they come, nothing is trimmed. Texts that the unit model does not carry are read from the quote
// builder's output file; a file, section or key that is missing there reads as empty and ends its list. More than 32767
// base units, components of one base unit, extended description lines or blanket items are the overflow error (6).

/// A BASEUNIT and those of its elements that are filled later, kept so that nobody has to select them again: looking
/// one up would cost more with every component of the unit.
struct BaseUnitElement {
  xml::Node element;
  xml::Node extendedDescriptions;
  xml::Node supplier;
  xml::Node typeOfSale;
  xml::Node ton;
  xml::Node cfm;
  std::array<xml::Node, 5> attributes;  ///< ATTRIBUTE1 to ATTRIBUTE5
  xml::Node preOrderReq;
  xml::Node eto;
  xml::Node components;
  xml::Node sapXml;
};

struct ComponentElement {
  xml::Node element;
  xml::Node description;
  xml::Node supplier;
  xml::Node typeOfSale;
  xml::Node preOrderReq;
};

/// Room for the blanket items of one document. Each base unit has all of its tag's, so a small selection may stand for
/// gigabytes of them.
class BlanketRoom {
 public:
  static constexpr std::size_t kMost = 128u << 20;

  /// Takes some bytes of it. Overflow (6) when there is no room left.
  void Take(std::size_t bytes);
  /// The same error when that much more could not be taken.
  void Expect(std::uint64_t bytes) const;
  std::size_t Taken() const { return taken_; }

 private:
  std::size_t taken_ = 0;
};

/// Writes one BASEUNIT for each base unit of the tag. Every base unit gets the tag's blanket items, but only the first
/// one the tag's extended description; both are deliberate.
void AppendBaseUnits(const SelectedTag& tag, const xml::Node& baseUnitsElement, const BaseUnits& baseUnits,
                     BlanketRoom& blanketRoom);
/// The same for a tag that has a document of its own.
inline void AppendBaseUnits(const SelectedTag& tag, const xml::Node& baseUnitsElement, const BaseUnits& baseUnits) {
  BlanketRoom blanketRoom;
  AppendBaseUnits(tag, baseUnitsElement, baseUnits, blanketRoom);
}

/// Appends a BASEUNIT with its empty children.
BaseUnitElement NewBaseUnitElement(const xml::Node& baseUnitsElement);

/// Appends a COMPONENT with its empty children and the next number as its SEQUENCE.
ComponentElement NewComponentElement(const xml::Node& componentsElement, Counter16& sequenceCounter);

/// Appends a DESCRIPTION for each line of the tag's extended description.
void AddExtendedDescriptions(const SelectedTag& tag, const xml::Node& extendedDescriptionsElement);

/// Fills ATTRIBUTE`slot` (1 to 5), with a TYPE where AttributeTypeFor names one.
void SetAttributeSlot(const BaseUnitElement& baseUnit, std::string_view familyCode, int slot, std::string_view value);

/// "REPORTINFO" for a filled slot 1 of the family "FCB", empty for everything else.
std::string_view AttributeTypeFor(std::string_view familyCode, int slot, std::string_view value);

void AppendAccessoryComponents(const xml::Node& componentsElement, const Accessories& accessories,
                               Counter16& sequenceCounter);

void AppendWarrantyComponents(const xml::Node& componentsElement, const Warranties& warranties,
                              Counter16& sequenceCounter);

/// Appends the tag's blanket engineered-to-order items.
void AppendBlanketComponents(const SelectedTag& tag, const xml::Node& componentsElement, Counter16& sequenceCounter,
                             BlanketRoom& room);

/// Sets the text in as one CDATA section, unchanged; nothing for an empty text.
void SetSapXml(const xml::Node& sapXmlElement, std::string_view sapXmlText);

/// The whole number nearest to the number that `value` begins with, halves upwards: "1234.5" gives "1235", "-2.5" gives
/// "-2". Empty for an empty text; a number outside 32 bits is the overflow error (6).
std::string RoundToWhole(std::string_view value);

}  // namespace parvex
