#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <vector>

#include "com_server/class_factory.h"

namespace parvex::com {

/// Texts written below a registry key, as one step: what was written is undone when this is destroyed without Keep().
/// Keys that existed stay, and values that were replaced get their old content back.
class RegistryChanges {
 public:
  explicit RegistryChanges(HKEY root) : root_(root) {}
  ~RegistryChanges();
  RegistryChanges(const RegistryChanges&) = delete;
  RegistryChanges& operator=(const RegistryChanges&) = delete;

  /// Sets a text value, making its key and the keys above it; an empty name is the key's own value. An AutomationError
  /// that names key and value when the system refuses.
  void Set(const std::wstring& key, const std::wstring& name, const std::wstring& text);
  void Keep() { undo_.clear(); }

 private:
  struct OldValue {
    bool existed = false;
    DWORD type = REG_NONE;
    std::vector<BYTE> content;
  };
  struct Step {
    std::wstring key;
    bool madeKey = false;  ///< the key was made; else a value was set
    std::wstring name;
    OldValue old;
  };

  void MakeKey(const std::wstring& key);
  void Undo(const Step& step);

  HKEY root_;
  std::vector<Step> undo_;
};

/// Registers the classes of a module, in-process and apartment-threaded, under versioned and version-independent
/// programmatic ids, and the type library that is embedded in the module, if `libraryId` names one. The first failure
/// is an AutomationError, and what had been written then is undone.
void RegisterModule(std::span<const ComClass> classes, const std::wstring& modulePath, const GUID* libraryId);

/// Removes what RegisterModule writes. A programmatic id that meanwhile names another class stays. Goes on behind a
/// failure and reports the first one.
void UnregisterModule(std::span<const ComClass> classes, const std::wstring& modulePath, const GUID* libraryId);

}  // namespace parvex::com
