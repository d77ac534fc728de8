// Marking the tags of a list as up to date, beside parsing that list and beside a walk over all tools for every tag.
// Every measurement starts with a list of its own; compare within one run.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "bench/tag_lists.h"
#include "seams/xml.h"
#include "tags/tag_listing.h"

namespace {

using parvex::bench::TagList;
using parvex::bench::Tools;
using parvex::xml::Document;
using parvex::xml::Node;

/// Tool after tool for every tag, with each tool's texts read once.
void MarkByWalking(const Document& list, const Document& tools) {
  std::vector<std::pair<std::string, std::string>> versions;
  for (const Node& tool : tools.All("//Tool")) {
    versions.emplace_back(tool.Descendant("Pdsg").Text(), tool.Descendant("Version").Text());
  }
  std::string current;
  for (const Node& tag : list.All("//TAG")) {
    const std::string pdsg = tag.Descendant("PDSG").Text();
    for (const auto& [group, version] : versions) {
      if (group == pdsg) {
        current = version;
        break;
      }
    }
    tag.Append(list.CreateElement("UPTODATE")).SetText(tag.Descendant("TAGVERSION").Text() == current ? "-1" : "0");
  }
}

/// Processor time, which others on the machine do not lengthen.
template <typename Work>
double Seconds(Work work) {
  const std::clock_t start = std::clock();
  work();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

void Parse(benchmark::State& state) {
  const std::string text = TagList(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    Document list;
    state.SetIterationTime(Seconds([&] { list = Document::Parse(text); }));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <void (*mark)(const Document&, const Document&)>
void Mark(benchmark::State& state) {
  const std::string text = TagList(static_cast<int>(state.range(0)));
  const Document tools = Document::Parse(Tools());
  for (auto _ : state) {
    const Document list = Document::Parse(text);
    state.SetIterationTime(Seconds([&] { mark(list, tools); }));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(Parse)->Arg(12'500)->Arg(25'000)->Arg(50'000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Mark<parvex::MarkUpToDate>)
    ->Name("MarkUpToDate")
    ->Arg(12'500)
    ->Arg(25'000)
    ->Arg(50'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Mark<MarkByWalking>)
    ->Name("MarkByWalking")
    ->Arg(12'500)
    ->Arg(50'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int count, char** arguments) {
  const Document marked = Document::Parse(TagList(5000));
  const Document walked = Document::Parse(TagList(5000));
  const Document tools = Document::Parse(Tools());
  parvex::MarkUpToDate(marked, tools);
  MarkByWalking(walked, tools);
  if (marked.Xml() != walked.Xml()) {
    std::puts("the two ways of marking differ");
    return 1;
  }
  benchmark::Initialize(&count, arguments);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
