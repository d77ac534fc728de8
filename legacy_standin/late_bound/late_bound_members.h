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

/// The texts that a member got; another number or type of arguments is refused.
std::vector<std::string> TextArguments(const automation::Object& object, std::string_view member,
                                       std::span<const automation::Argument> arguments, std::size_t count);

}  // namespace parvex::standin
