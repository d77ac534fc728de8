#pragma once

#include <optional>
#include <string_view>

namespace parvex {

/// The Windows code page that a name in an XML declaration stands for, in any letter case; nothing for a name that is
/// not known here. 1200 and 1201 are UTF-16 in the two byte orders, 65001 is UTF-8. A name means what it means on
/// Windows everywhere: "gb2312" is 936 and "Shift_JIS" 932, which hold more characters than the standards of those
/// names.
std::optional<unsigned> CodePageNamed(std::string_view encoding);

}  // namespace parvex
