#include "com_server/library_registration.h"

#include <cwchar>
#include <vector>

#include "adapters/windows/com_pointer.h"
#include "adapters/windows/system_error.h"
#include "adapters/windows/wide_text.h"
#include "com_server/type_library.h"
#include "seams/automation_error.h"

namespace parvex::com {
namespace {

using windows::Bstr;
using windows::ComPointer;

constexpr const wchar_t* kPlatform = sizeof(void*) == 8 ? L"\\win64" : L"\\win32";
// The system's own proxies: those that carry calls by type information, and those of late-bound calls.
constexpr const wchar_t* kAutomationProxy = L"{00020424-0000-0000-C000-000000000046}";
constexpr const wchar_t* kDispatchProxy = L"{00020420-0000-0000-C000-000000000046}";

struct DescribedInterface {
  std::wstring key;
  std::wstring name;
  const wchar_t* proxy;
};

struct DescribedLibrary {
  std::wstring id;
  std::wstring version;  // "1.0"
  std::wstring description;
  std::wstring flags;
  std::wstring language;
  std::vector<DescribedInterface> interfaces;

  std::wstring Key() const { return L"TypeLib\\" + id; }
  std::wstring VersionKey() const { return Key() + L"\\" + version; }
  std::wstring LanguageKey() const { return VersionKey() + L"\\" + language; }
};

void Require(HRESULT result, const std::wstring& modulePath) {
  if (FAILED(result)) {
    throw AutomationError(static_cast<std::uint32_t>(result), kErrorSource,
                          "the type library of " + windows::Narrow(modulePath) +
                              " cannot be read: " + windows::Hex(static_cast<std::uint32_t>(result)));
  }
}

std::wstring Formatted(const wchar_t* format, unsigned first, unsigned second = 0) {
  wchar_t text[32];
  swprintf(text, 32, format, first, second);
  return text;
}

// Whether calls of it are carried by its library: it is called late, or all its types are the automation's.
bool IsCarried(const TYPEATTR& read) {
  return read.typekind == TKIND_DISPATCH ||
         (read.typekind == TKIND_INTERFACE && (read.wTypeFlags & (TYPEFLAG_FOLEAUTOMATION | TYPEFLAG_FDUAL)) != 0);
}

DescribedLibrary Describe(const std::wstring& modulePath) {
  const ComPointer<ITypeLib> library = LoadTypeLibrary(modulePath);
  TLIBATTR* attributes = nullptr;
  Require(library->GetLibAttr(&attributes), modulePath);
  DescribedLibrary described = {KeyName(attributes->guid),
                                Formatted(L"%x.%x", attributes->wMajorVerNum, attributes->wMinorVerNum),
                                {},
                                Formatted(L"%u", attributes->wLibFlags),
                                Formatted(L"%x", static_cast<unsigned>(attributes->lcid)),
                                {}};
  library->ReleaseTLibAttr(attributes);
  Bstr text;
  Require(library->GetDocumentation(-1, nullptr, text.Out(), nullptr, nullptr), modulePath);
  described.description = windows::Widen(text.Text());
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ComPointer<ITypeInfo> info;
    TYPEATTR* read = nullptr;
    Bstr name;
    Require(library->GetTypeInfo(i, info.Out()), modulePath);
    Require(library->GetDocumentation(static_cast<INT>(i), name.Out(), nullptr, nullptr, nullptr), modulePath);
    Require(info->GetTypeAttr(&read), modulePath);
    if (IsCarried(*read)) {
      const bool isLateOnly = read->typekind == TKIND_DISPATCH && (read->wTypeFlags & TYPEFLAG_FDUAL) == 0;
      described.interfaces.push_back({L"Interface\\" + KeyName(read->guid), windows::Widen(name.Text()),
                                      isLateOnly ? kDispatchProxy : kAutomationProxy});
    }
    info->ReleaseTypeAttr(read);
  }
  return described;
}

}  // namespace

void RegisterLibrary(RegistryChanges& changes, const std::wstring& modulePath) {
  const DescribedLibrary library = Describe(modulePath);
  changes.Set(library.VersionKey(), L"", library.description);
  changes.Set(library.VersionKey() + L"\\FLAGS", L"", library.flags);
  changes.Set(library.LanguageKey() + kPlatform, L"", modulePath);
  changes.Set(library.VersionKey() + L"\\HELPDIR", L"", modulePath.substr(0, modulePath.find_last_of(L'\\')));
  for (const DescribedInterface& i : library.interfaces) {
    for (const REGSAM view : {REGSAM{0}, kOtherView}) {
      changes.Set(i.key, L"", i.name, view);
      changes.Set(i.key + L"\\ProxyStubClsid32", L"", i.proxy, view);
      changes.Set(i.key + L"\\TypeLib", L"", library.id, view);
      changes.Set(i.key + L"\\TypeLib", L"Version", library.version, view);
    }
  }
}

void UnregisterLibrary(ClassesKey classes, const std::wstring& modulePath) {
  const DescribedLibrary library = Describe(modulePath);
  if (!classes.Exists(library.VersionKey())) {
    return;
  }
  classes.Remove(library.LanguageKey() + kPlatform);
  if (classes.HasKeysBelow(library.LanguageKey())) {
    return;  // the other bitness's
  }
  for (const DescribedInterface& i : library.interfaces) {
    for (const REGSAM view : {REGSAM{0}, kOtherView}) {
      if (lstrcmpiW(classes.Text(i.key + L"\\TypeLib", {}, view).c_str(), library.id.c_str()) == 0) {
        classes.Remove(i.key, view);
      }
    }
  }
  classes.Remove(library.VersionKey());
  if (!classes.HasKeysBelow(library.Key())) {
    classes.Remove(library.Key());
  }
}

}  // namespace parvex::com
