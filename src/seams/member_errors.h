#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "seams/automation_error.h"

namespace parvex::automation {

// How a call is refused that does not fit its late-bound object: the same number and text on every platform. `object`
// is the object's name.

inline constexpr std::uint32_t kNoSuchMember = 0x800A0000u + 438u;
inline constexpr std::uint32_t kWrongArgumentCount = 0x800A0000u + 450u;

/// 438. The object has no such member, or not as the property or method that was asked for.
AutomationError NoSuchMember(std::string_view object, std::string_view member);

/// 450. The member takes another number of arguments.
AutomationError WrongArgumentCount(std::string_view object, std::string_view member, std::size_t given);

/// 13. An argument has another type than the member wants, or is not by reference where it has to be. `number` counts
/// from 1; nothing where the object does not tell.
AutomationError WrongArgumentType(std::string_view object, std::string_view member, std::optional<std::size_t> number);

}  // namespace parvex::automation
