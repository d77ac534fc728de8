#include "adapters/windows/ansi_text.h"

#include <windows.h>

#include "adapters/windows/wide_text.h"

namespace parvex::windows {

std::string ToAnsi(std::string_view text) {
  const std::wstring wide = Widen(text);
  const int units = static_cast<int>(wide.size());
  // Without best fit: a look-alike letter would change a name without notice.
  const int size = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), units, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), units, bytes.data(), size, nullptr, nullptr);
  return bytes;
}

std::string FromAnsi(std::string_view bytes) {
  const int count = static_cast<int>(bytes.size());
  const int units = MultiByteToWideChar(CP_ACP, 0, bytes.data(), count, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(units), L'\0');
  MultiByteToWideChar(CP_ACP, 0, bytes.data(), count, wide.data(), units);
  return Narrow(wide);
}

}  // namespace parvex::windows
