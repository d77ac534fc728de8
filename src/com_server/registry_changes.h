#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace parvex::com {

/// On a 64-bit Windows programs of each bitness see their own CLSID and Interface keys; this opens the keys that the
/// programs of the other bitness see. On a 32-bit Windows there are no others, and it opens the same.
inline constexpr REGSAM kOtherView = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;

/// An identifier as the registry writes it, in braces.
std::wstring KeyName(REFGUID id);

/// The keys of classes and type libraries of a hive, HKEY_LOCAL_MACHINE or HKEY_CURRENT_USER. Keys are given by their
/// path below Software\Classes.
class ClassesKey {
 public:
  explicit ClassesKey(HKEY hive) : hive_(hive) {}

  bool Exists(const std::wstring& key, REGSAM view = 0) const;
  bool HasKeysBelow(const std::wstring& key) const;
  /// A text value of at most 63 characters; an empty name is the key's own value. Empty when there is none.
  std::wstring Text(const std::wstring& key, const std::wstring& name = {}, REGSAM view = 0) const;
  /// Removes a key with all below it; one that does not exist is no error. An AutomationError that names the key when
  /// the system refuses.
  void Remove(const std::wstring& key, REGSAM view = 0) const;

  HKEY Hive() const { return hive_; }

 private:
  HKEY hive_;
};

/// Values written there, as one step: what was written is undone when this is destroyed without Keep(). Keys that
/// existed stay, and values that were replaced get their old content back.
class RegistryChanges {
 public:
  explicit RegistryChanges(ClassesKey classes) : classes_(classes) {}
  ~RegistryChanges();
  RegistryChanges(const RegistryChanges&) = delete;
  RegistryChanges& operator=(const RegistryChanges&) = delete;

  /// Sets a text value, making its key and the keys above it; an empty name is the key's own value. An AutomationError
  /// that names key and value when the system refuses.
  void Set(const std::wstring& key, const std::wstring& name, const std::wstring& text, REGSAM view = 0);
  void SetNumber(const std::wstring& key, const std::wstring& name, DWORD number);
  void Keep() { undo_.clear(); }

 private:
  struct OldValue {
    bool existed = false;
    DWORD type = REG_NONE;
    std::vector<BYTE> content;
  };
  struct Step {
    std::wstring path;
    REGSAM view = 0;
    bool madeKey = false;  ///< the key was made; else a value was set
    std::wstring name;
    OldValue old;
  };

  void SetValue(const std::wstring& key, const std::wstring& name, DWORD type, const void* content, std::size_t size,
                REGSAM view);
  void MakeKey(const std::wstring& key, REGSAM view);
  void Undo(const Step& step);

  ClassesKey classes_;
  std::vector<Step> undo_;
};

}  // namespace parvex::com
