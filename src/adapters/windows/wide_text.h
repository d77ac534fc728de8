#pragma once

#include <string>
#include <string_view>

namespace parvex::windows {

// Between the UTF-16 of the system's interfaces and the UTF-8 kept inside. Nothing is lost on the way there and back:
// an unpaired surrogate travels as its three-byte form. A byte that is no UTF-8 becomes U+FFFD.

std::wstring Widen(std::string_view text);
std::string Narrow(std::wstring_view text);

}  // namespace parvex::windows
