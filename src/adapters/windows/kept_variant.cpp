#include "adapters/windows/kept_variant.h"

#include <memory>
#include <utility>

#include "adapters/windows/com_pointer.h"
#include "adapters/windows/variant_values.h"
#include "seams/automation_error.h"
#include "seams/member_errors.h"

namespace parvex::windows {
namespace {

using automation::Argument;
using automation::Value;

class Kept : public automation::Object {
 public:
  explicit Kept(Variant variant) : variant_(std::move(variant)) {}

  std::string Name() const override { return "a kept value"; }
  Value Get(std::string_view member) override { throw automation::NoSuchMember(Name(), member); }
  void Put(std::string_view member, const Value&) override { throw automation::NoSuchMember(Name(), member); }
  Value Call(std::string_view member, std::span<Argument>) override { throw automation::NoSuchMember(Name(), member); }

  const VARIANT& Get() const { return variant_.Get(); }

 private:
  const Variant variant_;
};

}  // namespace

Value KeepVariant(const VARIANT& value, const std::string& name) {
  Variant read;
  if (FAILED(VariantCopyInd(read.Out(), const_cast<VARIANT*>(&value)))) {
    throw MakeRuntimeError(RuntimeError::TypeMismatch, name + ": a value that cannot be read");
  }
  switch (V_VT(&read.Get())) {
    case VT_EMPTY:
    case VT_BOOL:
    case VT_I4:
    case VT_R8:
    case VT_BSTR:
    case VT_DISPATCH:
      return FromVariant(read.Get(), name);
    default:
      return automation::ObjectRef(std::make_shared<Kept>(std::move(read)));
  }
}

const VARIANT* KeptVariant(const automation::Object& object) {
  const auto* kept = dynamic_cast<const Kept*>(&object);
  return kept == nullptr ? nullptr : &kept->Get();
}

}  // namespace parvex::windows
