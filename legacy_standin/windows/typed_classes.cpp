#include "legacy_standin/windows/typed_classes.h"

#include "adapters/windows/dispatch_object.h"
#include "adapters/windows/exposed_object.h"
#include "legacy_standin/windows/typed_object.h"
#include "standin_idl.h"

namespace parvex::standin {
namespace {

using automation::Argument;
using automation::ObjectRef;
using automation::Value;
using windows::ComPointer;

// A collection as its receivers drive it: through its interface.
ObjectRef Wrapped(IDispatch* object, const char* name) {
  return object == nullptr ? nullptr : windows::WrapDispatch(ComPointer<IDispatch>::Share(object), name);
}

VARIANT_BOOL AsFlag(const Value& value) { return std::get<bool>(value) ? VARIANT_TRUE : VARIANT_FALSE; }

class ReportServerObject : public TypedObject<IReportServer> {
 public:
  using TypedObject::TypedObject;

  HRESULT STDMETHODCALLTYPE get_action(BSTR* text) override { return GetText("action", text); }
  HRESULT STDMETHODCALLTYPE put_action(BSTR text) override { return PutText("action", text); }
  HRESULT STDMETHODCALLTYPE get_ClientID(BSTR* text) override { return GetText("ClientID", text); }
  HRESULT STDMETHODCALLTYPE put_ClientID(BSTR text) override { return PutText("ClientID", text); }
  HRESULT STDMETHODCALLTYPE get_command(BSTR* text) override { return GetText("command", text); }
  HRESULT STDMETHODCALLTYPE put_command(BSTR text) override { return PutText("command", text); }
  HRESULT STDMETHODCALLTYPE get_OutputType(BSTR* text) override { return GetText("OutputType", text); }
  HRESULT STDMETHODCALLTYPE put_OutputType(BSTR text) override { return PutText("OutputType", text); }
  HRESULT STDMETHODCALLTYPE get_Project(BSTR* text) override { return GetText("Project", text); }
  HRESULT STDMETHODCALLTYPE put_Project(BSTR text) override { return PutText("Project", text); }
  HRESULT STDMETHODCALLTYPE get_ProjectID(BSTR* text) override { return GetText("ProjectID", text); }
  HRESULT STDMETHODCALLTYPE put_ProjectID(BSTR text) override { return PutText("ProjectID", text); }
  HRESULT STDMETHODCALLTYPE get_OutputUnits(BSTR* text) override { return GetText("OutputUnits", text); }
  HRESULT STDMETHODCALLTYPE put_OutputUnits(BSTR text) override { return PutText("OutputUnits", text); }

  HRESULT STDMETHODCALLTYPE Reset() override {
    return Guard([&] { object_->Call("Reset", {}); });
  }
  HRESULT STDMETHODCALLTYPE AddTag(BSTR* folder, BSTR* markup, BSTR* group, BSTR* sameGroup, BSTR* name) override {
    return Guard([&] { CallWithTexts("AddTag", {folder, markup, group, sameGroup, name}); });
  }
  HRESULT STDMETHODCALLTYPE AddReport(BSTR* definition, BSTR* category, BSTR* report, BSTR* group,
                                      BSTR* name) override {
    return Guard([&] { CallWithTexts("AddReport", {definition, category, report, group, name}); });
  }
  HRESULT STDMETHODCALLTYPE MakeReport(BSTR* text, VARIANT_BOOL* made) override {
    return Guard([&] {
      Need(made);
      *made = AsFlag(CallWithTexts("MakeReport", {text}));
    });
  }
};

class ScheduleRequestObject : public TypedObject<IScheduleRequest> {
 public:
  using TypedObject::TypedObject;

  HRESULT STDMETHODCALLTYPE SendRequest(BSTR operation, _Collection* items, VARIANT_BOOL* made) override {
    return Guard([&] {
      Need(made);
      Argument arguments[] = {{windows::TextOf(operation)}, {Wrapped(items, "items")}};
      *made = AsFlag(object_->Call("SendRequest", arguments));
    });
  }
};

class ServiceBrokerObject : public TypedObject<IServiceBroker> {
 public:
  using TypedObject::TypedObject;

  HRESULT STDMETHODCALLTYPE CallService(BSTR service, BSTR operation, _Collection* items, BSTR consumer,
                                        IDispatch** given) override {
    return Guard([&] {
      Need(given);
      *given = nullptr;
      Argument arguments[] = {{windows::TextOf(service)},
                              {windows::TextOf(operation)},
                              {Wrapped(items, "items")},
                              {windows::TextOf(consumer)}};
      *given = windows::ExposeObject(std::get<ObjectRef>(object_->Call("CallService", arguments))).Detach();
    });
  }
};

class FrameworkObject : public TypedObject<IFramework> {
 public:
  using TypedObject::TypedObject;

  HRESULT STDMETHODCALLTYPE get_ServiceBroker(IServiceBroker** broker) override {
    return Guard([&] {
      Need(broker);
      *broker = nullptr;
      *broker = windows::MakeCom<ServiceBrokerObject>(std::get<ObjectRef>(object_->Get("ServiceBroker"))).Detach();
    });
  }
};

class BuilderObject : public TypedObject<IBuilder> {
 public:
  using TypedObject::TypedObject;

  HRESULT STDMETHODCALLTYPE get_standalone(VARIANT_BOOL* flag) override { return GetFlag("standalone", flag); }
  HRESULT STDMETHODCALLTYPE put_standalone(VARIANT_BOOL flag) override {
    return Guard([&] { object_->Put("standalone", flag != VARIANT_FALSE); });
  }
  HRESULT STDMETHODCALLTYPE View(VARIANT_BOOL existing, IDispatch* parent) override {
    return Guard([&] {
      Argument arguments[] = {{existing != VARIANT_FALSE}, {Wrapped(parent, "parent")}};
      object_->Call("View", arguments);
    });
  }
  HRESULT STDMETHODCALLTYPE get_UILoaded(VARIANT_BOOL* loaded) override { return GetFlag("UILoaded", loaded); }
  HRESULT STDMETHODCALLTYPE get_Framework(IFramework** framework) override {
    return Guard([&] {
      Need(framework);
      *framework = nullptr;
      *framework = windows::MakeCom<FrameworkObject>(std::get<ObjectRef>(object_->Get("Framework"))).Detach();
    });
  }
  HRESULT STDMETHODCALLTYPE Shutdown() override {
    return Guard([&] { object_->Call("Shutdown", {}); });
  }

 private:
  HRESULT GetFlag(std::string_view member, VARIANT_BOOL* flag) {
    return Guard([&] {
      Need(flag);
      *flag = AsFlag(object_->Get(member));
    });
  }
};

}  // namespace

ComPointer<IUnknown> ExposeBuilder(ObjectRef builder) {
  return windows::MakeCom<BuilderObject>(std::move(builder)).As<IUnknown>(IID_IUnknown);
}

ComPointer<IUnknown> ExposeReportServer(ObjectRef server) {
  return windows::MakeCom<ReportServerObject>(std::move(server)).As<IUnknown>(IID_IUnknown);
}

ComPointer<IUnknown> ExposeScheduleRequest(ObjectRef request) {
  return windows::MakeCom<ScheduleRequestObject>(std::move(request)).As<IUnknown>(IID_IUnknown);
}

}  // namespace parvex::standin
