#pragma once

#include <string>
#include <string_view>

#include "hybris/unit_model.h"

namespace parvex::com {

// What the public data classes hold, in the published spellings and shapes. Nothing here is Windows' own, so that it is
// tested natively. Properties are texts, neither validated nor trimmed, and stand in the order in which they are
// published, which must stay; the order of LoadAnInstance's parameters is each class's own. The arrays of a base unit
// are the COM object's, since they hold other objects.

/// A file name that reads as an empty text whatever was stored. Deliberate: hosts have never been given a base unit's
/// file, only those of accessories.
class HiddenFileName {
 public:
  HiddenFileName& operator=(std::string_view value) {
    stored_ = value;
    return *this;
  }
  std::string Text() const { return {}; }
  /// What was stored.
  const std::string& Field() const { return stored_; }

 private:
  std::string stored_;
};

/// What a host reads of a property.
inline std::string TextOfProperty(const std::string& property) { return property; }
inline std::string TextOfProperty(const PreOrderFlag& property) { return property.Text(); }
inline std::string TextOfProperty(const HiddenFileName& property) { return property.Text(); }

struct TagData {
  std::string PartNumber;
  std::string PDSG;
  std::string MarkFor;
  std::string BuildVersion;
  std::string LegacyTagId;
  std::string BlobFileName;
  std::string TagVersion;
};

struct AccessoryData {
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
  std::string BaseUnit1;
  std::string BaseUnit2;
  std::string FileName;

  /// Sets all but preorderreq and FileName, which keep what they hold.
  void LoadAnInstance(std::string_view part, std::string_view desc, std::string_view price, std::string_view quant,
                      std::string_view tos, std::string_view mrkfor1, std::string_view mrkfor2,
                      std::string_view mrkfor3, std::string_view mrkfor4, std::string_view supp,
                      std::string_view attrib1, std::string_view attrib2, std::string_view attrib3,
                      std::string_view attrib4, std::string_view attrib5, std::string_view bu1, std::string_view bu2) {
    PartNumber = part;
    Description = desc;
    MasterPrice = price;
    Quantity = quant;
    TypeOfSale = tos;
    MarkFor = mrkfor1;
    MarkFor2 = mrkfor2;
    MarkFor3 = mrkfor3;
    MarkFor4 = mrkfor4;
    Supplier = supp;
    Attribute1 = attrib1;
    Attribute2 = attrib2;
    Attribute3 = attrib3;
    Attribute4 = attrib4;
    Attribute5 = attrib5;
    BaseUnit1 = bu1;
    BaseUnit2 = bu2;
  }
};

struct WarrantyData {
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
                      std::string_view mrkfor, std::string_view bu1, std::string_view bu2) {
    Name = nameStr;
    Quantity = quant;
    Description = desc;
    MasterPrice = price;
    MarkFor = mrkfor;
    BaseUnit1 = bu1;
    BaseUnit2 = bu2;
  }
};

struct BaseUnitData {
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
  std::string preorderreq;  ///< as given: deliberately without the conversion that accessories and warranties have
  std::string ETO;
  std::string ETODescription;
  std::string Attribute1;
  std::string Attribute2;
  std::string Attribute3;
  std::string Attribute4;
  std::string Attribute5;
  std::string SAPXml;

  /// Sets all but the five attributes, which keep what they hold.
  void LoadAnInstance(std::string_view pdsgVal, std::string_view desc, std::string_view part, std::string_view price,
                      std::string_view quant, std::string_view mrkfor1, std::string_view mrkfor2,
                      std::string_view mrkfor3, std::string_view mrkfor4, std::string_view bu1, std::string_view bu2,
                      std::string_view supp, std::string_view tos, std::string_view tonVal, std::string_view cfmVal,
                      std::string_view fnVal, std::string_view poreq, std::string_view etoval,
                      std::string_view etoDescVal, std::string_view sap) {
    PDSG = pdsgVal;
    Description = desc;
    PartNumber = part;
    MasterPrice = price;
    Quantity = quant;
    MarkFor = mrkfor1;
    MarkFor2 = mrkfor2;
    MarkFor3 = mrkfor3;
    MarkFor4 = mrkfor4;
    BaseUnit1 = bu1;
    BaseUnit2 = bu2;
    Supplier = supp;
    TypeOfSale = tos;
    Ton = tonVal;
    CFM = cfmVal;
    FileName = fnVal;
    preorderreq = poreq;
    ETO = etoval;
    ETODescription = etoDescVal;
    SAPXml = sap;
  }
};

}  // namespace parvex::com
