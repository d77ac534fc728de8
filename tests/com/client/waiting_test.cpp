#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <utility>

#include "adapters/windows/com_object.h"
#include "adapters/windows/exposed_object.h"
#include "adapters/windows/variant_values.h"
#include "parvex_idl.h"
#include "seams/automation_error.h"
#include "tests/com/com_session.h"
#include "tests/support/own_boxes_windows.h"

// What happens on the caller's thread while a command waits: messages are served, boxes shown; and that a builder is
// let go of, however its command ends.

namespace parvex::test {
namespace {

using automation::Argument;
using automation::ObjectRef;
using automation::Value;
using testing::ElementsAre;
using testing::HasSubstr;

HRESULT Pull(const ComPointer<ILegacyORLAPull>& pull, std::string_view xml, std::string* returnError = nullptr) {
  const auto command = NewDocument(xml);
  domDocument* argument = reinterpret_cast<domDocument*>(static_cast<IUnknown*>(command.Get()));
  domDocument* answered = nullptr;
  const HRESULT result = pull->Pull(&argument, &answered);
  const auto reply = ComPointer<IUnknown>::Attach(reinterpret_cast<IUnknown*>(answered));
  if (returnError != nullptr) {
    *returnError = reply ? TextAt(reply.As<IXMLDOMDocument2>(kXmlDocument2).Get(), "//returnError") : "";
  }
  return result;
}

const std::string kNewTag = Command("newTag", {{"projectName", "Riverside Clinic"}, {"PDSG", "RTU47"}});
const std::string kConfigureTag =
    Command("configureTag", {{"projectName", "Riverside Clinic"}, {"PDSG", "RTU47"}, {"tagName", "RTU-1"}});

/// A window of this thread that counts its timer's ticks.
class TickingWindow {
 public:
  TickingWindow() {
    WNDCLASSW description = {};
    description.lpfnWndProc = Serve;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = L"ParvexTickingWindow";
    RegisterClassW(&description);
    window_ = CreateWindowW(description.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, description.hInstance,
                            nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetTimer(window_, 1, 10, nullptr);
  }
  ~TickingWindow() { DestroyWindow(window_); }
  TickingWindow(const TickingWindow&) = delete;
  TickingWindow& operator=(const TickingWindow&) = delete;

  int Ticks() const { return ticks_; }

 private:
  static LRESULT CALLBACK Serve(HWND window, UINT message, WPARAM first, LPARAM second) {
    auto* self = reinterpret_cast<TickingWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_TIMER && self != nullptr) {
      ++self->ticks_;
      return 0;
    }
    return DefWindowProcW(window, message, first, second);
  }

  HWND window_;
  int ticks_ = 0;
};

/// The legacy builder, played by the test: `failAt` fails, everything else is as it should be.
struct BuilderPart : automation::Object {
  std::string name;
  std::string failAt;
  int polls = 3;
  std::vector<std::string>* calls = nullptr;
  ComPointer<IUnknown>* consumer = nullptr;
  std::function<void()>* whileLoading = nullptr;
  ObjectRef part;

  std::string Name() const override { return name; }
  void Fail(std::string_view member) const {
    if (member == failAt) {
      throw AutomationError(0x80040777u, name, "told to fail at " + failAt);
    }
  }
  Value Get(std::string_view member) override {
    Fail(member);
    if (member == "UILoaded") {
      if (*whileLoading) {
        std::exchange(*whileLoading, nullptr)();
      }
      return --polls < 0;
    }
    return part;
  }
  void Put(std::string_view member, const Value&) override { Fail(member); }
  Value Call(std::string_view member, std::span<Argument> arguments) override {
    Fail(member);
    calls->push_back(std::string(member));
    if (member == "CallService") {
      Argument key[] = {{std::string("Consumer")}};
      const Value items = arguments[2].value;
      const ObjectRef collection = std::get<ObjectRef>(items);
      const windows::Variant held = windows::ToVariant(collection->Call("Item", key));
      *consumer = ComPointer<IDispatch>::Share(V_DISPATCH(&held.Get())).As<IUnknown>(IID_IUnknown);
    }
    return {};
  }
};

class BuilderFactory : public windows::ComObject<IClassFactory> {
 public:
  explicit BuilderFactory(std::function<ObjectRef()> make) : make_(std::move(make)) {}
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
    return windows::ExposeObject(make_())->QueryInterface(id, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  std::function<ObjectRef()> make_;
};

/// This process offers the builder's class itself for as long as this lives.
class OwnBuilder {
 public:
  explicit OwnBuilder(std::string failAt) {
    CLSID id;
    EXPECT_HRESULT_SUCCEEDED(CLSIDFromProgID(L"KDQU470.CKDBuilder", &id));
    const auto make = [this, failAt] {
      const auto broker = std::make_shared<BuilderPart>();
      const auto framework = std::make_shared<BuilderPart>();
      const auto builder = std::make_shared<BuilderPart>();
      for (const auto& part : {broker, framework, builder}) {
        part->name = "Builder";
        part->failAt = failAt;
        part->calls = &calls;
        part->consumer = &consumer;
        part->whileLoading = &whileLoading;
        parts.push_back(part);
      }
      framework->part = broker;
      builder->part = framework;
      return builder;
    };
    const auto factory = windows::MakeCom<BuilderFactory>(make);
    EXPECT_HRESULT_SUCCEEDED(
        CoRegisterClassObject(id, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_));
  }
  ~OwnBuilder() { CoRevokeClassObject(cookie_); }
  OwnBuilder(const OwnBuilder&) = delete;
  OwnBuilder& operator=(const OwnBuilder&) = delete;

  /// Builders, frameworks and brokers that somebody still holds.
  int Held() const {
    int held = 0;
    for (const auto& part : parts) {
      held += !part.expired();
    }
    return held;
  }

  std::vector<std::weak_ptr<BuilderPart>> parts;
  std::vector<std::string> calls;
  ComPointer<IUnknown> consumer;
  /// Called once, from within a look at UILoaded.
  std::function<void()> whileLoading;

 private:
  DWORD cookie_ = 0;
};

TEST(BuilderReferences, NoneIsLeftBehindItsCommandAndTheConsumerIsTheInstance) {
  for (const std::string& command : {kNewTag, kConfigureTag}) {
    OwnBuilder builder("");
    const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
    std::string returnError;
    ASSERT_EQ(Pull(pull, command, &returnError), S_OK) << TakeErrorInfo().description;
    EXPECT_EQ(returnError, "0");
    EXPECT_THAT(builder.calls, ElementsAre("View", "CallService"));
    EXPECT_EQ(builder.parts.size(), 3u);
    EXPECT_EQ(builder.Held(), 0);
    EXPECT_EQ(builder.consumer.Get(), pull.As<IUnknown>(IID_IUnknown).Get());
    builder.consumer = {};
    EXPECT_EQ(ReferenceCount(pull), 1u) << "the instance does not keep itself alive";
  }
}

TEST(BuilderReferences, TheConsumerIsTheInstanceAlsoWhenACallWasNested) {
  OwnBuilder builder("");
  const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
  HRESULT nested = E_PENDING;
  builder.whileLoading = [&] { nested = Pull(pull, Command("getTagList", {{"projectName", "Riverside Clinic"}})); };
  ASSERT_EQ(Pull(pull, kNewTag), S_OK) << TakeErrorInfo().description;
  EXPECT_EQ(nested, S_OK);
  ASSERT_TRUE(builder.consumer) << "the broker got no consumer";
  EXPECT_EQ(builder.consumer.Get(), pull.As<IUnknown>(IID_IUnknown).Get());
  builder.consumer = {};
  EXPECT_EQ(ReferenceCount(pull), 1u);
}

TEST(BuilderReferences, NoneIsLeftBehindAFailingCommand) {
  for (const char* member : {"standalone", "View", "UILoaded", "Framework", "CallService"}) {
    OwnBuilder builder(member);
    const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
    EXPECT_EQ(Pull(pull, kNewTag), static_cast<HRESULT>(0x80040777)) << member;
    EXPECT_THAT(TakeErrorInfo().description, HasSubstr(member));
    EXPECT_EQ(builder.Held(), 0) << member;
    EXPECT_EQ(ReferenceCount(pull), 1u);
  }
}

TEST(BuilderReferences, ConfigureTagAnswersAFailureOfTheRunningBuilderAndHoldsNothing) {
  OwnBuilder builder("CallService");
  const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
  std::string returnError;
  ASSERT_EQ(Pull(pull, kConfigureTag, &returnError), S_OK);
  EXPECT_EQ(returnError, "-1");
  EXPECT_EQ(builder.Held(), 0);
  EXPECT_EQ(ReferenceCount(pull), 1u);
}

// The substitute's server unloads when nothing of it is held: its own count of its objects.
TEST(BuilderReferences, TheSubstitutesServerIsFreeBehindASuccessAndAFailure) {
  for (const char* settings : {R"({"builder": {"cancelled": true}})", R"({"builder": {"failAt": "UILoaded"}})"}) {
    const StandinMisbehaves told(settings);
    auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
    const HRESULT result = Pull(pull, kNewTag);
    EXPECT_EQ(FAILED(result), std::string(settings).find("failAt") != std::string::npos)
        << settings << TakeErrorInfo().description;
    const HMODULE server = GetModuleHandleW(L"KorvaneSubstitute.dll");
    EXPECT_EQ(CallExport(server, "DllCanUnloadNow"), S_FALSE) << "the router lives with the instance";
    pull = {};
    EXPECT_EQ(CallExport(server, "DllCanUnloadNow"), S_OK) << settings;
  }
}

TEST(ServingMessages, TheCallersWindowIsServedWhileTheBuilderLoads) {
  const StandinMisbehaves told(R"({"builder": {"cancelled": true, "polls": 4}})");
  const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
  const TickingWindow window;
  ASSERT_EQ(Pull(pull, kNewTag), S_OK) << TakeErrorInfo().description;
  EXPECT_GE(window.Ticks(), 3) << "at least between one look and the next";
}

TEST(ServingMessages, TheCallersWindowIsServedWhileTheWorkflowProgramRuns) {
  const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
  const TickingWindow window;
  Sleep(20);
  ASSERT_EQ(window.Ticks(), 0) << "nobody has served it";
  const Bstr command(Command("getHybrisXMLNoUI", {{"selection",
                                                   "<UserSelectionTransfer><ProjectName>Riverside Clinic</ProjectName>"
                                                   "</UserSelectionTransfer>"}}));
  BSTR argument = command.Get();
  Bstr reply;
  ASSERT_EQ(pull->PullNGORLA(&argument, reply.Out()), S_OK) << TakeErrorInfo().description;
  EXPECT_GE(window.Ticks(), 1);
}

TEST(Boxes, AReturnedTagsComponentsAreShownOneAfterTheOther) {
  const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
  std::vector<std::wstring> seen;
  std::thread user([&] {
    for (int i = 0; i < 2; ++i) {
      seen.push_back(CloseBox(L"Parvex"));
      for (int attempt = 0; attempt < 500 && OwnBox(L"Parvex") != nullptr; ++attempt) {
        Sleep(5);
      }
    }
  });
  const Bstr command(
      "<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER><PROJECT><TAGS><TAG><ATTRIBUTES_LIST><PDSG>RTU47</PDSG>"
      "<BLOB>TWFu</BLOB></ATTRIBUTES_LIST><BASEUNITS><BASEUNIT><COMPONENTS><COMPONENT>first</COMPONENT>"
      "<COMPONENT>second</COMPONENT></COMPONENTS></BASEUNIT></BASEUNITS></TAG></TAGS></PROJECT></PARAMETER>"
      "</PARAMETERS></COMMAND>");
  BSTR argument = command.Get();
  Bstr reply;
  const HRESULT result = pull->PullNGORLA(&argument, reply.Out());
  user.join();
  ASSERT_EQ(result, S_OK) << TakeErrorInfo().description;
  EXPECT_THAT(reply.Text(), HasSubstr("No error"));
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_THAT(windows::Narrow(seen[0]), HasSubstr("first"));
  EXPECT_THAT(windows::Narrow(seen[1]), HasSubstr("second"));
}

}  // namespace
}  // namespace parvex::test
