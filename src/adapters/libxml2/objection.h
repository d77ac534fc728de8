#pragma once

#include <string>
#include <string_view>

namespace parvex::xml {

/// How a parse error begins: its place, both from 1.
std::string At(long line, long column);

/// Why a text cannot be given to the parser; empty when it can.
std::string Objection(std::string_view text);

}  // namespace parvex::xml
