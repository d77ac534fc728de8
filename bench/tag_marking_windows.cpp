// Marking the tags of a list as up to date on Windows, beside parsing that list. To be run on Windows, or under Wine.
//
//   tag_marking_windows [TAGS] [ROUNDS]
//
// Prints milliseconds, the best of the rounds: by the clock, and of the processor.

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/tag_lists.h"
#include "seams/xml.h"
#include "tags/tag_listing.h"

namespace parvex {
namespace {

struct Times {
  double clock = 1e9;
  double processor = 1e9;
};

/// Milliseconds of this process, user and system.
double ProcessorTime() {
  FILETIME started;
  FILETIME ended;
  FILETIME system;
  FILETIME user;
  GetProcessTimes(GetCurrentProcess(), &started, &ended, &system, &user);
  const auto ticks = [](const FILETIME& time) {
    return static_cast<double>(ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart);
  };
  return (ticks(system) + ticks(user)) / 1e4;
}

template <typename Work>
void Time(Times& best, Work work) {
  const auto start = std::chrono::steady_clock::now();
  const double before = ProcessorTime();
  work();
  const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - start;
  best.processor = std::min(best.processor, ProcessorTime() - before);
  best.clock = std::min(best.clock, passed.count());
}

/// Whether each tag has the mark that its version calls for.
bool IsMarked(const xml::Document& list, int tags) {
  int count = 0;
  for (xml::Node tag = list.Root().Child("TAG"); tag; tag = tag.Next("TAG")) {
    if (tag.Child("UPTODATE").Text() != (count % 2 == 0 ? "-1" : "0")) {
      return false;
    }
    ++count;
  }
  return count == tags;
}

int Run(int tags, int rounds) {
  const std::string text = bench::TagList(tags);
  const xml::Document tools = xml::Document::Parse(bench::Tools());
  Times parsing;
  Times marking;
  for (int i = 0; i < rounds; ++i) {
    xml::Document list;
    Time(parsing, [&] { list = xml::Document::Parse(text); });
    Time(marking, [&] { MarkUpToDate(list, tools); });
    if (!IsMarked(list, tags)) {
      std::puts("the tags are not marked right");
      return 1;
    }
  }
  std::printf("%d tags, ms: mark %.1f (processor %.1f), parse %.1f (processor %.1f)\n", tags, marking.clock,
              marking.processor, parsing.clock, parsing.processor);
  return 0;
}

}  // namespace
}  // namespace parvex

int main(int argc, char** argv) {
  const auto number = [&](int at, int otherwise) { return argc > at ? std::atoi(argv[at]) : otherwise; };
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const int result = parvex::Run(number(1, 50'000), number(2, 3));
  CoUninitialize();
  return result;
}
