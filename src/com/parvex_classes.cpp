#include "com/parvex_classes.h"

#include <array>

#include "com/bin_encoder_object.h"
#include "com/data_objects.h"
#include "com/legacy_orla_pull_object.h"

namespace parvex::com {
namespace {

template <typename Object>
windows::ComPointer<IUnknown> Make() {
  return windows::MakeCom<Object>().template As<IUnknown>(IID_IUnknown);
}

}  // namespace

std::span<const ComClass> ParvexClasses() {
  static const std::array kClasses = {
      ComClass{CLSID_LegacyORLAPull, L"Parvex.LegacyORLAPull", L"Parvex command interface", Make<LegacyORLAPullObject>},
      ComClass{CLSID_TagCls, L"Parvex.TagCls", L"Parvex tag", Make<TagClsObject>},
      ComClass{CLSID_BaseUnitCls, L"Parvex.BaseUnitCls", L"Parvex base unit", Make<BaseUnitClsObject>},
      ComClass{CLSID_AccessoryCls, L"Parvex.AccessoryCls", L"Parvex accessory", Make<AccessoryClsObject>},
      ComClass{CLSID_WarrantyCls, L"Parvex.WarrantyCls", L"Parvex warranty", Make<WarrantyClsObject>},
      ComClass{CLSID_cBinEncoder, L"Parvex.cBinEncoder", L"Parvex Base64 codec", Make<BinEncoderObject>}};
  return kClasses;
}

}  // namespace parvex::com
