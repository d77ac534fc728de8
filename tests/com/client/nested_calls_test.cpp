#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <map>
#include <optional>
#include <thread>
#include <utility>

#include "parvex_idl.h"
#include "tests/com/com_session.h"
#include "tests/support/own_boxes_windows.h"

// A host's timer sends commands to an instance while another command waits on the same thread: for the builder, for the
// workflow program, or for the user at a box.

namespace parvex::test {
namespace {

constexpr HRESULT kRefusedBesideAnother = static_cast<HRESULT>(0x800A005B);
constexpr HRESULT kPermissionDenied = static_cast<HRESULT>(0x800A0046);
const std::string kProject = "Riverside Clinic";

struct NestedCall {
  std::string name;
  std::string text;
  bool asText = false;  ///< to PullNGORLA
  bool drives = false;  ///< the builder or the report server
};

struct CallOutcome {
  HRESULT result = E_PENDING;
  std::string reply;
  std::string error;
  bool operator==(const CallOutcome& other) const { return result == other.result && reply == other.reply; }
};

std::ostream& operator<<(std::ostream& out, const CallOutcome& outcome) {
  return out << std::hex << outcome.result << " " << outcome.error << outcome.reply.substr(0, 300);
}

CallOutcome Send(const ComPointer<ILegacyORLAPull>& pull, const NestedCall& call) {
  CallOutcome outcome;
  Bstr reply;
  if (call.asText) {
    const Bstr text(call.text);
    BSTR argument = text.Get();
    outcome.result = pull->PullNGORLA(&argument, reply.Out());
  } else {
    const auto command = NewDocument(call.text);
    domDocument* argument = reinterpret_cast<domDocument*>(static_cast<IUnknown*>(command.Get()));
    domDocument* answered = nullptr;
    outcome.result = pull->Pull(&argument, &answered);
    const auto document = ComPointer<IUnknown>::Attach(reinterpret_cast<IUnknown*>(answered));
    if (document) {
      document.As<IXMLDOMDocument2>(kXmlDocument2)->get_xml(reply.Out());
    }
  }
  outcome.reply = reply.Text();
  if (FAILED(outcome.result)) {
    outcome.error = TakeErrorInfo().description;
  }
  return outcome;
}

constexpr UINT kAtOnce = 10;
/// A builder command serves messages at 0 and 100 ms before there is a builder, and every 200 ms from then on.
constexpr UINT kWhileTheBuilderLoads = 150;

/// A timer of this thread that does something once.
class OneTick {
 public:
  OneTick(UINT milliseconds, std::function<void()> task) : task_(std::move(task)) {
    WNDCLASSW description = {};
    description.lpfnWndProc = Serve;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = L"ParvexOneTick";
    RegisterClassW(&description);
    window_ = CreateWindowW(description.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, description.hInstance,
                            nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetTimer(window_, 1, milliseconds, nullptr);
  }
  ~OneTick() { DestroyWindow(window_); }
  OneTick(const OneTick&) = delete;
  OneTick& operator=(const OneTick&) = delete;

 private:
  static LRESULT CALLBACK Serve(HWND window, UINT message, WPARAM first, LPARAM second) {
    auto* self = reinterpret_cast<OneTick*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_TIMER && self != nullptr) {
      KillTimer(window, 1);
      std::exchange(self->task_, [] {})();
      return 0;
    }
    return DefWindowProcW(window, message, first, second);
  }

  std::function<void()> task_;
  HWND window_;
};

const NestedCall kExport = {
    "getHybrisXMLNoUI",
    Command(
        "getHybrisXMLNoUI",
        {{"selection", "<UserSelectionTransfer><ProjectName>Riverside Clinic</ProjectName></UserSelectionTransfer>"}}),
    true};

/// A return whose two components are shown in boxes.
const NestedCall kReturn = {
    "RebuildTag",
    "<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER><PROJECT><TAGS><TAG><ATTRIBUTES_LIST><PDSG>RTU47</PDSG>"
    "<BLOB>TWFu</BLOB></ATTRIBUTES_LIST></TAG></TAGS></PROJECT></PARAMETER></PARAMETERS></COMMAND>",
    true};

/// Every served command; those that would change something name what does not exist.
std::vector<NestedCall> EveryCommand() {
  std::vector<NestedCall> calls;
  for (const char* name :
       {"getProjectList", "archiveProject", "retrieveProject", "deleteProject", "copyProject", "getProjectProperties",
        "setProjectProperties", "renameProject", "getTagList", "getTags", "renameTag", "deleteTag", "copyTag",
        "getAvailableReports", "getOptions", "setOptions", "getHybrisXML"}) {
    calls.push_back({name, Command(name, {{"projectName", "Nowhere"}})});
  }
  calls.push_back({"addProject", Command("addProject", {{"projectName", kProject}})});
  for (const char* name : {"newTag", "configureTag", "rebuildAllTags", "getReport", "getReports", "getSubmittal"}) {
    calls.push_back({name, Command(name, {{"projectName", kProject}}), false, true});
  }
  calls.push_back({"getHybrisXML", Command("getHybrisXML"), true});
  calls.push_back(kExport);
  calls.push_back(kReturn);
  return calls;
}

/// The calls that wait are long enough for a timer, and their users cancel at once.
constexpr const char* kSlowAndCancelled =
    R"({"builder": {"cancelled": true, "polls": 2}, "workflow": {"cancel": true}})";

/// What a call comes to on an instance of its own; worked out once.
const CallOutcome& Undisturbed(const NestedCall& call) {
  static std::map<std::string, CallOutcome> known;
  const auto [entry, isNew] = known.try_emplace(call.text + (call.asText ? "t" : "d"));
  if (isNew) {
    entry->second = Send(Make<LegacyORLAPull, ILegacyORLAPull>(), call);
  }
  return entry->second;
}

bool HandsOver(const NestedCall& call) { return call.name.starts_with("getHybrisXML"); }

void NestEveryCommandUnderATimer(const NestedCall& outer) {
  const StandinMisbehaves told(kSlowAndCancelled);
  const CallOutcome outerAlone = Undisturbed(outer);
  ASSERT_EQ(outerAlone.result, S_OK) << outerAlone;
  for (const NestedCall& nested : EveryCommand()) {
    SCOPED_TRACE(nested.name + " in " + outer.name);
    const bool refused = outer.drives && nested.drives;
    const bool handsOver = HandsOver(outer) && (HandsOver(nested) || nested.name == kReturn.name);
    const CallOutcome nestedAlone = refused || handsOver ? CallOutcome() : Undisturbed(nested);
    const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
    std::optional<CallOutcome> seen;
    CallOutcome outerSeen;
    {
      const OneTick tick(outer.drives ? kWhileTheBuilderLoads : kAtOnce, [&] { seen = Send(pull, nested); });
      outerSeen = Send(pull, outer);
    }
    EXPECT_EQ(outerSeen, outerAlone);
    ASSERT_TRUE(seen) << "the timer did not come to its turn";
    if (refused) {
      EXPECT_EQ(seen->result, kRefusedBesideAnother) << *seen;
    } else if (handsOver) {
      EXPECT_EQ(seen->result, kPermissionDenied) << *seen;
    } else {
      EXPECT_EQ(*seen, nestedAlone);
    }
    EXPECT_EQ(ReferenceCount(pull), 1u);
  }
}

NestedCall BuilderCall(const std::string& name) {
  return {name, Command(name, {{"projectName", kProject}, {"PDSG", "RTU47"}}), false, true};
}

TEST(NestedCalls, DisturbNoNewTag) { NestEveryCommandUnderATimer(BuilderCall("newTag")); }

TEST(NestedCalls, DisturbNoConfigureTag) { NestEveryCommandUnderATimer(BuilderCall("configureTag")); }

TEST(NestedCalls, DisturbNoRebuildAllTags) { NestEveryCommandUnderATimer(BuilderCall("rebuildAllTags")); }

TEST(NestedCalls, DisturbNoExport) { NestEveryCommandUnderATimer(kExport); }

TEST(NestedCalls, DisturbNoInteractiveExport) {
  NestEveryCommandUnderATimer({"getHybrisXML", Command("getHybrisXML")});
}

TEST(NestedCalls, DisturbNoReturnWhoseUserReadsABox) {
  NestedCall shown = kReturn;
  shown.text.replace(
      shown.text.find("</TAG>"), 0,
      "<BASEUNITS><BASEUNIT><COMPONENTS><COMPONENT>read me</COMPONENT></COMPONENTS></BASEUNIT></BASEUNITS>");
  for (const NestedCall& nested : EveryCommand()) {
    if (nested.drives) {
      continue;  // reports of nothing show boxes of their own
    }
    SCOPED_TRACE(nested.name);
    const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
    std::atomic<bool> seen = false;
    CallOutcome outerSeen;
    {
      const StandinMisbehaves told(kSlowAndCancelled);
      const OneTick tick(kAtOnce, [&] {
        Send(pull, nested);
        seen = true;
      });
      std::thread user([&] {
        while (!seen) {
          Sleep(5);
        }
        CloseBox(L"Parvex");
      });
      outerSeen = Send(pull, shown);
      user.join();
    }
    EXPECT_EQ(outerSeen.result, S_OK) << outerSeen;
    EXPECT_NE(outerSeen.reply.find("No error"), std::string::npos) << outerSeen;
  }
}

TEST(NestedCalls, AnInstanceThatATimerReleasesLivesUntilItsCallHasReturned) {
  const StandinMisbehaves told(kSlowAndCancelled);
  for (const NestedCall& outer : {BuilderCall("newTag"), kExport}) {
    auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
    ILegacyORLAPull* const called = pull.Get();
    const HMODULE server = GetModuleHandleW(L"KorvaneSubstitute.dll");
    HRESULT whileItRan = E_PENDING;
    CallOutcome seen;
    {
      const OneTick tick(kAtOnce, [&] {
        Send(pull, {"getTagList", Command("getTagList", {{"projectName", kProject}})});
        pull = {};
        whileItRan = CallExport(server, "DllCanUnloadNow");
      });
      // Nobody but the call itself holds the instance: borrowed, as a host's own variable is.
      struct Borrowing {
        ComPointer<ILegacyORLAPull> object;
        ~Borrowing() { object.Detach(); }
      } borrowed{ComPointer<ILegacyORLAPull>::Attach(called)};
      seen = Send(borrowed.object, outer);
    }
    EXPECT_EQ(seen.result, S_OK) << seen;
    EXPECT_FALSE(pull);
    EXPECT_EQ(whileItRan, S_FALSE) << "the router lives with the instance";
    EXPECT_EQ(CallExport(server, "DllCanUnloadNow"), S_OK) << outer.name;
  }
}

}  // namespace
}  // namespace parvex::test
