#include "adapters/windows/code_page_text.h"

#include <climits>

#include "adapters/windows/mlang.h"
#include "adapters/windows/wide_text.h"
#include "seams/automation_error.h"

namespace parvex::windows {
namespace {

constexpr UINT kUtf7 = 65000;
constexpr UINT kUtf8 = 65001;
constexpr UINT kGb18030 = 54936;

/// Code pages with states or of symbols, for which the system takes no flag at all.
bool TakesNoFlags(UINT codePage) {
  return codePage == 42 || codePage == 52936 || codePage == kUtf7 || (codePage >= 50220 && codePage <= 50229) ||
         (codePage >= 57002 && codePage <= 57011);
}

/// Whether the system says that a character was lacking, and takes the flag against look-alikes. Where it does not, a
/// character is lacking when it does not come back.
bool TellsWhatIsLacking(UINT codePage) { return !TakesNoFlags(codePage) && codePage != kUtf8 && codePage != kGb18030; }

int LengthOf(std::size_t size, UINT codePage) {
  if (size > INT_MAX) {
    throw MakeRuntimeError(RuntimeError::InvalidCall, "a text of " + std::to_string(size) +
                                                          " units is too long for a conversion with the code page " +
                                                          std::to_string(codePage));
  }
  return static_cast<int>(size);
}

/// Nothing when the system refuses. `lacking` is set when it tells that a character was replaced.
std::optional<std::string> Narrowed(std::wstring_view units, UINT codePage, const SystemConversions& system,
                                    bool& lacking) {
  if (units.empty()) {
    return std::string();
  }
  const bool tells = TellsWhatIsLacking(codePage);
  const DWORD flags = tells ? WC_NO_BEST_FIT_CHARS : 0;
  const int count = LengthOf(units.size(), codePage);
  const int size = system.toBytes(codePage, flags, units.data(), count, nullptr, 0, nullptr, nullptr);
  std::string bytes(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
  BOOL replaced = FALSE;
  if (size <= 0 || system.toBytes(codePage, flags, units.data(), count, bytes.data(), size, nullptr,
                                  tells ? &replaced : nullptr) != size) {
    return std::nullopt;
  }
  lacking = replaced != FALSE;
  return bytes;
}

std::optional<std::wstring> Widened(std::string_view bytes, UINT codePage, DWORD flags,
                                    const SystemConversions& system) {
  if (bytes.empty()) {
    return std::wstring();
  }
  const int count = LengthOf(bytes.size(), codePage);
  const int size = system.toUnits(codePage, flags, bytes.data(), count, nullptr, 0);
  std::wstring units(size > 0 ? static_cast<std::size_t>(size) : 0, L'\0');
  if (size <= 0 || system.toUnits(codePage, flags, bytes.data(), count, units.data(), size) != size) {
    return std::nullopt;
  }
  return units;
}

[[noreturn]] void Refused(const char* what, UINT codePage, DWORD systemCode) {
  throw MakeRuntimeError(RuntimeError::InvalidCall, std::string(what) + " the code page " + std::to_string(codePage) +
                                                        ": the system's conversion failed with " +
                                                        std::to_string(systemCode));
}

}  // namespace

std::string ToCodePage(std::string_view text, UINT codePage, const SystemConversions& system) {
  bool lacking = false;
  std::optional<std::string> bytes = Narrowed(Widen(text), codePage, system, lacking);
  if (!bytes) {
    Refused("cannot write a text in", codePage, GetLastError());
  }
  return *std::move(bytes);
}

std::string FromCodePage(std::string_view bytes, UINT codePage, const SystemConversions& system) {
  const std::optional<std::wstring> units = Widened(bytes, codePage, 0, system);
  if (!units) {
    Refused("cannot read a text in", codePage, GetLastError());
  }
  return Narrow(*units);
}

bool IsKnownCodePage(UINT codePage) { return FromCodePageExactly("A", codePage) == "A"; }

std::optional<std::string> ToCodePageExactly(std::string_view text, UINT codePage, const SystemConversions& system) {
  const std::wstring units = Widen(text);
  bool lacking = false;
  std::optional<std::string> bytes =
      IsValidCodePage(codePage) ? Narrowed(units, codePage, system, lacking) : BytesByMlang(units, codePage);
  const bool isKept =
      bytes && !lacking && (TellsWhatIsLacking(codePage) || FromCodePageExactly(*bytes, codePage, system) == text);
  return isKept ? bytes : std::nullopt;
}

std::optional<std::string> FromCodePageExactly(std::string_view bytes, UINT codePage, const SystemConversions& system) {
  const DWORD flags = TakesNoFlags(codePage) ? 0 : MB_ERR_INVALID_CHARS;
  const std::optional<std::wstring> units =
      IsValidCodePage(codePage) ? Widened(bytes, codePage, flags, system) : UnitsByMlang(bytes, codePage);
  return units ? std::optional(Narrow(*units)) : std::nullopt;
}

}  // namespace parvex::windows
