// Exports the units of a project as a quote document, and shows how failures look. Late bound: it needs no header and
// no library of Parvex, only the programmatic ids.

#include <oaidl.h>
#include <oleauto.h>
#include <shellapi.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace {

// A variant that lets go of what it holds.
class Value {
 public:
  Value() { VariantInit(&variant_); }
  Value(const wchar_t* text) : Value() {  // NOLINT: texts are given as they stand
    variant_.vt = VT_BSTR;
    variant_.bstrVal = SysAllocString(text);
  }
  explicit Value(const std::wstring& text) : Value(text.c_str()) {}
  explicit Value(bool truth) : Value() {
    variant_.vt = VT_BOOL;
    variant_.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
  }
  explicit Value(LONG number) : Value() {
    variant_.vt = VT_I4;
    variant_.lVal = number;
  }
  Value(const Value& other) : Value() { VariantCopy(&variant_, const_cast<VARIANT*>(&other.variant_)); }
  Value(Value&& other) noexcept : variant_(std::exchange(other.variant_, VARIANT())) {}
  Value& operator=(Value other) {
    std::swap(variant_, other.variant_);
    return *this;
  }
  ~Value() { VariantClear(&variant_); }

  VARIANT* Out() { return &variant_; }
  const VARIANT& Get() const { return variant_; }
  IDispatch* Object() const { return variant_.vt == VT_DISPATCH ? variant_.pdispVal : nullptr; }
  LONG Number() const { return variant_.vt == VT_I4 ? variant_.lVal : 0; }
  std::wstring Text() const {
    return variant_.vt == VT_BSTR ? std::wstring(variant_.bstrVal, SysStringLen(variant_.bstrVal)) : std::wstring();
  }

 private:
  VARIANT variant_;
};

// What a failed call says of itself. The number of what was raised stands beside DISP_E_EXCEPTION, not in its place.
struct Failure {
  HRESULT number = S_OK;
  std::wstring source;
  std::wstring description;
};

std::wstring Take(BSTR text) {
  const std::wstring taken = text == nullptr ? L"" : std::wstring(text, SysStringLen(text));
  SysFreeString(text);
  return taken;
}

// Calls a member, or reads or sets a property. Arguments go in from the last to the first.
Value Invoke(const Value& object, const wchar_t* member, WORD kind, const std::vector<Value>& values,
             Failure& failure) {
  LPOLESTR name = const_cast<LPOLESTR>(member);
  DISPID id = DISPID_UNKNOWN;
  failure = {object.Object() == nullptr ? E_POINTER
                                        : object.Object()->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id),
             L"", member};
  Value answer;
  if (FAILED(failure.number)) {
    return answer;
  }
  std::vector<VARIANT> arguments;
  for (auto value = values.rbegin(); value != values.rend(); ++value) {
    arguments.push_back(value->Get());
  }
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  if (kind == DISPATCH_PROPERTYPUT) {
    parameters.rgdispidNamedArgs = &put;
    parameters.cNamedArgs = 1;
  }
  EXCEPINFO raised = {};
  failure.number =
      object.Object()->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, answer.Out(), &raised, nullptr);
  if (failure.number == DISP_E_EXCEPTION) {
    if (raised.pfnDeferredFillIn != nullptr) {
      raised.pfnDeferredFillIn(&raised);
    }
    failure = {raised.scode, Take(raised.bstrSource), Take(raised.bstrDescription)};
    SysFreeString(raised.bstrHelpFile);
  }
  return answer;
}

Value Need(const Value& object, const wchar_t* member, WORD kind, const std::vector<Value>& values = {}) {
  Failure failure;
  Value answer = Invoke(object, member, kind, values, failure);
  if (FAILED(failure.number)) {
    std::printf("%ls failed: %08lX %ls\n", member, static_cast<unsigned long>(failure.number),
                failure.description.c_str());
    std::exit(1);
  }
  return answer;
}

Value Call(const Value& object, const wchar_t* member, const std::vector<Value>& values = {}) {
  return Need(object, member, DISPATCH_METHOD | DISPATCH_PROPERTYGET, values);
}

void Put(const Value& object, const wchar_t* member, Value value) {
  Need(object, member, DISPATCH_PROPERTYPUT, {std::move(value)});
}

Value Create(const wchar_t* programmaticId) {
  CLSID classId;
  Value object;
  HRESULT result = CLSIDFromProgID(programmaticId, &classId);
  if (SUCCEEDED(result)) {
    object.Out()->vt = VT_DISPATCH;
    result = CoCreateInstance(classId, nullptr, CLSCTX_ALL, IID_IDispatch,
                              reinterpret_cast<void**>(&object.Out()->pdispVal));
  }
  if (FAILED(result)) {
    std::printf("creating %ls failed: %08lX\n", programmaticId, static_cast<unsigned long>(result));
    std::exit(1);
  }
  return object;
}

Value Parse(const std::wstring& text) {
  Value document = Create(L"MSXML2.DOMDocument.3.0");
  Put(document, L"async", Value(false));
  Call(document, L"loadXML", {Value(text)});
  return document;
}

std::wstring TextAt(const Value& document, const wchar_t* path) {
  return Call(Call(document, L"selectSingleNode", {path}), L"text").Text();
}

void Run(const std::wstring& projectName) {
  const Value parvex = Create(L"Parvex.LegacyORLAPull");

  // 1. Pull takes a command as a document and answers with a document.
  const Value names = Call(Call(parvex, L"Pull", {Parse(L"<COMMAND><NAME>getProjectList</NAME></COMMAND>")}),
                           L"selectNodes", {L"//PROJECT/NAME"});
  for (LONG i = 0; i < Call(names, L"length").Number(); ++i) {
    std::printf("Project: %ls\n", Call(Call(names, L"item", {Value(i)}), L"text").Text().c_str());
  }

  // 2. PullNGORLA takes and gives text. Texts go into a command through a document, so that they are escaped.
  const Value command = Parse(
      L"<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE>"
      L"<UserSelectionTransfer><ProjectName/></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>");
  Put(Call(command, L"selectSingleNode", {L"//ProjectName"}), L"text", Value(projectName));
  const Value quote = Parse(Call(parvex, L"PullNGORLA", {Call(command, L"xml")}).Text());
  std::printf("Tags in the quote: %ld\n", Call(Call(quote, L"selectNodes", {L"//TAG"}), L"length").Number());

  // 3. The codec is a class of its own.
  std::printf("Base64 of Man: %ls\n", Call(Create(L"Parvex.cBinEncoder"), L"Encode", {L"Man"}).Text().c_str());

  // 4. A command that fails for a known reason is answered with returnError -1.
  const Value failed = Parse(Call(parvex, L"PullNGORLA", {L"<COMMAND><NAME>noSuchCommand</NAME></COMMAND>"}).Text());
  std::printf("Failed reply: %ls %ls\n", TextAt(failed, L"//returnError").c_str(),
              TextAt(failed, L"//errorMessage").c_str());

  // 5. Everything else ends the call with an error.
  Failure failure;
  Invoke(parvex, L"PullNGORLA", DISPATCH_METHOD, {L"<COMMAND/>"}, failure);
  std::printf("Failed call: %08lX from %ls: %ls\n", static_cast<unsigned long>(failure.number), failure.source.c_str(),
              failure.description.c_str());
}

}  // namespace

int main() {
  int count = 0;
  LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  const std::wstring projectName = count > 1 ? arguments[1] : L"Riverside Clinic";
  LocalFree(arguments);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  Run(projectName);  // every object is let go of before the apartment ends
  CoUninitialize();
  return 0;
}
