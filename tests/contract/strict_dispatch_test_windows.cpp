#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "adapters/windows/dispatch_object.h"
#include "adapters/windows/outgoing_dispatch.h"
#include "tests/support/raised_by.h"

// What goes out to an automation object from outside, as a server sees it that takes nothing else; and what comes back.

namespace parvex::windows {
namespace {

using automation::Argument;
using automation::ObjectRef;
using automation::Value;
using test::ErrorIn;

/// Has every member; notes what it is called with and answers as it is told.
class StrictServer : public OutgoingDispatch {
 public:
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* ids) override {
    *ids = 1;
    return unknownName;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*,
                                   UINT* refused) override {
    lastKind = kind;
    types.clear();
    for (UINT i = parameters->cArgs; i > 0; --i) {
      types.push_back(V_VT(&parameters->rgvarg[i - 1]));
    }
    if (answer != S_OK) {
      if (blamed != 0) {
        *refused = parameters->cArgs - blamed;
      }
      return answer;
    }
    if (change) {
      change(*parameters);
    }
    if (result != nullptr && readAsMethodOnly) {
      if ((kind & DISPATCH_METHOD) == 0) {
        return DISP_E_MEMBERNOTFOUND;
      }
      V_VT(result) = VT_I4;
      V_I4(result) = 7;
    }
    return S_OK;
  }

  HRESULT unknownName = S_OK;
  HRESULT answer = S_OK;
  UINT blamed = 0;  // argument, from 1
  bool readAsMethodOnly = false;
  std::function<void(DISPPARAMS&)> change;
  std::vector<VARTYPE> types;
  WORD lastKind = 0;
};

class OutgoingCalls : public testing::Test {
 protected:
  ComPointer<StrictServer> server = MakeCom<StrictServer>();
  ObjectRef object = WrapDispatch(server.As<IDispatch>(IID_IDispatch), "Server");
};

TEST_F(OutgoingCalls, WhatGoesByReferenceIsAReferenceOfItsOwnType) {
  Argument arguments[] = {{std::string("text"), true}, {7, true}, {0.5, true}, {true, true}, {object, true},
                          {ObjectRef(), true},         {{}, true}};
  object->Call("Member", arguments);
  EXPECT_THAT(server->types,
              testing::ElementsAre(VT_BYREF | VT_BSTR, VT_BYREF | VT_I4, VT_BYREF | VT_R8, VT_BYREF | VT_BOOL,
                                   VT_BYREF | VT_DISPATCH, VT_BYREF | VT_DISPATCH, VT_BYREF | VT_VARIANT));
  EXPECT_EQ(arguments[4].value, Value(object)) << "an object that was not replaced stays the same";
}

TEST_F(OutgoingCalls, WhatGoesByValueIsAValue) {
  Argument arguments[] = {{std::string("text")}, {7}, {object}};
  object->Call("Member", arguments);
  EXPECT_THAT(server->types, testing::ElementsAre(VT_BSTR, VT_I4, VT_DISPATCH));
}

TEST_F(OutgoingCalls, ATextThatTheServerReplacedIsTakenBackAndFreed) {
  server->change = [](DISPPARAMS& parameters) {
    BSTR* first = V_BSTRREF(&parameters.rgvarg[1]);
    SysReAllocString(first, L"a longer text than the one that was passed, so that it lies somewhere else");
    BSTR* second = V_BSTRREF(&parameters.rgvarg[0]);
    SysFreeString(*second);
    *second = nullptr;
  };
  Argument arguments[] = {{std::string("first"), true}, {std::string("second"), true}};
  object->Call("Member", arguments);
  EXPECT_EQ(arguments[0].value,
            Value(std::string("a longer text than the one that was passed, so that it lies somewhere else")));
  EXPECT_EQ(arguments[1].value, Value(std::string())) << "no text is an empty one";
}

TEST_F(OutgoingCalls, AnObjectThatTheServerTookAwayIsNone) {
  server->change = [](DISPPARAMS& parameters) {
    IDispatch** reference = V_DISPATCHREF(&parameters.rgvarg[0]);
    (*reference)->Release();
    *reference = nullptr;
  };
  Argument argument{object, true};
  object->Call("Member", {&argument, 1});
  EXPECT_EQ(argument.value, Value(ObjectRef()));
}

TEST_F(OutgoingCalls, AValueThatIsOnlyAMethodCanBeRead) {
  server->readAsMethodOnly = true;
  EXPECT_EQ(object->Get("Value"), Value(7));
  EXPECT_EQ(server->lastKind, DISPATCH_METHOD | DISPATCH_PROPERTYGET);
}

TEST_F(OutgoingCalls, AMissingMemberIs438WhereverTheObjectNoticesIt) {
  const std::string expected = "438 Server.Missing: the object has no such member";
  server->answer = DISP_E_MEMBERNOTFOUND;
  EXPECT_EQ(ErrorIn([&] { object->Get("Missing"); }), expected);
  server->unknownName = DISP_E_UNKNOWNNAME;
  EXPECT_EQ(ErrorIn([&] { object->Put("Missing", 1); }), expected);
  try {
    object->Call("Missing", {});
    ADD_FAILURE() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.Number(), 0x800A01B6u);
  }
}

TEST_F(OutgoingCalls, ARefusedArgumentIsNamedByItsNumberWhereTheObjectTellsIt) {
  Argument arguments[] = {{1}, {2}, {3}};
  server->answer = DISP_E_TYPEMISMATCH;
  server->blamed = 2;
  EXPECT_EQ(ErrorIn([&] { object->Call("Member", arguments); }),
            "13 Server.Member: argument 2 has another type than is wanted");
  server->blamed = 0;
  EXPECT_EQ(ErrorIn([&] { object->Call("Member", arguments); }),
            "13 Server.Member: an argument has another type than is wanted");
  server->answer = DISP_E_BADPARAMCOUNT;
  EXPECT_EQ(ErrorIn([&] { object->Call("Member", arguments); }), "450 Server.Member: it does not take 3 arguments");
}

TEST_F(OutgoingCalls, AnotherFailureKeepsItsNumber) {
  server->answer = RPC_E_DISCONNECTED;
  EXPECT_EQ(test::DescriptionOfErrorIn([&] { object->Get("Member"); }), "Server.Member failed with 0x80010108");
  server->unknownName = RPC_E_DISCONNECTED;
  EXPECT_EQ(test::DescriptionOfErrorIn([&] { object->Get("Member"); }), "Server.Member failed with 0x80010108")
      << "an object that is gone does not lack the member";
}

}  // namespace
}  // namespace parvex::windows
