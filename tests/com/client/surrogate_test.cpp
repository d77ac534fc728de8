#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
// Behind windows.h, whose types it uses.
#include <tlhelp32.h>

#include <set>

#include "parvex_idl.h"
#include "tests/com/com_session.h"
#include "tests/com/registry_snapshot.h"

// The component in a surrogate process, as a host of the other bitness reaches it: calls and documents travel between
// two processes.

namespace parvex::test {
namespace {

using testing::AnyOf;
using testing::HasSubstr;

// A process of the module's own bitness, whatever a client of this one gets otherwise.
constexpr DWORD kElsewhere =
    CLSCTX_LOCAL_SERVER | (sizeof(void*) == 8 ? CLSCTX_ACTIVATE_64_BIT_SERVER : CLSCTX_ACTIVATE_32_BIT_SERVER);

ComPointer<ILegacyORLAPull> CreateElsewhere(HRESULT& result) {
  ComPointer<ILegacyORLAPull> pull;
  result = CoCreateInstance(__uuidof(LegacyORLAPull), nullptr, kElsewhere, __uuidof(ILegacyORLAPull),
                            reinterpret_cast<void**>(pull.Out()));
  return pull;
}

std::set<DWORD> SurrogateProcesses() {
  std::set<DWORD> found;
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  PROCESSENTRY32W entry = {};
  entry.dwSize = sizeof entry;
  for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry)) {
    if (lstrcmpiW(entry.szExeFile, L"dllhost.exe") == 0) {
      found.insert(entry.th32ProcessID);
    }
  }
  CloseHandle(snapshot);
  return found;
}

class Surrogate : public testing::Test {
 protected:
  void SetUp() override { ASSERT_HRESULT_SUCCEEDED(CallInstall(module_, true, L"surrogate")); }
  // Where a surrogate does not end by itself it would keep the output of this test open.
  void TearDown() override {
    for (const DWORD id : SurrogateProcesses()) {
      if (!earlier_.contains(id)) {
        const HANDLE process = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, id);
        TerminateProcess(process, 0);
        WaitForSingleObject(process, 5000);
        CloseHandle(process);
      }
    }
    EXPECT_HRESULT_SUCCEEDED(CallExport(module_, "DllUnregisterServer"));
    EXPECT_HRESULT_SUCCEEDED(CallExport(module_, "DllRegisterServer"));
    FreeLibrary(module_);
  }

  const std::set<DWORD> earlier_ = SurrogateProcesses();
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
  ASSERT_EQ(CoCreateInstance(__uuidof(LegacyORLAPull), nullptr, kElsewhere, IID_IDispatch,
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
  // A system that looks for the class in its own server of processes may say what it misses there.
  EXPECT_THAT(created, AnyOf(REGDB_E_CLASSNOTREG, REGDB_E_KEYMISSING));
}

}  // namespace
}  // namespace parvex::test
