#include "tests/faults/fault_injection.h"

#include <errno.h>
#include <fcntl.h>
#include <libxml/xmlmemory.h>
#include <limits.h>
#include <signal.h>
#include <stdarg.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

// The calls themselves are replaced by the linker (--wrap), operator new by its definition here. libxml2 and zlib are
// told to allocate by our functions.

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
  bool writesLess = false;
  const std::function<void()>* onCall = nullptr;
};

thread_local State state;

bool FailsToAllocate(std::size_t size) {
  if (!state.allocationsArmed || state.suspended > 0 || size < state.allocationFault.least) {
    return false;
  }
  ++state.allocations;
  return state.allocationFault.once ? state.allocations == state.allocationFault.at
                                    : state.allocations >= state.allocationFault.at;
}

bool IsMeant(std::string_view path) {
  return state.callsArmed && state.suspended == 0 && path.starts_with(state.callFault.below);
}

bool IsMeant(int descriptor) {
  if (!state.callsArmed || state.suspended > 0 || state.callFault.below.empty()) {
    return state.callsArmed && state.suspended == 0;
  }
  const FaultsSuspended looking;
  char path[PATH_MAX];
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  const ssize_t size = readlink(link.c_str(), path, sizeof path);
  return size > 0 && std::string_view(path, static_cast<std::size_t>(size)).starts_with(state.callFault.below);
}

// Carries out one call on a path or descriptor; -1 with errno is its failure.
template <typename Place, typename Call>
auto Intercept(Place place, Call call) -> decltype(call()) {
  if (!IsMeant(place)) {
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
  state.writesLess = meant && state.callFault.kind == CallFault::Kind::ShortWrite;
  const auto result = call();
  state.writesLess = false;
  if (meant && state.callFault.kind == CallFault::Kind::KillAfter) {
    kill(getpid(), SIGKILL);
  }
  if (result >= 0 && state.onCall != nullptr && *state.onCall) {
    const FaultsSuspended looking;
    (*state.onCall)();
  }
  return result;
}

// What the C libraries allocate by: null is their failure.

void* Allocate(std::size_t size) { return FailsToAllocate(size) ? nullptr : std::malloc(size); }

void* Reallocate(void* block, std::size_t size) { return FailsToAllocate(size) ? nullptr : std::realloc(block, size); }

char* Duplicate(const char* text) {
  const std::size_t size = std::strlen(text) + 1;
  void* copy = Allocate(size);
  return copy == nullptr ? nullptr : static_cast<char*>(std::memcpy(copy, text, size));
}

void* AllocateForZlib(void*, unsigned count, unsigned size) { return Allocate(std::size_t{count} * size); }
void FreeForZlib(void*, void* block) { std::free(block); }

// Before the first use of libxml2, since it keeps what it has allocated.
const bool isLibxml2Told = xmlMemSetup(std::free, Allocate, Reallocate, Duplicate) == 0;

// How much the call that is being carried out writes.
std::size_t Shortened(std::size_t size) { return state.writesLess && size > 1 ? 1 : size; }

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

using parvex::test::AllocateForZlib;
using parvex::test::CallFault;
using parvex::test::FailsToAllocate;
using parvex::test::FreeForZlib;
using parvex::test::Intercept;
using parvex::test::Shortened;
using parvex::test::state;

extern "C" {

int __real_open(const char* path, int flags, ...);
ssize_t __real_write(int descriptor, const void* bytes, size_t size);
ssize_t __real_pwrite(int descriptor, const void* bytes, size_t size, off_t at);
int __real_ftruncate(int descriptor, off_t size);
int __real_rename(const char* from, const char* to);
int __real_fchmod(int descriptor, mode_t mode);
int __real_fsync(int descriptor);
int __real_renameat2(int oldFolder, const char* oldPath, int newFolder, const char* newPath, unsigned flags);
int __real_link(const char* from, const char* to);
int __real_unlink(const char* path);
int __real_mkdir(const char* path, mode_t mode);

int __real_inflateInit2_(z_stream* stream, int bits, const char* version, int size);
int __real_deflateInit2_(z_stream* stream, int level, int method, int bits, int memory, int strategy,
                         const char* version, int size);

int __wrap_inflateInit2_(z_stream* stream, int bits, const char* version, int size) {
  stream->zalloc = AllocateForZlib;
  stream->zfree = FreeForZlib;
  return __real_inflateInit2_(stream, bits, version, size);
}

int __wrap_deflateInit2_(z_stream* stream, int level, int method, int bits, int memory, int strategy,
                         const char* version, int size) {
  stream->zalloc = AllocateForZlib;
  stream->zfree = FreeForZlib;
  return __real_deflateInit2_(stream, level, method, bits, memory, strategy, version, size);
}

int __wrap_open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
  va_end(arguments);
  if ((flags & O_ACCMODE) == O_RDONLY) {
    return __real_open(path, flags, mode);
  }
  return Intercept(path, [&] { return __real_open(path, flags, mode); });
}

ssize_t __wrap_write(int descriptor, const void* bytes, size_t size) {
  return Intercept(descriptor, [&] { return __real_write(descriptor, bytes, Shortened(size)); });
}

ssize_t __wrap_pwrite(int descriptor, const void* bytes, size_t size, off_t at) {
  return Intercept(descriptor, [&] { return __real_pwrite(descriptor, bytes, Shortened(size), at); });
}

int __wrap_ftruncate(int descriptor, off_t size) {
  return Intercept(descriptor, [&] { return __real_ftruncate(descriptor, size); });
}

int __wrap_rename(const char* from, const char* to) {
  return Intercept(from, [&] { return __real_rename(from, to); });
}

int __wrap_fchmod(int descriptor, mode_t mode) {
  return Intercept(descriptor, [&] { return __real_fchmod(descriptor, mode); });
}

int __wrap_fsync(int descriptor) {
  return Intercept(descriptor, [&] { return __real_fsync(descriptor); });
}

int __wrap_renameat2(int oldFolder, const char* oldPath, int newFolder, const char* newPath, unsigned flags) {
  return Intercept(newPath, [&] { return __real_renameat2(oldFolder, oldPath, newFolder, newPath, flags); });
}

int __wrap_link(const char* from, const char* to) {
  return Intercept(to, [&] { return __real_link(from, to); });
}

int __wrap_unlink(const char* path) {
  return Intercept(path, [&] { return __real_unlink(path); });
}

int __wrap_mkdir(const char* path, mode_t mode) {
  return Intercept(path, [&] { return __real_mkdir(path, mode); });
}

}  // extern "C"

void* operator new(std::size_t size) {
  void* block = FailsToAllocate(size) ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return FailsToAllocate(size) ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
