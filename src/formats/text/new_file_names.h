#pragma once

#include <string>
#include <string_view>

namespace parvex {

// Files that this system writes are written under a name of their own beside the one that they then take. Whoever ends
// too early leaves one behind: "~parvex-", hexadecimal digits, ".tmp".

/// A name that no other program has thought of, whatever its process number. May be taken all the same: of a program
/// that was forked, both halves go on with the same names.
std::string MakeNewFileName();

/// Whether a name may be one of those, of this version or of an earlier one. That of a lock is none.
bool IsNewFileName(std::string_view name);

/// For how long a new file may belong to somebody who still writes it.
inline constexpr int kSecondsOfNewFile = 24 * 60 * 60;

}  // namespace parvex
