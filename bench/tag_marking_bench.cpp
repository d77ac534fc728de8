// Marking the tags of a list as up to date, beside parsing that list and beside a walk over all tools for every tag.
// Every measurement starts with a list of its own; compare within one run.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "seams/xml.h"
#include "tags/tag_listing.h"

namespace {

using parvex::xml::Document;
using parvex::xml::Node;

constexpr int kTools = 1000;

std::string Group(int number) { return "G" + std::to_string(number % kTools) + "47"; }

std::string TagList(int tags) {
  std::string text = "<TAGLIST>";
  for (int i = 0; i < tags; ++i) {
    text += "<TAG><NAME>Unit " + std::to_string(i) + "</NAME><PDSG>" + Group(i * 7) +
            "</PDSG><DATATYPE>0</DATATYPE><TAGVERSION>4.71." + std::to_string(i % 2) + "</TAGVERSION><TAGINDEXID>" +
            std::to_string(i) + "</TAGINDEXID><ID>" + std::to_string(i) + "</ID></TAG>";
  }
  return text + "</TAGLIST>";
}

Document Tools() {
  std::string text = "<Tools>";
  for (int i = 0; i < kTools; ++i) {
    text += "<Tool><Name>Tool " + std::to_string(i) + "</Name><Pdsg>" + Group(i) +
            "</Pdsg><Version>4.71.0</Version></Tool>";
  }
  return Document::Parse(text + "</Tools>");
}

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
  const Document tools = Tools();
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
  parvex::MarkUpToDate(marked, Tools());
  MarkByWalking(walked, Tools());
  if (marked.Xml() != walked.Xml()) {
    std::puts("the two ways of marking differ");
    return 1;
  }
  benchmark::Initialize(&count, arguments);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
