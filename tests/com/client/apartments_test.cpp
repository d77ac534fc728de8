#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

#include "adapters/windows/apartment.h"
#include "parvex_idl.h"
#include "tests/com/com_session.h"

// Threads: an instance for each, calls from one apartment into another, the module's stay in memory.

namespace parvex::test {
namespace {

using testing::HasSubstr;

std::string ReplyTo(const ComPointer<ILegacyORLAPull>& pull, std::string_view xml) {
  const auto command = NewDocument(xml);
  domDocument* argument = reinterpret_cast<domDocument*>(static_cast<IUnknown*>(command.Get()));
  domDocument* answered = nullptr;
  const HRESULT result = pull->Pull(&argument, &answered);
  if (FAILED(result)) {
    return "failed: " + TakeErrorInfo().description;
  }
  const auto reply = ComPointer<IUnknown>::Attach(reinterpret_cast<IUnknown*>(answered));
  const auto document = reply.As<IXMLDOMDocument2>(kXmlDocument2);
  Bstr text;
  document->get_xml(text.Out());
  return text.Text();
}

/// Runs `body` on a thread with an apartment of its own, to its end.
void OnAnotherThread(const std::function<void()>& body) {
  std::thread([&] {
    const windows::Apartment apartment;
    body();
  }).join();
}

/// The registered program folder, changed while this lives.
class MovedProgramFolder {
 public:
  explicit MovedProgramFolder(const std::wstring& folder) {
    DWORD size = sizeof old_;
    EXPECT_EQ(RegGetValueW(HKEY_LOCAL_MACHINE, kKey, L"BinPath", RRF_RT_REG_SZ, nullptr, old_, &size), 0);
    Set(folder.c_str());
  }
  ~MovedProgramFolder() { Set(old_); }
  MovedProgramFolder(const MovedProgramFolder&) = delete;
  MovedProgramFolder& operator=(const MovedProgramFolder&) = delete;

 private:
  static constexpr const wchar_t* kKey = L"SOFTWARE\\Korvane\\KDQ47";
  static void Set(const wchar_t* folder) {
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kKey, L"BinPath", REG_SZ, folder,
                    static_cast<DWORD>((wcslen(folder) + 1) * sizeof(wchar_t)));
  }
  wchar_t old_[MAX_PATH] = {};
};

TEST(Apartments, EachThreadKeepsTheProgramFolderThatItReadFirst) {
  OnAnotherThread([&] {
    const auto earlier = Make<LegacyORLAPull, ILegacyORLAPull>();
    const std::string reply = ReplyTo(earlier, Command("getOptions"));
    ASSERT_THAT(reply, HasSubstr("<"));
    const MovedProgramFolder moved(L"C:\\Nowhere\\TQ5-VX\\Bin\\");
    EXPECT_EQ(ReplyTo(earlier, Command("getOptions")), reply);
    EXPECT_EQ(ReplyTo(Make<LegacyORLAPull, ILegacyORLAPull>(), Command("getOptions")), reply)
        << "it is the thread's, not the instance's";
    OnAnotherThread([&] { EXPECT_NE(ReplyTo(Make<LegacyORLAPull, ILegacyORLAPull>(), Command("getOptions")), reply); });
  });
}

TEST(Apartments, InstancesOnManyThreadsWorkSideBySide) {
  std::atomic<int> good = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&good, i] {
      const windows::Apartment apartment;
      for (int round = 0; round < 50; ++round) {
        const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
        const auto late = Create<IDispatch>("Parvex.TagCls");
        const Bstr text(std::to_string(i) + "/" + std::to_string(round));
        CallByName(late.Get(), "PDSG", DISPATCH_PROPERTYPUT, {Borrowed(text.Get())});
        const LateCall read = CallByName(late.Get(), "PDSG", DISPATCH_PROPERTYGET);
        good += TextOf(V_BSTR(&read.value.Get())) == text.Text() &&
                ReplyTo(pull, Command("noSuchCommand")).find("Unrecognized") != std::string::npos;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(good, 4 * 50);
}

/// An object that lives in the apartment of a thread of its own, which serves its callers until this goes.
template <typename Class, typename Interface>
class Elsewhere {
 public:
  Elsewhere() {
    thread_ = std::thread([this] { Serve(); });
    WaitForSingleObject(ready_, INFINITE);
  }
  ~Elsewhere() {
    PostThreadMessageW(threadId_, WM_QUIT, 0, 0);
    thread_.join();
    CloseHandle(ready_);
  }
  Elsewhere(const Elsewhere&) = delete;
  Elsewhere& operator=(const Elsewhere&) = delete;

  /// The object for the calling thread; to be asked for once.
  ComPointer<Interface> Proxy() {
    ComPointer<Interface> proxy;
    EXPECT_HRESULT_SUCCEEDED(
        CoGetInterfaceAndReleaseStream(stream_, __uuidof(Interface), reinterpret_cast<void**>(proxy.Out())));
    return proxy;
  }
  const Interface* Original() const { return original_; }

 private:
  void Serve() {
    const windows::Apartment apartment;
    threadId_ = GetCurrentThreadId();
    MSG message;
    PeekMessageW(&message, nullptr, WM_USER, WM_USER, PM_NOREMOVE);  // the thread has a queue from now on
    {
      const auto object = Make<Class, Interface>();
      original_ = object.Get();
      EXPECT_HRESULT_SUCCEEDED(CoMarshalInterThreadInterfaceInStream(__uuidof(Interface), object.Get(), &stream_));
      SetEvent(ready_);
      while (GetMessageW(&message, nullptr, 0, 0)) {
        DispatchMessageW(&message);
      }
    }
  }

  HANDLE ready_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  DWORD threadId_ = 0;
  IStream* stream_ = nullptr;
  const Interface* original_ = nullptr;
  std::thread thread_;
};

TEST(Apartments, AnotherThreadCallsTheCommandInterfaceThroughAProxy) {
  Elsewhere<LegacyORLAPull, ILegacyORLAPull> elsewhere;
  const ComPointer<ILegacyORLAPull> proxy = elsewhere.Proxy();
  ASSERT_TRUE(proxy);
  EXPECT_NE(proxy.Get(), elsewhere.Original());
  const Bstr command(Command("noSuchCommand"));
  BSTR argument = SysAllocString(command.Get());
  Bstr reply;
  EXPECT_EQ(proxy->PullNGORLA(&argument, reply.Out()), S_OK);
  EXPECT_THAT(reply.Text(), HasSubstr("Unrecognized"));
  SysFreeString(argument);
}

// The document belongs to the caller's apartment: the component calls back into it while the caller waits.
TEST(Apartments, ADocumentTravelsThroughTheProxyAndItsReplyBack) {
  Elsewhere<LegacyORLAPull, ILegacyORLAPull> elsewhere;
  const ComPointer<ILegacyORLAPull> proxy = elsewhere.Proxy();
  ASSERT_TRUE(proxy);
  const auto command = NewDocument(Command("getTagList", {{"projectName", "Riverside Clinic"}}));
  command->AddRef();  // an [in, out] reference is the callee's to replace
  domDocument* argument = reinterpret_cast<domDocument*>(static_cast<IUnknown*>(command.Get()));
  domDocument* answered = nullptr;
  ASSERT_EQ(proxy->Pull(&argument, &answered), S_OK) << TakeErrorInfo().description;
  const auto back = ComPointer<IUnknown>::Attach(reinterpret_cast<IUnknown*>(argument));
  EXPECT_EQ(back.As<IUnknown>(IID_IUnknown).Get(), command.As<IUnknown>(IID_IUnknown).Get());
  const auto reply =
      ComPointer<IUnknown>::Attach(reinterpret_cast<IUnknown*>(answered)).As<IXMLDOMDocument>(kXmlDocument);
  ASSERT_TRUE(reply);
  EXPECT_EQ(TextAt(reply.Get(), "//TAG/NAME"), "RTU-1");
}

/// A multi-threaded apartment that stands while this lives; threads that never asked for an apartment are in it.
class OpenApartment {
 public:
  OpenApartment() {
    thread_ = std::thread([this] {
      CoInitializeEx(nullptr, COINIT_MULTITHREADED);
      SetEvent(ready_);
      WaitForSingleObject(done_, INFINITE);
      CoUninitialize();
    });
    WaitForSingleObject(ready_, INFINITE);
  }
  ~OpenApartment() {
    SetEvent(done_);
    thread_.join();
    CloseHandle(ready_);
    CloseHandle(done_);
  }
  OpenApartment(const OpenApartment&) = delete;
  OpenApartment& operator=(const OpenApartment&) = delete;

 private:
  const HANDLE ready_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  const HANDLE done_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  std::thread thread_;
};

// Its documents live on the spot, its instance in an apartment that the system provides: each is a stranger to the
// other.
TEST(Apartments, AHostThreadWithoutAnApartmentOfItsOwnIsServed) {
  const OpenApartment apartment;
  std::thread([] {
    const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
    ASSERT_TRUE(pull);
    for (const auto& [command, expected] :
         {std::pair{Command("getProjectProperties", {{"projectName", "Riverside Clinic"}}), "Riverside Clinic"},
          std::pair{Command("getTagList", {{"projectName", "Riverside Clinic"}}), "RTU-1"},
          std::pair{Command("renameTag", {{"projectName", "Riverside Clinic"},
                                          {"tagName", "no such tag"},
                                          {"newTagName", "x"},
                                          {"pdsg", "XRC47"}}),
                    "LegacyORLA"}}) {
      EXPECT_THAT(ReplyTo(pull, command), HasSubstr(expected)) << command;
    }
    const auto changed = NewDocument(Command("getProjectProperties", {{"projectName", "Riverside Clinic"}}));
    changed->AddRef();
    domDocument* argument = reinterpret_cast<domDocument*>(static_cast<IUnknown*>(changed.Get()));
    domDocument* answered = nullptr;
    ASSERT_EQ(pull->Pull(&argument, &answered), S_OK) << TakeErrorInfo().description;
    const auto back = ComPointer<IUnknown>::Attach(reinterpret_cast<IUnknown*>(argument));
    const auto reply = ComPointer<IUnknown>::Attach(reinterpret_cast<IUnknown*>(answered));
    EXPECT_EQ(TextAt(changed.Get(), "/COMMAND/PARAMETER[NAME='pdsg']/VALUE"), "KDQ47");
  }).join();
}

TEST(Apartments, AFailureTravelsThroughTheProxyWithItsNumber) {
  Elsewhere<cBinEncoder, IcBinEncoder> elsewhere;
  const ComPointer<IcBinEncoder> proxy = elsewhere.Proxy();
  ASSERT_TRUE(proxy);
  EXPECT_EQ(proxy->DecodeToFile(Bstr("TWFu").Get(), Bstr("C:\\Korvane\\TQ5-VX\\Bin\\UIKeys.txt").Get()),
            static_cast<HRESULT>(0x800403E8));
}

TEST(Apartments, BytesAndTextsTravelThroughTheProxy) {
  Elsewhere<cBinEncoder, IcBinEncoder> elsewhere;
  const ComPointer<IcBinEncoder> proxy = elsewhere.Proxy();
  ASSERT_TRUE(proxy);
  SAFEARRAY* bytes = nullptr;
  ASSERT_EQ(proxy->DecodeArr(Bstr("TWFu").Get(), &bytes), S_OK);
  Bstr base64;
  ASSERT_EQ(proxy->EncodeArr(&bytes, base64.Out()), S_OK);
  SafeArrayDestroy(bytes);
  EXPECT_EQ(base64.Text(), "TWFu");
}

HMODULE Loaded() { return GetModuleHandleW(L"Parvex.dll"); }

TEST(Unloading, TheModuleStaysWhileAnObjectLivesAndGoesBehindTheLast) {
  while (Loaded() != nullptr) {
    CoFreeUnusedLibrariesEx(0, 0);  // what an earlier test has left
  }
  auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
  auto late = Create<IDispatch>("Parvex.TagCls");
  ReplyTo(pull, Command("getTagList", {{"projectName", "Riverside Clinic"}}));
  CallByName(late.Get(), "PDSG", DISPATCH_PROPERTYGET);
  EXPECT_EQ(CallExport(Loaded(), "DllCanUnloadNow"), S_FALSE);
  pull = {};
  EXPECT_EQ(CallExport(Loaded(), "DllCanUnloadNow"), S_FALSE) << "the tag lives";
  CoFreeUnusedLibrariesEx(0, 0);
  ASSERT_NE(Loaded(), nullptr);
  late = {};
  EXPECT_EQ(CallExport(Loaded(), "DllCanUnloadNow"), S_OK);
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_EQ(Loaded(), nullptr);
  EXPECT_TRUE((Make<TagCls, ITagCls>())) << "and comes again";
}

TEST(Unloading, AnUnloadedModuleDoesNotTroubleTheThreadsThatUsedIt) {
  OnAnotherThread([] {
    ReplyTo(Make<LegacyORLAPull, ILegacyORLAPull>(), Command("getOptions"));
    for (int i = 0; i < 3; ++i) {
      CoFreeUnusedLibrariesEx(0, 0);
    }
    ReplyTo(Make<LegacyORLAPull, ILegacyORLAPull>(), Command("getOptions"));
  });
}

TEST(Unloading, AFactoryAndALockHoldTheModule) {
  ComPointer<IClassFactory> factory;
  ASSERT_HRESULT_SUCCEEDED(CoGetClassObject(__uuidof(TagCls), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                                            reinterpret_cast<void**>(factory.Out())));
  EXPECT_EQ(CallExport(Loaded(), "DllCanUnloadNow"), S_FALSE);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  const ComPointer<IClassFactory> second = factory;
  factory = {};
  EXPECT_EQ(second->LockServer(FALSE), S_OK);
  EXPECT_EQ(CallExport(Loaded(), "DllCanUnloadNow"), S_FALSE);
}

TEST(Unloading, ALockAloneHoldsTheModule) {
  ComPointer<IClassFactory> factory;
  ASSERT_HRESULT_SUCCEEDED(CoGetClassObject(__uuidof(TagCls), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                                            reinterpret_cast<void**>(factory.Out())));
  factory->LockServer(TRUE);
  factory = {};
  EXPECT_EQ(CallExport(Loaded(), "DllCanUnloadNow"), S_FALSE);
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_NE(Loaded(), nullptr);
  CoGetClassObject(__uuidof(TagCls), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                   reinterpret_cast<void**>(factory.Out()));
  factory->LockServer(FALSE);
  factory = {};
  EXPECT_EQ(CallExport(Loaded(), "DllCanUnloadNow"), S_OK);
}

}  // namespace
}  // namespace parvex::test
