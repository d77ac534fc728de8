// What reading profile files costs: parsing one against reading it and finding its line ends, and one look-up in files
// of growing size, with many sections and with a single one. `ini_peer.py` measures the same files with Python.
//
//   ini_bench [FOLDER]        leaves the files it measures in FOLDER, for the peer

#include <time.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "adapters/posix/host_file.h"
#include "adapters/posix/machine.h"
#include "formats/ini/profile_index.h"
#include "formats/text/windows_1252.h"

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
  const auto next = [end](const char* at) { return static_cast<const char*>(std::memchr(at, '\n', end - at)); };
  for (const char* at = next(text.data()); at != nullptr; at = next(at + 1)) {
    ++lines;
  }
  return lines;
}

struct Shape {
  const char* name;
  std::size_t sections;
  std::size_t keys;
};

using Walk = std::vector<std::pair<std::size_t, std::size_t>>;  // sections and keys, from 1

// Key after key, as the readers of a selection go.
Walk InOrder(const Shape& shape) {
  Walk walk(kLookups);
  for (std::size_t i = 0; i < walk.size(); ++i) {
    walk[i] = {i / shape.keys % shape.sections + 1, i % shape.keys + 1};
  }
  return walk;
}

// In an order that no cache can foresee.
Walk AtRandom(const Shape& shape) {
  Walk walk(kLookups);
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
  std::vector<std::string> names;
  for (std::size_t s = 1; s <= shape.sections; ++s) {
    names.push_back("PartNumber" + std::to_string(s));
  }
  const double parse = Best([&] {
    const parvex::ini::ProfileText text(parvex::posix::ReadHostFile(host, file), codePage);
    const parvex::ini::ProfileIndex index(text);
    for (const std::string& name : names) {  // the keys of a section are found when one is asked for
      const parvex::ini::ProfileIndex::Section* section = index.FindSection(name);
      if (section == nullptr || !index.FindValue(*section, "Description:1")) {
        std::abort();
      }
    }
  });

  Machine machine(folder);
  parvex::PrivateProfile& profile = machine.GetPrivateProfile();
  char key[32] = "Description:";
  const auto keyOf = [&](std::size_t number) {
    const std::to_chars_result end = std::to_chars(key + 12, key + sizeof key, number);
    return std::string_view(key, static_cast<std::size_t>(end.ptr - key));
  };
  std::vector<std::unique_ptr<parvex::ProfileSection>> sections(shape.sections + 1);
  for (std::size_t s = 1; s <= shape.sections; ++s) {
    sections[s] = profile.Section("PartNumber" + std::to_string(s), file);
  }
  std::size_t total = 0;
  const auto lookUp = [&](const Walk& walk) {
    return Best([&] {
             for (const auto& [s, k] : walk) {
               total += sections[s]->ReadString(keyOf(k), "", 255).size();
             }
           }) /
           kLookups;
  };
  const double inOrder = lookUp(InOrder(shape));
  const double atRandom = lookUp(AtRandom(shape));
  constexpr int kSections = kLookups / 10;
  const double whole = Best([&] {
                         for (int i = 0; i < kSections; ++i) {
                           total += profile.Section("PartNumber1", file)->ReadString("Description:7", "", 255).size();
                         }
                       }) /
                       kSections;
  if (total == 0) {
    std::abort();
  }
  std::printf(
      "%-16s %8.2f MB %8zu lines   read+line ends %7.2f ms   read+parse %7.2f ms (%.1f times)   "
      "look-up in order %4.0f ns, at random %4.0f ns, with its section %5.0f ns\n",
      shape.name, static_cast<double>(fs::file_size(host)) / 1e6, lines, scan / 1e6, parse / 1e6, parse / scan, inOrder,
      atRandom, whole);
}

}  // namespace

int main(int argc, char** argv) {
  const bool kept = argc > 1;
  const fs::path folder = kept ? fs::path(argv[1]) : fs::temp_directory_path() / "parvex-ini-bench";
  fs::create_directories(folder / "drive_c");
  constexpr Shape kShapes[] = {{"small", 10, 40},
                               {"sections-1MB", 1'000, 40},
                               {"sections-10MB", 10'000, 40},
                               {"section-1MB", 1, 36'000},
                               {"section-9MB", 1, 320'000}};
  for (const Shape& shape : kShapes) {
    Measure(folder, shape);
  }
  if (!kept) {
    fs::remove_all(folder);
  }
  return 0;
}
