// What reading profile files costs: parsing one against reading it and finding its line ends, and one look-up in files of
// growing size, with many sections and with a single one. `ini_peer.py` measures the same files with Python.
//
//   ini_bench [FOLDER]        leaves the files it measures in FOLDER, for the peer

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <time.h>

#include "platform/posix/machine.h"
#include "platform/posix/host_file.h"
#include "platform/posix/profile_index.h"
#include "platform/posix/windows_1252.h"

namespace {

namespace fs = std::filesystem;
using parvex::posix::Machine;

constexpr int kLookups = 600'000;
constexpr int kRuns = 7;

// The text of a selection with `sections` sections of `keys` keys each.
std::string ProfileOf(std::size_t sections, std::size_t keys) {
  std::string text;
  for (std::size_t s = 1; s <= sections; ++s) {
    text += "[PartNumber" + std::to_string(s) + "]\r\n";
    for (std::size_t k = 1; k <= keys; ++k) {
      text += "Description:" + std::to_string(k) + "=Item " + std::to_string(s * 7919 + k) + "\r\n";
    }
  }
  return text;
}

// Nanoseconds of processor time, so that other work of the machine does not count.
double Clock() {
  timespec now;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

// The best of some runs.
double Best(const std::function<void()>& work) {
  double best = 1e18;
  for (int run = 0; run < kRuns; ++run) {
    const double start = Clock();
    work();
    best = std::min(best, Clock() - start);
  }
  return best;
}

std::size_t CountLines(const std::string& text) {
  std::size_t lines = 0;
  const char* end = text.data() + text.size();
  for (const char* at = text.data(); (at = static_cast<const char*>(std::memchr(at, '\n', end - at))) != nullptr; ++at) {
    ++lines;
  }
  return lines;
}

struct Shape {
  const char* name;
  std::size_t sections;
  std::size_t keys;
};

// Sections and keys in an order that no cache can foresee.
std::vector<std::pair<std::size_t, std::size_t>> Walk(const Shape& shape) {
  std::vector<std::pair<std::size_t, std::size_t>> walk(kLookups);
  std::uint64_t state = 88172645463325252;
  for (auto& [section, key] : walk) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    section = (state >> 33) % shape.sections + 1;
    key = (state >> 17) % shape.keys + 1;
  }
  return walk;
}

void Measure(const fs::path& folder, const Shape& shape) {
  const fs::path host = folder / "drive_c" / (std::string(shape.name) + ".ini");
  std::ofstream(host, std::ios::binary) << ProfileOf(shape.sections, shape.keys);
  const std::string file = "C:\\" + std::string(shape.name) + ".ini";

  std::size_t lines = 0;
  const double scan = Best([&] { lines = CountLines(parvex::posix::ReadHostFile(host, file)); });
  parvex::posix::Windows1252 codePage;
  const double parse = Best([&] {
    const parvex::posix::ProfileText text(parvex::posix::ReadHostFile(host, file), codePage);
    const parvex::posix::ProfileIndex index(text);
    if (index.FindSection("PartNumber1") == nullptr) {
      std::abort();
    }
  });

  Machine machine(folder);
  parvex::PrivateProfile& profile = machine.GetPrivateProfile();
  char key[32] = "Description:";
  const auto keyOf = [&](std::size_t number) {
    const std::to_chars_result end = std::to_chars(key + 12, key + sizeof key, number);
    return std::string_view(key, static_cast<std::size_t>(end.ptr - key));
  };
  // Sections by turns, some look-ups in each: as the readers of a selection do.
  const auto walk = Walk(shape);
  const std::size_t kept = std::min<std::size_t>(shape.sections, 2000);
  std::vector<std::unique_ptr<parvex::ProfileSection>> sections;
  for (std::size_t s = 0; s < kept; ++s) {
    sections.push_back(profile.Section("PartNumber" + std::to_string(s * (shape.sections / kept) + 1), file));
  }
  std::size_t total = 0;
  const double lookup = Best([&] {
                          for (const auto& [s, k] : walk) {
                            total += sections[s % kept]->ReadString(keyOf(k), "", 255).size();
                          }
                        }) /
                        kLookups;
  const double whole = Best([&] {
                         for (int i = 0; i < kLookups / 10; ++i) {
                           total += profile.Section("PartNumber1", file)->ReadString(keyOf(walk[i].second), "", 255).size();
                         }
                       }) /
                       (kLookups / 10);
  if (total == 0) {
    std::abort();
  }
  std::printf("%-16s %8.2f MB %8zu lines   read+line ends %7.2f ms   read+parse %7.2f ms (%.1f times)   look-up %5.0f ns   "
              "with its section %5.0f ns\n",
              shape.name, static_cast<double>(fs::file_size(host)) / 1e6, lines, scan / 1e6, parse / 1e6, parse / scan,
              lookup, whole);
}

}  // namespace

int main(int argc, char** argv) {
  const bool kept = argc > 1;
  const fs::path folder = kept ? fs::path(argv[1]) : fs::temp_directory_path() / "parvex-ini-bench";
  fs::create_directories(folder / "drive_c");
  for (const Shape& shape : {Shape{"small", 10, 40}, Shape{"sections-1MB", 1'000, 40}, Shape{"sections-10MB", 10'000, 40},
                             Shape{"section-1MB", 1, 36'000}, Shape{"section-9MB", 1, 320'000}}) {
    Measure(folder, shape);
  }
  if (!kept) {
    fs::remove_all(folder);
  }
  return 0;
}
