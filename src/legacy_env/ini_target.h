#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "seams/platform.h"

namespace parvex {

// Ini access of the exchange code: a section and a file are set once, keys are read and written after. The target is
// one per thread (legacy_env/thread_state.h) and stays set until the next SetIniTarget. Access before the first one
// shows a message box that marks a programming error, deliberately, and gives an empty result.
//
// Each access sees the file as it is at that moment. Who reads many keys of one section in a row opens that section
// itself (PrivateProfile::Section) and so has the file looked at once.

/// Both texts are stored without outer blanks.
void SetIniTarget(const Platform& platform, std::string_view section, std::string_view fileName);

/// The value, at most 254 characters of it; `fallback` for a missing key.
std::string ReadIniString(const Platform& platform, std::string_view key, std::string_view fallback);
std::int32_t ReadIniInt(const Platform& platform, std::string_view key, std::int32_t fallback);
/// Nonzero on success.
std::int32_t WriteIniString(const Platform& platform, std::string_view key, std::string_view value);

}  // namespace parvex
