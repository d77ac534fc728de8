#include "com_server/registry_changes.h"

#include "adapters/windows/wide_text.h"
#include "seams/automation_error.h"

namespace parvex::com {
namespace {

class OpenKey {
 public:
  /// One that cannot be opened is none.
  OpenKey(HKEY hive, const std::wstring& path, REGSAM access) {
    status_ = RegOpenKeyExW(hive, path.c_str(), 0, access, &key_);
  }
  ~OpenKey() {
    if (key_ != nullptr) {
      RegCloseKey(key_);
    }
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  HKEY Get() const { return key_; }
  LSTATUS Status() const { return status_; }

 private:
  HKEY key_ = nullptr;
  LSTATUS status_;
};

std::wstring PathOf(const std::wstring& key) { return L"Software\\Classes\\" + key; }

AutomationError Refused(const std::string& doing, LSTATUS status) {
  return AutomationError(static_cast<std::uint32_t>(HRESULT_FROM_WIN32(static_cast<DWORD>(status))), kErrorSource,
                         doing + ": the system refuses it with " + std::to_string(status));
}

}  // namespace

std::wstring KeyName(REFGUID id) {
  wchar_t text[40];
  StringFromGUID2(id, text, 40);
  return text;
}

bool ClassesKey::Exists(const std::wstring& key, REGSAM view) const {
  return OpenKey(hive_, PathOf(key), KEY_QUERY_VALUE | view).Status() == ERROR_SUCCESS;
}

bool ClassesKey::HasKeysBelow(const std::wstring& key) const {
  const OpenKey opened(hive_, PathOf(key), KEY_QUERY_VALUE);
  DWORD count = 0;
  return opened.Status() == ERROR_SUCCESS &&
         RegQueryInfoKeyW(opened.Get(), nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr, nullptr, nullptr,
                          nullptr, nullptr) == ERROR_SUCCESS &&
         count > 0;
}

std::wstring ClassesKey::Text(const std::wstring& key, const std::wstring& name, REGSAM view) const {
  const OpenKey opened(hive_, PathOf(key), KEY_QUERY_VALUE | view);
  wchar_t text[64] = {};
  DWORD size = sizeof(text);
  const bool isRead =
      opened.Status() == ERROR_SUCCESS &&
      RegGetValueW(opened.Get(), nullptr, name.c_str(), RRF_RT_REG_SZ, nullptr, text, &size) == ERROR_SUCCESS;
  return isRead ? text : L"";
}

void ClassesKey::Remove(const std::wstring& key, REGSAM view) const {
  const std::wstring path = PathOf(key);
  LSTATUS status;
  {
    const OpenKey opened(hive_, path, DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE | view);
    status = opened.Status() == ERROR_SUCCESS ? RegDeleteTreeW(opened.Get(), nullptr) : opened.Status();
  }
  if (status == ERROR_SUCCESS) {
    status = RegDeleteKeyExW(hive_, path.c_str(), view, 0);
  }
  if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
    throw Refused("cannot remove the registry key " + windows::Narrow(key), status);
  }
}

RegistryChanges::~RegistryChanges() {
  for (auto step = undo_.rbegin(); step != undo_.rend(); ++step) {
    Undo(*step);
  }
}

void RegistryChanges::Set(const std::wstring& key, const std::wstring& name, const std::wstring& text, REGSAM view) {
  SetValue(key, name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t), view);
}

void RegistryChanges::SetNumber(const std::wstring& key, const std::wstring& name, DWORD number) {
  SetValue(key, name, REG_DWORD, &number, sizeof number, 0);
}

void RegistryChanges::SetValue(const std::wstring& key, const std::wstring& name, DWORD type, const void* content,
                               std::size_t size, REGSAM view) {
  for (std::size_t end = key.find(L'\\'); end != std::wstring::npos; end = key.find(L'\\', end + 1)) {
    MakeKey(key.substr(0, end), view);
  }
  MakeKey(key, view);
  const OpenKey opened(classes_.Hive(), PathOf(key), KEY_QUERY_VALUE | KEY_SET_VALUE | view);
  Step step{PathOf(key), view, false, name, {}};
  DWORD oldSize = 0;
  step.old.existed =
      RegQueryValueExW(opened.Get(), name.c_str(), nullptr, &step.old.type, nullptr, &oldSize) == ERROR_SUCCESS;
  if (step.old.existed) {
    step.old.content.resize(oldSize);
    RegQueryValueExW(opened.Get(), name.c_str(), nullptr, nullptr, step.old.content.data(), &oldSize);
    step.old.content.resize(oldSize);
  }
  const LSTATUS status = opened.Status() != ERROR_SUCCESS
                             ? opened.Status()
                             : RegSetValueExW(opened.Get(), name.c_str(), 0, type, static_cast<const BYTE*>(content),
                                              static_cast<DWORD>(size));
  if (status != ERROR_SUCCESS) {
    throw Refused("cannot write the registry value " + windows::Narrow(key + L"\\" + name), status);
  }
  undo_.push_back(std::move(step));
}

void RegistryChanges::MakeKey(const std::wstring& key, REGSAM view) {
  const std::wstring path = PathOf(key);
  HKEY made = nullptr;
  DWORD disposition = 0;
  const LSTATUS status = RegCreateKeyExW(classes_.Hive(), path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                         KEY_QUERY_VALUE | view, nullptr, &made, &disposition);
  if (status != ERROR_SUCCESS) {
    throw Refused("cannot make the registry key " + windows::Narrow(key), status);
  }
  RegCloseKey(made);
  if (disposition == REG_CREATED_NEW_KEY) {
    undo_.push_back({path, view, true, {}, {}});
  }
}

void RegistryChanges::Undo(const Step& step) {
  if (step.madeKey) {
    RegDeleteKeyExW(classes_.Hive(), step.path.c_str(), step.view, 0);
    return;
  }
  const OpenKey opened(classes_.Hive(), step.path, KEY_SET_VALUE | step.view);
  if (step.old.existed) {
    RegSetValueExW(opened.Get(), step.name.c_str(), 0, step.old.type, step.old.content.data(),
                   static_cast<DWORD>(step.old.content.size()));
  } else {
    RegDeleteValueW(opened.Get(), step.name.c_str());
  }
}

}  // namespace parvex::com
