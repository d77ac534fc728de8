#include "tests/com/com_session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "parvex_idl.h"

namespace parvex::test {
namespace {

constexpr const char* kSettings = "C:\\Korvane\\TQ5-VX\\standin.json";

// MSXML 3.
constexpr CLSID kDocument30 = {0xf5078f32, 0xc551, 0x11d3, {0x89, 0xb9, 0x00, 0x00, 0xf8, 0x1f, 0xe2, 0x21}};

class Apartment : public testing::Environment {
  void SetUp() override { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  void TearDown() override { CoUninitialize(); }
};

[[maybe_unused]] const testing::Environment* const kApartment = testing::AddGlobalTestEnvironment(new Apartment);

VARIANT Empty() {
  VARIANT value;
  VariantInit(&value);
  return value;
}

}  // namespace

RaisedError TakeErrorInfo() {
  RaisedError raised;
  ComPointer<IErrorInfo> info;
  if (GetErrorInfo(0, info.Out()) == S_OK) {
    Bstr text;
    info->GetSource(text.Out());
    raised.source = text.Text();
    info->GetDescription(text.Out());
    raised.description = text.Text();
    info->GetGUID(&raised.interfaceId);
  }
  return raised;
}

LateCall CallByName(IDispatch* object, std::string_view member, WORD kind, std::vector<VARIANT> arguments) {
  LateCall call;
  std::wstring name = windows::Widen(member);
  wchar_t* names = name.data();
  DISPID id = 0;
  call.result = object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(call.result)) {
    return call;
  }
  std::reverse(arguments.begin(), arguments.end());
  DISPID put = DISPID_PROPERTYPUT;
  const bool isPut = (kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  DISPPARAMS parameters = {arguments.data(), isPut ? &put : nullptr, static_cast<UINT>(arguments.size()),
                           isPut ? 1u : 0u};
  EXCEPINFO exception = {};
  call.result =
      object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, call.value.Out(), &exception, nullptr);
  call.number = exception.scode;
  call.source = TextOf(exception.bstrSource);
  call.description = TextOf(exception.bstrDescription);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return call;
}

VARIANT Borrowed(BSTR text) {
  VARIANT value = Empty();
  V_VT(&value) = VT_BSTR;
  V_BSTR(&value) = text;
  return value;
}

VARIANT Borrowed(IDispatch* object) {
  VARIANT value = Empty();
  V_VT(&value) = VT_DISPATCH;
  V_DISPATCH(&value) = object;
  return value;
}

VARIANT Borrowed(SAFEARRAY* array, VARTYPE elementType) {
  VARIANT value = Empty();
  V_VT(&value) = static_cast<VARTYPE>(VT_ARRAY | elementType);
  V_ARRAY(&value) = array;
  return value;
}

VARIANT Number(LONG number) {
  VARIANT value = Empty();
  V_VT(&value) = VT_I4;
  V_I4(&value) = number;
  return value;
}

VARIANT Reference(VARIANT* variable) {
  VARIANT value = Empty();
  V_VT(&value) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&value) = variable;
  return value;
}

ComPointer<IXMLDOMDocument2> NewDocument(std::string_view xml) {
  ComPointer<IXMLDOMDocument2> document;
  CoCreateInstance(kDocument30, nullptr, CLSCTX_INPROC_SERVER, kXmlDocument2, reinterpret_cast<void**>(document.Out()));
  document->put_async(VARIANT_FALSE);
  VARIANT_BOOL parsed = VARIANT_FALSE;
  document->loadXML(Bstr(xml).Get(), &parsed);
  EXPECT_TRUE(parsed || xml.empty()) << xml;
  return document;
}

std::string TextAt(IXMLDOMDocument* document, std::string_view path) {
  ComPointer<IXMLDOMNode> node;
  if (document->selectSingleNode(Bstr(path).Get(), node.Out()) != S_OK) {
    return "(none)";
  }
  Bstr text;
  node->get_text(text.Out());
  return text.Text();
}

std::string Command(std::string_view name,
                    const std::vector<std::pair<std::string_view, std::string_view>>& parameters) {
  std::string xml = "<COMMAND><NAME>" + std::string(name) + "</NAME>";
  for (const auto& [key, value] : parameters) {
    xml += "<PARAMETER><NAME>" + std::string(key) + "</NAME><VALUE>" + std::string(value) + "</VALUE></PARAMETER>";
  }
  return xml + "</COMMAND>";
}

std::wstring ComponentFolder() {
  wchar_t id[40];
  StringFromGUID2(__uuidof(cBinEncoder), id, 40);
  wchar_t path[MAX_PATH] = {};
  DWORD size = sizeof path;
  const std::wstring key = std::wstring(L"CLSID\\") + id + L"\\InprocServer32";
  EXPECT_EQ(RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, path, &size), 0)
      << "Parvex.dll is not registered";
  const std::wstring registered(path);
  return registered.substr(0, registered.rfind(L'\\') + 1);
}

Unregistered::Unregistered(const wchar_t* dll) : module_(LoadLibraryW((ComponentFolder() + dll).c_str())) {
  EXPECT_HRESULT_SUCCEEDED(CallExport(module_, "DllUnregisterServer"));
}

Unregistered::~Unregistered() {
  EXPECT_HRESULT_SUCCEEDED(CallExport(module_, "DllRegisterServer"));
  FreeLibrary(module_);
}

HRESULT CallExport(HMODULE module, const char* name) {
  const auto function = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(
      reinterpret_cast<void*>(module == nullptr ? nullptr : GetProcAddress(module, name)));
  return function == nullptr ? E_NOTIMPL : function();
}

HRESULT CallInstall(HMODULE module, bool install, const wchar_t* words) {
  const auto function = reinterpret_cast<HRESULT(STDAPICALLTYPE*)(BOOL, LPCWSTR)>(
      reinterpret_cast<void*>(module == nullptr ? nullptr : GetProcAddress(module, "DllInstall")));
  return function == nullptr ? E_NOTIMPL : function(install ? TRUE : FALSE, words);
}

StandinMisbehaves::StandinMisbehaves(std::string_view json) { std::ofstream(kSettings, std::ios::binary) << json; }

StandinMisbehaves::~StandinMisbehaves() { DeleteFileA(kSettings); }

}  // namespace parvex::test
