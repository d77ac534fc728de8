#include "legacy_env/thread_state.h"

namespace parvex {

ThreadState& ThisThread() {
  thread_local ThreadState state;
  return state;
}

void ForgetThisThread() { ThisThread() = {}; }

}  // namespace parvex
