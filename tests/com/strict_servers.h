#pragma once

#include <string>
#include <vector>

#include "adapters/windows/com_object.h"
#include "adapters/windows/com_pointer.h"
#include "adapters/windows/this_module.h"
#include "strict_servers_idl.h"

namespace parvex::test {

/// What strict servers saw, in order: the member and its texts, each behind a "|".
using Seen = std::vector<std::string>;

/// A typed object of strict_servers.idl: calls by name are what its type information makes of them, nothing else.
template <typename Interface>
class StrictObject : public windows::ComObject<Interface> {
 public:
  explicit StrictObject(Seen& seen) : seen_(seen) {
    windows::ComPointer<ITypeLib> library;
    if (SUCCEEDED(LoadTypeLibEx((windows::ThisModulePath() + L"\\3").c_str(), REGKIND_NONE, library.Out()))) {
      library->GetTypeInfoOfGuid(__uuidof(Interface), info_.Out());
    }
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    *info = windows::ComPointer<ITypeInfo>(info_).Detach();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    return info_->GetIDsOfNames(names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO* exception, UINT* refused) override {
    return info_->Invoke(static_cast<Interface*>(this), member, kind, parameters, result, exception, refused);
  }

 protected:
  HRESULT See(std::string line, std::vector<BSTR> texts = {}) {
    for (BSTR text : texts) {
      line += "|" + windows::TextOf(text);
    }
    seen_.push_back(line);
    return S_OK;
  }

  Seen& seen_;

 private:
  windows::ComPointer<ITypeInfo> info_;
};

class StrictReportServer : public StrictObject<IStrictReportServer> {
 public:
  using StrictObject::StrictObject;
  HRESULT STDMETHODCALLTYPE put_action(BSTR text) override { return See("action", {text}); }
  HRESULT STDMETHODCALLTYPE put_ClientID(BSTR text) override { return See("ClientID", {text}); }
  HRESULT STDMETHODCALLTYPE put_command(BSTR text) override { return See("command", {text}); }
  HRESULT STDMETHODCALLTYPE put_OutputType(BSTR text) override { return See("OutputType", {text}); }
  HRESULT STDMETHODCALLTYPE put_Project(BSTR text) override { return See("Project", {text}); }
  HRESULT STDMETHODCALLTYPE put_ProjectID(BSTR) override { return See("ProjectID"); }
  HRESULT STDMETHODCALLTYPE put_OutputUnits(BSTR text) override { return See("OutputUnits", {text}); }
  HRESULT STDMETHODCALLTYPE Reset() override { return See("Reset"); }
  HRESULT STDMETHODCALLTYPE AddTag(BSTR* folder, BSTR*, BSTR* group, BSTR* sameGroup, BSTR* name) override {
    const HRESULT seen = See("AddTag", {*folder, *group, *sameGroup, *name});
    Replace(group);  // its own from now on: the caller's other calls must not see it
    return seen;
  }
  HRESULT STDMETHODCALLTYPE AddReport(BSTR* definition, BSTR* category, BSTR* report, BSTR* group,
                                      BSTR* name) override {
    return See("AddReport", {*definition, *category, *report, *group, *name});
  }
  HRESULT STDMETHODCALLTYPE MakeReport(BSTR* text, VARIANT_BOOL* made) override {
    Replace(text);
    *made = VARIANT_TRUE;
    return See("MakeReport");
  }

 private:
  static void Replace(BSTR* text) {
    SysReAllocString(text, L"a text of the server's, far longer than what it was given by reference");
  }
};

/// The items of a collection, read through its interface by key and counted by its enumerator.
std::string DescribeItems(_Collection* items, std::initializer_list<const char*> keys);

class StrictScheduleRequest : public StrictObject<IStrictScheduleRequest> {
 public:
  using StrictObject::StrictObject;
  HRESULT STDMETHODCALLTYPE SendRequest(BSTR operation, _Collection* items, VARIANT_BOOL* shown) override {
    *shown = VARIANT_TRUE;
    return See("SendRequest " + DescribeItems(items, {"pdsg", "projectName", "projectID"}), {operation});
  }
};

class StrictBroker : public StrictObject<IStrictBroker> {
 public:
  using StrictObject::StrictObject;
  HRESULT STDMETHODCALLTYPE CallService(BSTR service, BSTR operation, _Collection* items, BSTR name,
                                        IDispatch** given) override {
    *given = nullptr;
    return See("CallService " + DescribeItems(items, {"consumer", "builder", "command line"}),
               {service, operation, name});
  }
};

class StrictFramework : public StrictObject<IStrictFramework> {
 public:
  using StrictObject::StrictObject;
  HRESULT STDMETHODCALLTYPE ServiceBroker(IStrictBroker** broker) override {
    *broker = windows::MakeCom<StrictBroker>(seen_).Detach();
    return S_OK;
  }
};

class StrictBuilder : public StrictObject<IStrictBuilder> {
 public:
  using StrictObject::StrictObject;
  HRESULT STDMETHODCALLTYPE put_standalone(VARIANT_BOOL flag) override {
    return See(flag == VARIANT_FALSE ? "standalone False" : "standalone True");
  }
  HRESULT STDMETHODCALLTYPE View(VARIANT_BOOL existing, IDispatch* parent) override {
    return See(std::string(existing == VARIANT_FALSE ? "View False " : "View True ") +
               (parent == nullptr ? "Nothing" : "something"));
  }
  HRESULT STDMETHODCALLTYPE get_UILoaded(VARIANT_BOOL* loaded) override {
    *loaded = VARIANT_TRUE;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Framework(IStrictFramework** framework) override {
    *framework = windows::MakeCom<StrictFramework>(seen_).Detach();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Shutdown() override { return See("Shutdown"); }
};

}  // namespace parvex::test
