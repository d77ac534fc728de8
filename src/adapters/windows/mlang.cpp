#include "adapters/windows/mlang.h"

#include <mlang.h>

#include <climits>

#include "adapters/windows/com_pointer.h"

namespace parvex::windows {
namespace {

// The import libraries of the compiler do not know both.
constexpr CLSID kMultiLanguage = {0x275C23E2, 0x3747, 0x11D0, {0x9F, 0xEA, 0x00, 0xAA, 0x00, 0x3F, 0x86, 0x46}};
constexpr IID kIMultiLanguage = {0x275C23E1, 0x3747, 0x11D0, {0x9F, 0xEA, 0x00, 0xAA, 0x00, 0x3F, 0x86, 0x46}};

ComPointer<IMultiLanguage> NewMultiLanguage() {
  ComPointer<IMultiLanguage> languages;
  CoCreateInstance(kMultiLanguage, nullptr, CLSCTX_INPROC_SERVER, kIMultiLanguage,
                   reinterpret_cast<void**>(languages.Out()));
  return languages;
}

/// Runs a conversion twice: for the size, then for the text. It takes all of the input or fails.
template <typename Result, typename Convert>
std::optional<Result> Converted(std::size_t inputSize, Convert convert) {
  if (inputSize == 0) {
    return Result();
  }
  if (inputSize > INT_MAX) {
    return std::nullopt;
  }
  UINT taken = static_cast<UINT>(inputSize);
  UINT size = 0;
  if (convert(&taken, nullptr, &size) != S_OK || size == 0) {
    return std::nullopt;
  }
  Result result(size, typename Result::value_type());
  taken = static_cast<UINT>(inputSize);
  if (convert(&taken, result.data(), &size) != S_OK || size > result.size()) {
    return std::nullopt;
  }
  result.resize(size);
  return result;
}

}  // namespace

std::optional<UINT> CodePageByMlang(std::string_view encoding) {
  const auto languages = NewMultiLanguage();
  MIMECSETINFO charset = {};
  const Bstr name(encoding);
  if (!languages || languages->GetCharsetInfo(name.Get(), &charset) != S_OK || charset.uiInternetEncoding == 0) {
    return std::nullopt;
  }
  return charset.uiInternetEncoding;
}

std::optional<std::wstring> UnitsByMlang(std::string_view bytes, UINT codePage) {
  const auto languages = NewMultiLanguage();
  if (!languages) {
    return std::nullopt;
  }
  return Converted<std::wstring>(bytes.size(), [&](UINT* taken, wchar_t* units, UINT* size) {
    DWORD mode = 0;
    return languages->ConvertStringToUnicode(&mode, codePage, const_cast<char*>(bytes.data()), taken, units, size);
  });
}

std::optional<std::string> BytesByMlang(std::wstring_view units, UINT codePage) {
  const auto languages = NewMultiLanguage();
  if (!languages) {
    return std::nullopt;
  }
  return Converted<std::string>(units.size(), [&](UINT* taken, char* bytes, UINT* size) {
    DWORD mode = 0;
    return languages->ConvertStringFromUnicode(&mode, codePage, const_cast<wchar_t*>(units.data()), taken, bytes, size);
  });
}

}  // namespace parvex::windows
