#include "hybris/unit_model.h"

namespace parvex {

PreOrderFlag& PreOrderFlag::operator=(std::string_view value) {
  stored_ = value == "Y" ? "1" : value == "N" ? "0" : value;
  return *this;
}

HiddenFileName& HiddenFileName::operator=(std::string_view value) {
  stored_ = value;
  return *this;
}

void AccessoryCls::LoadAnInstance(std::string_view part, std::string_view desc, std::string_view price,
                                  std::string_view quant, std::string_view tos, std::string_view mrkfor1,
                                  std::string_view mrkfor2, std::string_view mrkfor3, std::string_view mrkfor4,
                                  std::string_view supp, std::string_view attrib1, std::string_view attrib2,
                                  std::string_view attrib3, std::string_view attrib4, std::string_view attrib5,
                                  std::string_view bu1, std::string_view bu2) {
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

void WarrantyCls::LoadAnInstance(std::string_view nameStr, std::string_view quant, std::string_view desc,
                                 std::string_view price, std::string_view mrkfor, std::string_view bu1,
                                 std::string_view bu2) {
  Name = nameStr;
  Quantity = quant;
  Description = desc;
  MasterPrice = price;
  MarkFor = mrkfor;
  BaseUnit1 = bu1;
  BaseUnit2 = bu2;
}

void BaseUnitCls::LoadAnInstance(std::string_view pdsgVal, std::string_view desc, std::string_view part,
                                 std::string_view price, std::string_view quant, std::string_view mrkfor1,
                                 std::string_view mrkfor2, std::string_view mrkfor3, std::string_view mrkfor4,
                                 std::string_view bu1, std::string_view bu2, std::string_view supp,
                                 std::string_view tos, std::string_view tonVal, std::string_view cfmVal,
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

}  // namespace parvex
