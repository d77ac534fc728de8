#include "com_server/registration.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "adapters/windows/wide_text.h"
#include "com_server/library_registration.h"
#include "com_server/registry_changes.h"
#include "seams/automation_error.h"

namespace parvex::com {
namespace {

constexpr const wchar_t* kVersion = L".1";
// In which process the system serves a class whose module it finds in both bitnesses: one of this module's.
constexpr DWORD kServerBitness = sizeof(void*) == 8 ? 3 : 2;

ClassesKey ClassesFor(const RegistrationKind& kind) {
  return ClassesKey(kind.forUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE);
}

std::wstring ClassKey(const ComClass& c) { return L"CLSID\\" + KeyName(c.id); }
std::wstring ApplicationKey(const GUID& id) { return L"AppID\\" + KeyName(id); }

void RegisterClass(RegistryChanges& changes, const ComClass& c, const std::wstring& modulePath, const GUID* libraryId) {
  const std::wstring id = KeyName(c.id);
  const std::wstring versioned = c.programmaticId + kVersion;
  const std::wstring key = ClassKey(c);
  changes.Set(key, L"", c.description);
  changes.Set(key + L"\\InprocServer32", L"", modulePath);
  changes.Set(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  changes.Set(key + L"\\ProgID", L"", versioned);
  changes.Set(key + L"\\VersionIndependentProgID", L"", c.programmaticId);
  if (libraryId != nullptr) {
    changes.Set(key + L"\\TypeLib", L"", KeyName(*libraryId));
  }
  changes.Set(versioned, L"", c.description);
  changes.Set(versioned + L"\\CLSID", L"", id);
  changes.Set(c.programmaticId, L"", c.description);
  changes.Set(c.programmaticId + L"\\CLSID", L"", id);
  changes.Set(c.programmaticId + L"\\CurVer", L"", versioned);
}

void RegisterSurrogate(RegistryChanges& changes, std::span<const ComClass> classes, const GUID& application) {
  const std::wstring key = ApplicationKey(application);
  changes.Set(key, L"", L"Parvex");
  changes.Set(key, L"DllSurrogate", L"");  // empty: the system's own surrogate program
  changes.SetNumber(key, L"PreferredServerBitness", kServerBitness);
  for (const ComClass& c : classes) {
    changes.Set(ClassKey(c), L"AppID", KeyName(application));
  }
}

void UnregisterClass(ClassesKey classes, const ComClass& c) {
  const std::wstring id = KeyName(c.id);
  classes.Remove(ClassKey(c));
  // Asked for when this bitness's is gone: on a system with one bitness it is the same key.
  if (classes.Exists(ClassKey(c) + L"\\InprocServer32", kOtherView)) {
    return;
  }
  for (const std::wstring& programmaticId : {c.programmaticId, c.programmaticId + kVersion}) {
    if (lstrcmpiW(classes.Text(programmaticId + L"\\CLSID").c_str(), id.c_str()) == 0) {
      classes.Remove(programmaticId);
    }
  }
}

// Behind the classes.
void UnregisterSurrogate(ClassesKey key, std::span<const ComClass> classes, const GUID& application) {
  for (const ComClass& c : classes) {
    if (lstrcmpiW(key.Text(ClassKey(c), L"AppID", kOtherView).c_str(), KeyName(application).c_str()) == 0) {
      return;
    }
  }
  key.Remove(ApplicationKey(application));
}

AutomationError RefusedWord(const std::wstring& word, const std::string& why) {
  return AutomationError(static_cast<std::uint32_t>(E_INVALIDARG), kErrorSource,
                         FailureText("cannot register as", windows::Narrow(word), why));
}

}  // namespace

RegistrationKind ReadRegistrationKind(std::wstring_view words, const GUID* application) {
  constexpr std::wstring_view kBetween = L" ,\t";
  RegistrationKind kind;
  while ((words = words.substr(std::min(words.find_first_not_of(kBetween), words.size()))).size() > 0) {
    const std::wstring word(words.substr(0, words.find_first_of(kBetween)));
    words.remove_prefix(word.size());
    if (lstrcmpiW(word.c_str(), L"user") == 0) {
      kind.forUser = true;
    } else if (lstrcmpiW(word.c_str(), L"surrogate") != 0) {
      throw RefusedWord(word, "the words are user and surrogate");
    } else if (application == nullptr) {
      throw RefusedWord(word, "this server has no surrogate");
    } else {
      kind.surrogate = application;
    }
  }
  return kind;
}

void RegisterModule(std::span<const ComClass> classes, const std::wstring& modulePath, const GUID* libraryId,
                    const RegistrationKind& kind) {
  RegistryChanges changes(ClassesFor(kind));
  for (const ComClass& c : classes) {
    RegisterClass(changes, c, modulePath, libraryId);
  }
  if (libraryId != nullptr) {
    RegisterLibrary(changes, modulePath);
  }
  if (kind.surrogate != nullptr) {
    RegisterSurrogate(changes, classes, *kind.surrogate);
  }
  changes.Keep();
}

void UnregisterModule(std::span<const ComClass> classes, const std::wstring& modulePath, const GUID* libraryId,
                      const RegistrationKind& kind) {
  std::optional<AutomationError> first;
  const auto attempt = [&](const std::function<void()>& step) {
    try {
      step();
    } catch (const AutomationError& error) {
      first = first ? first : error;
    }
  };
  const ClassesKey key = ClassesFor(kind);
  if (libraryId != nullptr) {
    attempt([&] { UnregisterLibrary(key, modulePath); });
  }
  for (const ComClass& c : classes) {
    attempt([&] { UnregisterClass(key, c); });
  }
  if (kind.surrogate != nullptr) {
    attempt([&] { UnregisterSurrogate(key, classes, *kind.surrogate); });
  }
  if (first) {
    throw *first;
  }
}

}  // namespace parvex::com
