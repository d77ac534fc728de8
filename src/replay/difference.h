#pragma once

#include <cstdint>
#include <string>

namespace parvex::replay {

/// One thing in which a call that was done again differs from its record.
struct Difference {
  std::uint64_t step = 0;  ///< of the journal; 0 for what is no step: the outcome, the reply, a file that was left
  std::string what;        ///< "router", "reply", a file's path
  std::string expected;
  std::string actual;
};

}  // namespace parvex::replay
