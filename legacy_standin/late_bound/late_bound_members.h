#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "seams/automation.h"

namespace parvex::standin {

// What the substitute's classes have in common as late-bound objects.

/// The failure that a class raises at a member which it does not have (438).
[[noreturn]] void RefuseMember(const automation::Object& object, std::string_view member);
/// A value that a member cannot work with (5).
[[noreturn]] void RefuseValue(const automation::Object& object, std::string_view member, const std::string& reason);

/// Fails when the member is the one that standin.json names.
void FailWhereTold(std::string_view failAt, const automation::Object& object, std::string_view member);

/// Another number of arguments is refused (450).
void RequireCount(const automation::Object& object, std::string_view member,
                  std::span<const automation::Argument> arguments, std::size_t count);

/// How a member wants its texts. One that is declared to take them by reference refuses values, as the typed servers of
/// the legacy application may.
enum class Passed { AnyHow, ByReference };

/// The texts that a member got; another number (450) or type (13) of arguments is refused.
std::vector<std::string> TextArguments(const automation::Object& object, std::string_view member,
                                       std::span<const automation::Argument> arguments, std::size_t count,
                                       Passed passed = Passed::AnyHow);

}  // namespace parvex::standin
