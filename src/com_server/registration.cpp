#include "com_server/registration.h"

#include <cwchar>
#include <functional>
#include <optional>

#include "adapters/windows/system_error.h"
#include "com_server/type_library.h"
#include "seams/automation_error.h"

namespace parvex::com {
namespace {

using windows::ComPointer;

constexpr const wchar_t* kVersion = L".1";

AutomationError Refused(const std::string& doing, LSTATUS status) {
  return AutomationError(static_cast<std::uint32_t>(HRESULT_FROM_WIN32(static_cast<DWORD>(status))), kErrorSource,
                         doing + ": the system refuses it with " + std::to_string(status));
}

void Require(HRESULT result, const std::string& doing) {
  if (FAILED(result)) {
    throw AutomationError(static_cast<std::uint32_t>(result), kErrorSource,
                          doing + ": " + windows::Hex(static_cast<std::uint32_t>(result)));
  }
}

class OpenKey {
 public:
  OpenKey() = default;
  ~OpenKey() {
    if (key_ != nullptr) {
      RegCloseKey(key_);
    }
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  HKEY Get() const { return key_; }
  HKEY* Out() { return &key_; }

 private:
  HKEY key_ = nullptr;
};

std::wstring WideIdText(REFGUID id) {
  wchar_t text[40];
  StringFromGUID2(id, text, 40);
  return text;
}

std::wstring KeyText(HKEY root, const std::wstring& key) {
  wchar_t text[64] = {};
  DWORD size = sizeof(text) - sizeof(wchar_t);
  return RegGetValueW(root, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &size) == ERROR_SUCCESS ? text : L"";
}

bool KeyExists(HKEY root, const std::wstring& key) {
  OpenKey opened;
  return RegOpenKeyExW(root, key.c_str(), 0, KEY_QUERY_VALUE, opened.Out()) == ERROR_SUCCESS;
}

void RegisterClass(RegistryChanges& changes, const ComClass& c, const std::wstring& modulePath, const GUID* libraryId) {
  const std::wstring id = WideIdText(c.id);
  const std::wstring versioned = c.programmaticId + kVersion;
  const std::wstring key = L"CLSID\\" + id;
  changes.Set(key, L"", c.description);
  changes.Set(key + L"\\InprocServer32", L"", modulePath);
  changes.Set(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  changes.Set(key + L"\\ProgID", L"", versioned);
  changes.Set(key + L"\\VersionIndependentProgID", L"", c.programmaticId);
  if (libraryId != nullptr) {
    changes.Set(key + L"\\TypeLib", L"", WideIdText(*libraryId));
  }
  changes.Set(versioned, L"", c.description);
  changes.Set(versioned + L"\\CLSID", L"", id);
  changes.Set(c.programmaticId, L"", c.description);
  changes.Set(c.programmaticId + L"\\CLSID", L"", id);
  changes.Set(c.programmaticId + L"\\CurVer", L"", versioned);
}

void RegisterLibrary(const std::wstring& modulePath) {
  const std::wstring folder = modulePath.substr(0, modulePath.find_last_of(L'\\'));
  Require(RegisterTypeLib(LoadTypeLibrary(modulePath).Get(), const_cast<wchar_t*>(modulePath.c_str()),
                          const_cast<wchar_t*>(folder.c_str())),
          "cannot register the type library of " + windows::Narrow(modulePath));
}

void UnregisterLibrary(const std::wstring& modulePath) {
  TLIBATTR* attributes = nullptr;
  const ComPointer<ITypeLib> library = LoadTypeLibrary(modulePath);
  Require(library->GetLibAttr(&attributes), "cannot read the type library");
  const TLIBATTR read = *attributes;
  library->ReleaseTLibAttr(attributes);
  wchar_t version[16];
  swprintf(version, 16, L"\\%x.%x", read.wMajorVerNum, read.wMinorVerNum);
  if (!KeyExists(HKEY_CLASSES_ROOT, L"TypeLib\\" + WideIdText(read.guid) + version)) {
    return;  // what was not registered is unregistered; systems differ in what they call it
  }
  Require(UnRegisterTypeLib(read.guid, read.wMajorVerNum, read.wMinorVerNum, read.lcid, read.syskind),
          "cannot unregister the type library");
}

void RemoveKey(const std::wstring& key) {
  const LSTATUS status = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
  if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
    throw Refused("cannot remove the registry key " + windows::Narrow(key), status);
  }
}

void UnregisterClass(const ComClass& c) {
  const std::wstring id = WideIdText(c.id);
  for (const std::wstring& programmaticId : {c.programmaticId, c.programmaticId + kVersion}) {
    if (lstrcmpiW(KeyText(HKEY_CLASSES_ROOT, programmaticId + L"\\CLSID").c_str(), id.c_str()) == 0) {
      RemoveKey(programmaticId);
    }
  }
  RemoveKey(L"CLSID\\" + id);
}

}  // namespace

RegistryChanges::~RegistryChanges() {
  for (auto step = undo_.rbegin(); step != undo_.rend(); ++step) {
    Undo(*step);
  }
}

void RegistryChanges::Set(const std::wstring& key, const std::wstring& name, const std::wstring& text) {
  for (std::size_t end = key.find(L'\\'); end != std::wstring::npos; end = key.find(L'\\', end + 1)) {
    MakeKey(key.substr(0, end));
  }
  MakeKey(key);
  Step step{key, false, name, {}};
  DWORD size = 0;
  step.old.existed = RegGetValueW(root_, key.c_str(), name.c_str(), RRF_RT_ANY | RRF_NOEXPAND, &step.old.type, nullptr,
                                  &size) == ERROR_SUCCESS;
  step.old.content.resize(size);
  if (step.old.existed) {
    RegGetValueW(root_, key.c_str(), name.c_str(), RRF_RT_ANY | RRF_NOEXPAND, nullptr, step.old.content.data(), &size);
    step.old.content.resize(size);
  }
  const LSTATUS status = RegSetKeyValueW(root_, key.c_str(), name.c_str(), REG_SZ, text.c_str(),
                                         static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  if (status != ERROR_SUCCESS) {
    throw Refused("cannot write the registry value " + windows::Narrow(key + L"\\" + name), status);
  }
  undo_.push_back(std::move(step));
}

void RegistryChanges::MakeKey(const std::wstring& key) {
  OpenKey made;
  DWORD disposition = 0;
  const LSTATUS status = RegCreateKeyExW(root_, key.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_SET_VALUE,
                                         nullptr, made.Out(), &disposition);
  if (status != ERROR_SUCCESS) {
    throw Refused("cannot make the registry key " + windows::Narrow(key), status);
  }
  if (disposition == REG_CREATED_NEW_KEY) {
    undo_.push_back({key, true, {}, {}});
  }
}

void RegistryChanges::Undo(const Step& step) {
  if (step.madeKey) {
    RegDeleteKeyW(root_, step.key.c_str());
  } else if (step.old.existed) {
    RegSetKeyValueW(root_, step.key.c_str(), step.name.c_str(), step.old.type, step.old.content.data(),
                    static_cast<DWORD>(step.old.content.size()));
  } else {
    RegDeleteKeyValueW(root_, step.key.c_str(), step.name.c_str());
  }
}

void RegisterModule(std::span<const ComClass> classes, const std::wstring& modulePath, const GUID* libraryId) {
  RegistryChanges changes(HKEY_CLASSES_ROOT);
  for (const ComClass& c : classes) {
    RegisterClass(changes, c, modulePath, libraryId);
  }
  if (libraryId != nullptr) {
    RegisterLibrary(modulePath);
  }
  changes.Keep();
}

void UnregisterModule(std::span<const ComClass> classes, const std::wstring& modulePath, const GUID* libraryId) {
  std::optional<AutomationError> first;
  const auto attempt = [&](const std::function<void()>& step) {
    try {
      step();
    } catch (const AutomationError& error) {
      first = first ? first : error;
    }
  };
  if (libraryId != nullptr) {
    attempt([&] { UnregisterLibrary(modulePath); });
  }
  for (const ComClass& c : classes) {
    attempt([&] { UnregisterClass(c); });
  }
  if (first) {
    throw *first;
  }
}

}  // namespace parvex::com
