#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "seams/machine_locks.h"

namespace parvex {

// What a lock's file (kLockFile) says of who holds the lock. Programs of both bitnesses and of other versions read it.

/// No more of such a file is read.
inline constexpr std::size_t kMostOfHolder = 1024;

/// "u 4711 /path/of/the/program", or "a" in front where no user is waited for.
std::string TextOfHolder(const MachineLocks::Holder& holder);

/// What can be read of such a text; a text that is none names nobody.
MachineLocks::Holder HolderIn(std::string_view text);

}  // namespace parvex
