#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "adapters/windows/com_object.h"
#include "parvex_idl.h"
#include "seams/automation_error.h"
#include "tests/com/com_session.h"
#include "tests/support/offered_class_windows.h"

// Whose error text a failing router call repeats.

namespace parvex::test {
namespace {

using testing::HasSubstr;
using testing::Not;

struct IRouterRequests : public IDispatch {
  virtual HRESULT STDMETHODCALLTYPE SendRequestMessage(BSTR* request, BSTR* response, VARIANT_BOOL* result) = 0;
};

void LeaveErrorInfo(const char* description) {
  ComPointer<ICreateErrorInfo> details;
  ASSERT_HRESULT_SUCCEEDED(CreateErrorInfo(details.Out()));
  details->SetSource(Bstr("somebody").Get());
  details->SetDescription(Bstr(description).Get());
  SetErrorInfo(0, details.As<IErrorInfo>(IID_IErrorInfo).Get());
}

/// Fails at every request. Answers to whatever interface it is asked for as its one.
class FailingRouter : public IRouterRequests, public ISupportErrorInfo {
 public:
  enum class Tells { NothingOfErrors, OfAnotherInterface, OfItsOwn, OfItsOwnButHasNone };
  explicit FailingRouter(Tells tells) : tells_(tells) {}
  virtual ~FailingRouter() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    *object = nullptr;
    if (id == IID_ISupportErrorInfo) {
      if (tells_ == Tells::NothingOfErrors) {
        return E_NOINTERFACE;
      }
      *object = static_cast<ISupportErrorInfo*>(this);
    } else {
      *object = static_cast<IRouterRequests*>(this);
    }
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      delete this;
    }
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
    const bool own = id != IID_IDispatch && id != IID_IUnknown && tells_ != Tells::OfAnotherInterface;
    return own ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE SendRequestMessage(BSTR*, BSTR* response, VARIANT_BOOL*) override {
    SysReAllocString(response, L"half an answer");
    if (tells_ != Tells::OfItsOwnButHasNone) {
      LeaveErrorInfo("the words of the router");
    }
    return static_cast<HRESULT>(0x80040333);
  }

 private:
  const Tells tells_;
  ULONG references_ = 0;
};

RaisedError FailureOf(FailingRouter::Tells tells) {
  CLSID id;
  EXPECT_EQ(CLSIDFromString(L"" PARVEX_ROUTER_CLSID, &id), S_OK);
  const OfferedClass router(id, [tells] { return ComPointer<IDispatch>::Share(new FailingRouter(tells)); });
  const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
  const auto command = NewDocument(Command("getProjectList"));
  domDocument* argument = reinterpret_cast<domDocument*>(static_cast<IUnknown*>(command.Get()));
  domDocument* reply = nullptr;
  LeaveErrorInfo("stale words of somebody else");
  EXPECT_EQ(pull->Pull(&argument, &reply), static_cast<HRESULT>(0x80040333));
  return TakeErrorInfo();
}

TEST(RouterErrors, AreTheRoutersWordsWhereItSaysSo) {
  const RaisedError raised = FailureOf(FailingRouter::Tells::OfItsOwn);
  EXPECT_EQ(raised.source, "somebody");
  EXPECT_EQ(raised.description,
            "the message router's SendRequestMessage failed with 0x80040333: the words of the router");
}

TEST(RouterErrors, AreNotReadFromARouterThatDoesNotSpeakOfThem) {
  for (const auto tells : {FailingRouter::Tells::NothingOfErrors, FailingRouter::Tells::OfAnotherInterface}) {
    const RaisedError raised = FailureOf(tells);
    EXPECT_EQ(raised.source, "Parvex");
    EXPECT_EQ(raised.description, "the message router's SendRequestMessage failed with 0x80040333");
  }
}

TEST(RouterErrors, AreNeverWhatSomebodyLeftBefore) {
  const RaisedError raised = FailureOf(FailingRouter::Tells::OfItsOwnButHasNone);
  EXPECT_THAT(raised.description, Not(HasSubstr("stale")));
}

TEST(ClassFactories, TellOfErrors) {
  ComPointer<IClassFactory> factory;
  ASSERT_EQ(CoGetClassObject(__uuidof(LegacyORLAPull), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                             reinterpret_cast<void**>(factory.Out())),
            S_OK);
  const auto support = factory.As<ISupportErrorInfo>(IID_ISupportErrorInfo);
  ASSERT_TRUE(support);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IClassFactory), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
}

}  // namespace
}  // namespace parvex::test
