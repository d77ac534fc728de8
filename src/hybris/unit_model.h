#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "hybris/one_based_list.h"

namespace parvex {

// A unit on its way from the legacy files to the Hybris document. All values are texts; nothing is validated or
// trimmed.

/// Whether a line was ordered ahead. Takes the legacy side's "Y" and "N" as "1" and "0", exactly those two: every other
/// text, "y" and "n" included, stays as it is.
class PreOrderFlag {
 public:
  PreOrderFlag& operator=(std::string_view value);
  const std::string& Text() const { return text_; }

 private:
  std::string text_;
};

/// An accessory line of the selection.
struct Accessory {
  PreOrderFlag preOrder;
  std::string partNumber;
  std::string description;
  std::string masterPrice;
  std::string quantity;
  std::string typeOfSale;
  std::array<std::string, 4> markFor;
  std::string supplier;
  std::array<std::string, 5> attributes;
  std::string baseUnit1;  ///< "BU" and the number of the base unit that the line makes; empty for a loose accessory
  std::string baseUnit2;  ///< four characters and the number of the base unit that the line belongs to
  std::string fileName;   ///< stored data of its own
};

/// A warranty line of the selection.
struct Warranty {
  PreOrderFlag preOrder;
  std::string name;
  std::string quantity;
  std::string description;
  std::string masterPrice;
  std::string markFor;
  std::string baseUnit1;
  std::string baseUnit2;  ///< as an accessory's
};

// Items are shared: an accessory may stand in the lists of several base units, and a copied list holds the same
// objects.
using Accessories = OneBasedList<std::shared_ptr<Accessory>>;
using Warranties = OneBasedList<std::shared_ptr<Warranty>>;

struct BaseUnit {
  std::string description;
  std::string partNumber;
  std::string masterPrice;
  std::string quantity;
  std::string baseUnit1;
  std::string baseUnit2;
  std::string supplier;
  std::string typeOfSale;
  std::string ton;
  std::string cfm;
  std::string preOrder;  ///< as given: deliberately without the conversion that accessories and warranties have
  std::string eto;       ///< engineered to order
  std::string etoDescription;
  std::array<std::string, 5> attributes;
  std::string sapXml;
  Accessories accessories;
  Warranties warranties;
};

using BaseUnits = OneBasedList<std::shared_ptr<BaseUnit>>;

}  // namespace parvex
