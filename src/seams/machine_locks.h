#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace parvex {

/// The file of a locked folder that says who holds the lock, where an adapter keeps one. It belongs to nobody's data.
inline constexpr std::string_view kLockFile = "~parvex-lock.tmp";

/// Locks that the programs of one machine hold against each other, whoever their users are. A program that ends lets go
/// of what it held, however it ends. Programs of others know nothing of them.
class MachineLocks {
 public:
  /// A lock that is held until this ends. It may end in another thread.
  class Lock {
   public:
    virtual ~Lock() = default;
  };

  /// Who holds a lock, as far as he told.
  struct Holder {
    std::uint32_t processId = 0;  ///< 0 when it is not known
    std::string program;          ///< empty when it is not known
    bool waitsForUser = false;    ///< he may keep it for hours
  };

  virtual ~MachineLocks() = default;

  /// Takes the lock of a folder; null when somebody has it, this thread included, of whom `holder` tells.
  /// `waitsForUser` is what the others are told of this one. A folder that does not exist has nothing to share: its
  /// lock is always to be had. An AutomationError (75) when the lock cannot be made for lack of rights.
  virtual std::unique_ptr<Lock> TryTake(std::string_view folder, bool waitsForUser, Holder& holder) = 0;
};

}  // namespace parvex
