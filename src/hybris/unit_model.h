#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "hybris/one_based_list.h"

namespace parvex {

// One legacy tag's content on its way from the legacy files to the Hybris document: public data classes whose
// properties are texts. Nothing is validated or trimmed. The order of the members is the order in which the properties
// are published and must stay; the order of LoadAnInstance's parameters is its own.

/// Whether a line was ordered ahead. Takes the legacy side's "Y" and "N" as "1" and "0", exactly those two: every other
/// text, "y" and "n" included, stays as it is.
class PreOrderFlag {
 public:
  PreOrderFlag& operator=(std::string_view value);
  operator const std::string&() const { return stored_; }
  const std::string& Text() const { return stored_; }

 private:
  std::string stored_;
};

/// The file name of a base unit, which reads as an empty text whatever was stored. Deliberate: hosts have never been
/// given a base unit's file, only those of accessories.
class HiddenFileName {
 public:
  HiddenFileName& operator=(std::string_view value);
  operator std::string() const { return {}; }
  /// What was stored.
  const std::string& Field() const { return stored_; }

 private:
  std::string stored_;
};

class AccessoryCls {
 public:
  PreOrderFlag preorderreq;
  std::string PartNumber;
  std::string Description;
  std::string MasterPrice;
  std::string Quantity;
  std::string TypeOfSale;
  std::string MarkFor;
  std::string MarkFor2;
  std::string MarkFor3;
  std::string MarkFor4;
  std::string Supplier;
  std::string Attribute1;
  std::string Attribute2;
  std::string Attribute3;
  std::string Attribute4;
  std::string Attribute5;
  std::string BaseUnit1;  ///< "BU" and the number of the base unit that the line makes; empty for a loose accessory
  std::string BaseUnit2;  ///< four characters and the number of the base unit that the line belongs to
  std::string FileName;   ///< stored data of its own

  /// Sets all but preorderreq and FileName, which keep what they hold.
  void LoadAnInstance(std::string_view part, std::string_view desc, std::string_view price, std::string_view quant,
                      std::string_view tos, std::string_view mrkfor1, std::string_view mrkfor2,
                      std::string_view mrkfor3, std::string_view mrkfor4, std::string_view supp,
                      std::string_view attrib1, std::string_view attrib2, std::string_view attrib3,
                      std::string_view attrib4, std::string_view attrib5, std::string_view bu1, std::string_view bu2);
};

class WarrantyCls {
 public:
  PreOrderFlag preorderreq;
  std::string Name;
  std::string Quantity;
  std::string Description;
  std::string MasterPrice;
  std::string MarkFor;
  std::string BaseUnit1;
  std::string BaseUnit2;

  /// Sets all but preorderreq, which keeps what it holds.
  void LoadAnInstance(std::string_view nameStr, std::string_view quant, std::string_view desc, std::string_view price,
                      std::string_view mrkfor, std::string_view bu1, std::string_view bu2);
};

// Items are shared: an accessory may stand in the lists of several base units, and a copied list holds the same
// objects.
using Accessories = OneBasedList<std::shared_ptr<AccessoryCls>>;
using Warranties = OneBasedList<std::shared_ptr<WarrantyCls>>;

class BaseUnitCls {
 public:
  std::string PDSG;
  std::string Description;
  std::string PartNumber;
  std::string MasterPrice;
  std::string Quantity;
  std::string MarkFor;
  std::string MarkFor2;
  std::string MarkFor3;
  std::string MarkFor4;
  std::string BaseUnit1;
  std::string BaseUnit2;
  std::string Supplier;
  std::string TypeOfSale;
  std::string Ton;
  std::string CFM;
  HiddenFileName FileName;
  std::string
      preorderreq;  ///< stored as given: deliberately without the conversion that accessories and warranties have
  std::string ETO;
  std::string ETODescription;
  std::string Attribute1;
  std::string Attribute2;
  std::string Attribute3;
  std::string Attribute4;
  std::string Attribute5;
  std::string SAPXml;
  parvex::Accessories Accessories;
  parvex::Warranties Warranties;

  /// Sets all but the five attributes and the two lists, which keep what they hold.
  void LoadAnInstance(std::string_view pdsgVal, std::string_view desc, std::string_view part, std::string_view price,
                      std::string_view quant, std::string_view mrkfor1, std::string_view mrkfor2,
                      std::string_view mrkfor3, std::string_view mrkfor4, std::string_view bu1, std::string_view bu2,
                      std::string_view supp, std::string_view tos, std::string_view tonVal, std::string_view cfmVal,
                      std::string_view fnVal, std::string_view poreq, std::string_view etoval,
                      std::string_view etoDescVal, std::string_view sap);
};

using BaseUnits = OneBasedList<std::shared_ptr<BaseUnitCls>>;

class TagCls {
 public:
  std::string PartNumber;
  std::string PDSG;
  std::string MarkFor;
  std::string BuildVersion;
  std::string LegacyTagId;
  std::string BlobFileName;
  std::string TagVersion;
};

using Tags = OneBasedList<std::shared_ptr<TagCls>>;

}  // namespace parvex
