#include "adapters/windows/profile_versions.h"

#include <windows.h>

#include "adapters/windows/wide_text.h"

namespace parvex::windows {
namespace {

// Times of files in 100 nanoseconds. A file system that keeps when a file was changed is as fine as the system's clock;
// one that does not (FAT) gives the time of writing in steps of two seconds.
constexpr std::uint64_t kLongestClockStep = 500'000;
constexpr std::uint64_t kLongestCoarseStep = 21'000'000;

std::uint64_t Joined(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

std::uint64_t Now() {
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  return Joined(now.dwHighDateTime, now.dwLowDateTime);
}

bool IsSettled(std::uint64_t written, std::uint64_t changed, std::uint64_t now) {
  const std::uint64_t last = changed == 0 ? written : changed;
  return now > last && now - last > (changed == 0 ? kLongestCoarseStep : kLongestClockStep);
}

}  // namespace

std::optional<ini::ProfileVersions::Seen> SystemFileVersions::Look(const std::string& file) {
  const std::uint64_t now = Now();
  const HANDLE handle =
      CreateFileW(Widen(file).c_str(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    return std::nullopt;
  }
  BY_HANDLE_FILE_INFORMATION is = {};
  FILE_BASIC_INFO times = {};
  const bool isKnown = GetFileInformationByHandle(handle, &is) != 0 &&
                       GetFileInformationByHandleEx(handle, FileBasicInfo, &times, sizeof times) != 0;
  CloseHandle(handle);
  if (!isKnown) {
    return std::nullopt;
  }
  const std::uint64_t written = Joined(is.ftLastWriteTime.dwHighDateTime, is.ftLastWriteTime.dwLowDateTime);
  const auto changed = static_cast<std::uint64_t>(times.ChangeTime.QuadPart);
  return Seen{{{is.dwVolumeSerialNumber, Joined(is.nFileIndexHigh, is.nFileIndexLow), written, changed},
               Joined(is.nFileSizeHigh, is.nFileSizeLow)},
              IsSettled(written, changed, now)};
}

}  // namespace parvex::windows
