#include "tests/faults/fault_injection.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <new>

// The calls themselves are replaced by the linker (--wrap), operator new by its definition here.

namespace parvex::test {
namespace {

struct State {
  int suspended = 0;

  bool allocationsArmed = false;
  AllocationFault allocationFault{};
  std::size_t allocations = 0;

  bool callsArmed = false;
  CallFault callFault;
  std::size_t calls = 0;
  const std::function<void()>* onCall = nullptr;
};

thread_local State state;

bool FailsToAllocate() {
  if (!state.allocationsArmed || state.suspended > 0) {
    return false;
  }
  ++state.allocations;
  return state.allocationFault.once ? state.allocations == state.allocationFault.at
                                    : state.allocations >= state.allocationFault.at;
}

// Carries out one call; `Result` -1 with errno is its failure.
template <typename Call>
auto Intercept(Call call) -> decltype(call()) {
  if (!state.callsArmed || state.suspended > 0) {
    return call();
  }
  const bool meant = ++state.calls == state.callFault.at;
  if (meant && state.callFault.kind == CallFault::Kind::Error) {
    errno = state.callFault.error;
    return -1;
  }
  if (meant && state.callFault.kind == CallFault::Kind::KillBefore) {
    kill(getpid(), SIGKILL);
  }
  const auto result = call();
  if (meant && state.callFault.kind == CallFault::Kind::KillAfter) {
    kill(getpid(), SIGKILL);
  }
  if (result >= 0 && state.onCall != nullptr && *state.onCall) {
    const FaultsSuspended looking;
    (*state.onCall)();
  }
  return result;
}

}  // namespace

FaultsSuspended::FaultsSuspended() { ++state.suspended; }
FaultsSuspended::~FaultsSuspended() { --state.suspended; }

std::size_t WithAllocationFault(AllocationFault fault, const std::function<void()>& work) {
  struct Armed {
    ~Armed() { state.allocationsArmed = false; }
  } armed;
  state.allocationFault = fault;
  state.allocations = 0;
  state.allocationsArmed = true;
  work();
  return state.allocations;
}

std::size_t WithCallFault(CallFault fault, const std::function<void()>& work, const std::function<void()>& onCall) {
  struct Armed {
    ~Armed() { state.callsArmed = false; }
  } armed;
  state.callFault = fault;
  state.calls = 0;
  state.onCall = &onCall;
  state.callsArmed = true;
  work();
  return state.calls;
}

}  // namespace parvex::test

using parvex::test::CallFault;
using parvex::test::FailsToAllocate;
using parvex::test::Intercept;
using parvex::test::state;

extern "C" {

int __real_open(const char* path, int flags, ...);
ssize_t __real_write(int descriptor, const void* bytes, size_t size);
int __real_fchmod(int descriptor, mode_t mode);
int __real_renameat2(int oldFolder, const char* oldPath, int newFolder, const char* newPath, unsigned flags);
int __real_link(const char* from, const char* to);
int __real_unlink(const char* path);
int __real_mkdir(const char* path, mode_t mode);

int __wrap_open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
  va_end(arguments);
  if ((flags & O_ACCMODE) == O_RDONLY) {
    return __real_open(path, flags, mode);
  }
  return Intercept([&] { return __real_open(path, flags, mode); });
}

ssize_t __wrap_write(int descriptor, const void* bytes, size_t size) {
  return Intercept([&] {
    const bool isShort =
        state.callsArmed && state.callFault.kind == CallFault::Kind::ShortWrite && state.calls == state.callFault.at;
    return __real_write(descriptor, bytes, isShort && size > 1 ? 1 : size);
  });
}

int __wrap_fchmod(int descriptor, mode_t mode) {
  return Intercept([&] { return __real_fchmod(descriptor, mode); });
}

int __wrap_renameat2(int oldFolder, const char* oldPath, int newFolder, const char* newPath, unsigned flags) {
  return Intercept([&] { return __real_renameat2(oldFolder, oldPath, newFolder, newPath, flags); });
}

int __wrap_link(const char* from, const char* to) {
  return Intercept([&] { return __real_link(from, to); });
}

int __wrap_unlink(const char* path) {
  return Intercept([&] { return __real_unlink(path); });
}

int __wrap_mkdir(const char* path, mode_t mode) {
  return Intercept([&] { return __real_mkdir(path, mode); });
}

}  // extern "C"

void* operator new(std::size_t size) {
  void* block = FailsToAllocate() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return FailsToAllocate() ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
