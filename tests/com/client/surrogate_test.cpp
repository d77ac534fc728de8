#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "parvex_idl.h"
#include "tests/com/com_session.h"
#include "tests/com/registry_snapshot.h"

// The component in a surrogate process, as a host of the other bitness reaches it: calls and documents travel between
// two processes.

namespace parvex::test {
namespace {

using testing::HasSubstr;

ComPointer<ILegacyORLAPull> CreateElsewhere(HRESULT& result) {
  ComPointer<ILegacyORLAPull> pull;
  result = CoCreateInstance(__uuidof(LegacyORLAPull), nullptr, CLSCTX_LOCAL_SERVER, __uuidof(ILegacyORLAPull),
                            reinterpret_cast<void**>(pull.Out()));
  return pull;
}

class Surrogate : public testing::Test {
 protected:
  void SetUp() override { ASSERT_HRESULT_SUCCEEDED(CallInstall(module_, true, L"surrogate")); }
  void TearDown() override {
    EXPECT_HRESULT_SUCCEEDED(CallExport(module_, "DllUnregisterServer"));
    EXPECT_HRESULT_SUCCEEDED(CallExport(module_, "DllRegisterServer"));
    FreeLibrary(module_);
  }

  const HMODULE module_ = LoadLibraryW((ComponentFolder() + L"Parvex.dll").c_str());
};

TEST_F(Surrogate, CarriesPullNgorla) {
  HRESULT created = S_OK;
  const auto pull = CreateElsewhere(created);
  ASSERT_EQ(created, S_OK);
  BSTR command = Bstr(Command("noSuchCommand")).Detach();
  Bstr reply;
  EXPECT_EQ(pull->PullNGORLA(&command, reply.Out()), S_OK);
  EXPECT_THAT(reply.Text(), HasSubstr("Unrecognized or Failed Command"));
  EXPECT_EQ(TextOf(command), Command("noSuchCommand"));
  SysFreeString(command);
}

TEST_F(Surrogate, CarriesADocumentThereAndTheReplyBack) {
  HRESULT created = S_OK;
  const auto pull = CreateElsewhere(created);
  ASSERT_EQ(created, S_OK);
  const auto command = NewDocument(Command("getTagList", {{"projectName", "Riverside Clinic"}}));
  command->AddRef();  // an [in, out] reference is the callee's to replace
  domDocument* argument = reinterpret_cast<domDocument*>(static_cast<IUnknown*>(command.Get()));
  domDocument* answered = nullptr;
  ASSERT_EQ(pull->Pull(&argument, &answered), S_OK) << TakeErrorInfo().description;
  const auto back = ComPointer<IUnknown>::Attach(reinterpret_cast<IUnknown*>(argument));
  EXPECT_EQ(back.As<IUnknown>(IID_IUnknown).Get(), command.As<IUnknown>(IID_IUnknown).Get());
  const auto reply =
      ComPointer<IUnknown>::Attach(reinterpret_cast<IUnknown*>(answered)).As<IXMLDOMDocument>(kXmlDocument);
  ASSERT_TRUE(reply);
  EXPECT_EQ(TextAt(reply.Get(), "//TAG/NAME"), "RTU-1");
}

TEST_F(Surrogate, CarriesLateBoundCalls) {
  ComPointer<IDispatch> pull;
  ASSERT_EQ(CoCreateInstance(__uuidof(LegacyORLAPull), nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch,
                             reinterpret_cast<void**>(pull.Out())),
            S_OK);
  const Bstr command(Command("noSuchCommand"));
  const LateCall call = CallByName(pull.Get(), "PullNGORLA", DISPATCH_METHOD, {Borrowed(command.Get())});
  EXPECT_EQ(call.result, S_OK);
  EXPECT_THAT(TextOf(V_BSTR(&call.value.Get())), HasSubstr("Unrecognized"));
}

TEST_F(Surrogate, IsGoneWithTheRegistration) {
  const RegistrySnapshot with = SnapshotOfClasses();
  ASSERT_HRESULT_SUCCEEDED(CallExport(module_, "DllUnregisterServer"));
  ASSERT_HRESULT_SUCCEEDED(CallExport(module_, "DllRegisterServer"));
  EXPECT_THAT(Difference(SnapshotOfClasses(), with), HasSubstr("AppID"));
  HRESULT created = S_OK;
  EXPECT_FALSE(CreateElsewhere(created));
  EXPECT_EQ(created, REGDB_E_CLASSNOTREG);
}

}  // namespace
}  // namespace parvex::test
