#pragma once

#include <msxml2.h>
#include <oleauto.h>
#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "adapters/windows/com_pointer.h"

namespace parvex::test {

// What a host of the registered component needs.

using windows::Bstr;
using windows::ComPointer;
using windows::TextOf;
using windows::Variant;

/// How the runtime error 13 arrives.
constexpr HRESULT kTypeMismatch = static_cast<HRESULT>(0x800A000D);

/// An object by its programmatic id; null when it cannot be made.
template <typename Interface>
ComPointer<Interface> Create(std::string_view programmaticId) {
  CLSID id;
  ComPointer<Interface> object;
  if (SUCCEEDED(CLSIDFromProgID(windows::Widen(programmaticId).c_str(), &id))) {
    CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), reinterpret_cast<void**>(object.Out()));
  }
  return object;
}

/// An object by its class.
template <typename Class, typename Interface>
ComPointer<Interface> Make() {
  ComPointer<Interface> object;
  CoCreateInstance(__uuidof(Class), nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                   reinterpret_cast<void**>(object.Out()));
  return object;
}

/// How many references the object has, the one looked through among them.
template <typename Interface>
ULONG ReferenceCount(const ComPointer<Interface>& object) {
  object->AddRef();
  return object->Release();
}

/// The error information that a failed call left on this thread, which is taken; all empty when there is none.
struct RaisedError {
  std::string source;
  std::string description;
  GUID interfaceId = GUID_NULL;
};
RaisedError TakeErrorInfo();

/// A call by name.
struct LateCall {
  HRESULT result = S_OK;
  Variant value;
  HRESULT number = S_OK;  ///< of the exception
  std::string source;
  std::string description;
};
/// Arguments in the order in which they are written.
LateCall CallByName(IDispatch* object, std::string_view member, WORD kind, std::vector<VARIANT> arguments = {});

/// Variants that own nothing.
VARIANT Borrowed(BSTR text);
VARIANT Borrowed(IDispatch* object);
VARIANT Borrowed(SAFEARRAY* array, VARTYPE elementType);
VARIANT Number(LONG value);
/// A variable that a script passes by reference.
VARIANT Reference(VARIANT* variable);

// Interfaces of MSXML that the import libraries do not name.
inline constexpr IID kXmlNode = {0x2933bf80, 0x7b36, 0x11d2, {0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60}};
inline constexpr IID kXmlDocument = {0x2933bf81, 0x7b36, 0x11d2, {0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60}};
inline constexpr IID kXmlDocument2 = {0x2933bf95, 0x7b36, 0x11d2, {0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60}};

/// A document of MSXML 3.
ComPointer<IXMLDOMDocument2> NewDocument(std::string_view xml);
/// The text of the first node at that path; "(none)" when there is none.
std::string TextAt(IXMLDOMDocument* document, std::string_view path);

/// The command document of a command whose parameters are texts.
std::string Command(std::string_view name,
                    const std::vector<std::pair<std::string_view, std::string_view>>& parameters = {});

/// The folder of the registered Parvex.dll, with its final backslash.
std::wstring ComponentFolder();

/// While it lives, a DLL of the component's folder is not registered.
class Unregistered {
 public:
  explicit Unregistered(const wchar_t* dll);
  ~Unregistered();
  Unregistered(const Unregistered&) = delete;
  Unregistered& operator=(const Unregistered&) = delete;

 private:
  HMODULE module_;
};

/// What an exported function without parameters gives back; E_NOTIMPL when the module has none of that name.
HRESULT CallExport(HMODULE module, const char* name);

/// The module's DllInstall; E_NOTIMPL when it has none.
HRESULT CallInstall(HMODULE module, bool install, const wchar_t* words);

/// While it lives, the substitute application that is created anew behaves as this standin.json says.
class StandinMisbehaves {
 public:
  explicit StandinMisbehaves(std::string_view json);
  ~StandinMisbehaves();
  StandinMisbehaves(const StandinMisbehaves&) = delete;
  StandinMisbehaves& operator=(const StandinMisbehaves&) = delete;
};

}  // namespace parvex::test
