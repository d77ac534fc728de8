#include "tests/com/public_classes.h"

#include <oaidl.h>

#include "parvex_idl.h"

namespace parvex::test {

const std::vector<PublicClass>& PublicClasses() {
  static const std::vector<PublicClass> kClasses = {
      {"LegacyORLAPull", __uuidof(LegacyORLAPull), __uuidof(ILegacyORLAPull), {}, {}, {"Pull", "PullNGORLA"}},
      {"TagCls",
       __uuidof(TagCls),
       __uuidof(ITagCls),
       {"PartNumber", "PDSG", "MarkFor", "BuildVersion", "LegacyTagId", "BlobFileName", "TagVersion"},
       {},
       {}},
      {"AccessoryCls",
       __uuidof(AccessoryCls),
       __uuidof(IAccessoryCls),
       {"preorderreq", "PartNumber", "Description", "MasterPrice", "Quantity", "TypeOfSale", "MarkFor", "MarkFor2",
        "MarkFor3", "MarkFor4", "Supplier", "Attribute1", "Attribute2", "Attribute3", "Attribute4", "Attribute5",
        "BaseUnit1", "BaseUnit2", "FileName"},
       {},
       {"LoadAnInstance"}},
      {"WarrantyCls",
       __uuidof(WarrantyCls),
       __uuidof(IWarrantyCls),
       {"preorderreq", "Name", "Quantity", "Description", "MasterPrice", "MarkFor", "BaseUnit1", "BaseUnit2"},
       {},
       {"LoadAnInstance"}},
      {"BaseUnitCls",
       __uuidof(BaseUnitCls),
       __uuidof(IBaseUnitCls),
       {"PDSG",       "Description", "PartNumber",  "MasterPrice", "Quantity",       "MarkFor",    "MarkFor2",
        "MarkFor3",   "MarkFor4",    "BaseUnit1",   "BaseUnit2",   "Supplier",       "TypeOfSale", "Ton",
        "CFM",        "FileName",    "preorderreq", "ETO",         "ETODescription", "Attribute1", "Attribute2",
        "Attribute3", "Attribute4",  "Attribute5",  "SAPXml"},
       {"Accessories", "Warranties"},
       {"LoadAnInstance"}},
      {"cBinEncoder",
       __uuidof(cBinEncoder),
       __uuidof(IcBinEncoder),
       {},
       {},
       {"Decode", "DecodeArr", "DecodeToFile", "Encode", "EncodeArr", "EncodeFromFile"}}};
  return kClasses;
}

std::vector<PublicClass> DataClasses() {
  std::vector<PublicClass> classes;
  for (const PublicClass& c : PublicClasses()) {
    if (!c.texts.empty()) {
      classes.push_back(c);
    }
  }
  return classes;
}

}  // namespace parvex::test
