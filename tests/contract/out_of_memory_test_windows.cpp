#include <gtest/gtest.h>

#include <stdexcept>

#include "adapters/windows/com_pointer.h"
#include "adapters/windows/exposed_object.h"
#include "adapters/windows/failures.h"
#include "adapters/windows/variant_values.h"
#include "seams/automation_error.h"
#include "tests/contract/failing_allocations_windows.h"

// Each allocation of a call into this system fails, and all behind it: the caller is told E_OUTOFMEMORY or gets its
// answer, and no exception leaves the call, which would end the host.

namespace parvex::windows {
namespace {

using automation::Argument;
using automation::KeyedItems;
using automation::Value;
using test::FailingAllocations;

constexpr const char* kLong = "a text that is longer than what a string keeps within itself, so that it is allocated";

class LongAnswers : public automation::Object {
 public:
  std::string Name() const override { return kLong; }
  Value Get(std::string_view member) override {
    if (member == "Fail") throw AutomationError(0x80040777u, kLong, kLong);
    return std::string(kLong);
  }
  void Put(std::string_view, const Value& value) override { kept_ = std::get<std::string>(value); }
  Value Call(std::string_view, std::span<Argument> arguments) override {
    for (Argument& argument : arguments) argument.value = std::string(kLong);
    return std::string(kLong);
  }

 private:
  std::string kept_;
};

// Calls until no allocation fails; every call before has to end in `E_OUTOFMEMORY`, or as the last one where it did
// without what failed.
template <typename Call>
void FailEach(const char* what, HRESULT expected, Call call) {
  for (std::size_t at = 1; at < 1000; ++at) {
    HRESULT result = S_OK;
    std::size_t asked = 0;
    {
      const FailingAllocations failing(at);
      result = call();
      asked = failing.Asked();
    }
    if (asked < at) {
      EXPECT_EQ(result, expected) << what;
      EXPECT_GT(at, 1u) << what << " allocates nothing: the test tests nothing";
      return;
    }
    EXPECT_TRUE(result == E_OUTOFMEMORY || result == expected) << what << " " << std::hex << result;
  }
  ADD_FAILURE() << what << " never ends";
}

HRESULT NumberOf(HRESULT result, const EXCEPINFO& exception) {
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  return result == DISP_E_EXCEPTION ? exception.scode : result;
}

HRESULT InvokeById(IDispatch* object, DISPID id, WORD kind, DISPPARAMS parameters) {
  Variant answer;
  EXCEPINFO exception = {};
  const HRESULT result =
      object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, answer.Out(), &exception, nullptr);
  return NumberOf(result, exception);
}

DISPID IdOf(IDispatch* object, const wchar_t* name) {
  auto* asked = const_cast<wchar_t*>(name);
  DISPID id = 0;
  EXPECT_EQ(object->GetIDsOfNames(IID_NULL, &asked, 1, LOCALE_USER_DEFAULT, &id), S_OK);
  return id;
}

TEST(OutOfMemory, AnExposedObjectTellsItAndNothingElseHappens) {
  const ComPointer<IDispatch> object = ExposeObject(std::make_shared<LongAnswers>());
  int names = 0;
  FailEach("GetIDsOfNames", S_OK, [&] {
    wchar_t name[40] = L"AMemberThatIsAskedForNow0000";
    name[24] = static_cast<wchar_t>(L'A' + names++);
    wchar_t* asked = name;
    DISPID id = 0;
    return object->GetIDsOfNames(IID_NULL, &asked, 1, LOCALE_USER_DEFAULT, &id);
  });
  const DISPID member = IdOf(object.Get(), L"Member");
  FailEach("a get", S_OK, [&] { return InvokeById(object.Get(), member, DISPATCH_PROPERTYGET, {}); });
  Bstr text(kLong);
  BSTR variable = text.Detach();
  VARIANTARG argument;
  V_VT(&argument) = VT_BYREF | VT_BSTR;
  V_BSTRREF(&argument) = &variable;
  FailEach("a call", S_OK, [&] {
    return InvokeById(object.Get(), member, DISPATCH_METHOD, {&argument, nullptr, 1, 0});
  });
  DISPID put = DISPID_PROPERTYPUT;
  FailEach("a put", S_OK, [&] {
    return InvokeById(object.Get(), member, DISPATCH_PROPERTYPUT, {&argument, &put, 1, 1});
  });
  SysFreeString(variable);
  const DISPID fail = IdOf(object.Get(), L"Fail");
  FailEach("a failing get", static_cast<HRESULT>(0x80040777),
           [&] { return InvokeById(object.Get(), fail, DISPATCH_PROPERTYGET, {}); });
}

class CollectionOutOfMemory : public testing::Test {
 protected:
  automation::CollectionRef items = std::make_shared<KeyedItems>(
      KeyedItems{{kLong, {std::string(kLong), false}}, {"second", {std::string(kLong), false}}});
  const Variant variant = ToVariant(items);
  IDispatch* object = V_DISPATCH(&variant.Get());
};

TEST_F(CollectionOutOfMemory, EveryMemberTellsIt) {
  const Bstr key(kLong);
  VARIANTARG byKey;
  V_VT(&byKey) = VT_BSTR;
  V_BSTR(&byKey) = key.Get();
  const DISPID count = IdOf(object, L"Count");
  EXPECT_EQ(InvokeById(object, count, DISPATCH_PROPERTYGET, {}), S_OK);
  FailEach("Item", S_OK, [&] {
    return InvokeById(object, DISPID_VALUE, DISPATCH_PROPERTYGET, {&byKey, nullptr, 1, 0});
  });
  VARIANTARG byNumber;
  V_VT(&byNumber) = VT_I4;
  V_I4(&byNumber) = 700;
  FailEach("Item that is not there", static_cast<HRESULT>(0x800A0009), [&] {
    return InvokeById(object, DISPID_VALUE, DISPATCH_PROPERTYGET, {&byNumber, nullptr, 1, 0});
  });
  FailEach("Add", S_OK, [&] { return InvokeById(object, 1, DISPATCH_METHOD, {&byKey, nullptr, 1, 0}); });
  FailEach("_NewEnum", S_OK, [&] { return InvokeById(object, DISPID_NEWENUM, DISPATCH_PROPERTYGET, {}); });
}

TEST_F(CollectionOutOfMemory, ACopyOfTheEnumeratorTellsIt) {
  DISPPARAMS none = {};
  Variant answer;
  ASSERT_EQ(object->Invoke(DISPID_NEWENUM, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, answer.Out(),
                           nullptr, nullptr),
            S_OK);
  const auto walk = ComPointer<IUnknown>::Share(V_UNKNOWN(&answer.Get())).As<IEnumVARIANT>(IID_IEnumVARIANT);
  FailEach("Clone", S_OK, [&] {
    ComPointer<IEnumVARIANT> copy;
    return walk->Clone(copy.Out());
  });
}

TEST(OutOfMemory, AGuardedBodyIsItsNumberWithoutErrorInformation) {
  const IID& id = IID_IDispatch;
  EXPECT_EQ(Guarded(id, [] { throw AutomationError(0x80040777u, "source", "earlier"); }),
            static_cast<HRESULT>(0x80040777));
  {
    const FailingAllocations failing(1);
    EXPECT_EQ(Guarded(id, [] { throw std::bad_alloc(); }), E_OUTOFMEMORY);
    EXPECT_EQ(failing.Asked(), 0u) << "it allocates nothing to tell it";
  }
  ComPointer<IErrorInfo> info;
  EXPECT_EQ(GetErrorInfo(0, info.Out()), S_FALSE) << "the text of an earlier failure is gone";
}

TEST(OutOfMemory, AFailureWhoseTextCannotBeKeptIsOutOfMemory) {
  const AutomationError error(0x80040777u, kLong, kLong);
  FailEach("an automation error", static_cast<HRESULT>(0x80040777),
           [&] { return Guarded(IID_IDispatch, [&] { throw AutomationError(error); }); });
  const std::runtime_error other(kLong);
  FailEach("another error", E_FAIL, [&] { return Guarded(IID_IDispatch, [&] { throw std::runtime_error(other); }); });
}

}  // namespace
}  // namespace parvex::windows
