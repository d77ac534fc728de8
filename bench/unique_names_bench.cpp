// Making names unique that all clash with each other, beside the plain recursion, which walks over the whole list for
// every candidate. Compare within one run.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "adapters/posix/machine.h"
#include "protocol/legacy_link.h"
#include "tags/tag_names.h"

namespace {

using namespace parvex;

/// Routers that are never asked: the list of names is given.
struct SilentRouters : MessageRouters {
  std::unique_ptr<MessageRouter> Create() override { return nullptr; }
};

/// The link of an instance that has fetched this list already.
struct Instance {
  explicit Instance(const std::vector<std::string>& listed) {
    link.tagNames.counter = 1;
    for (const std::string& name : listed) {
      link.tagNames.taken.insert(std::string("G") + '\0' + name);
    }
  }

  posix::Machine machine{std::filesystem::temp_directory_path()};
  SilentRouters routers;
  LegacyLink link{[this] {
    Platform platform = machine.AsPlatform();
    platform.messageRouters = &routers;
    return platform;
  }()};

  std::string Unique(const std::string& wanted) { return MakeUniqueTagName(link, "P", wanted, "G"); }
  int Counter() const { return link.tagNames.counter; }
};

class PlainRecursion {
 public:
  explicit PlainRecursion(const std::vector<std::string>& listed) : listed_(listed) {}

  std::string Unique(const std::string& wanted) {
    if (std::find(listed_.begin(), listed_.end(), wanted) == listed_.end()) {
      return wanted;
    }
    return Unique(wanted.substr(0, wanted.rfind('[') + 1) + std::to_string(counter_++) + "]");
  }
  int Counter() const { return counter_; }

 private:
  const std::vector<std::string>& listed_;
  int counter_ = 1;
};

/// A[0], A[1], ...: the first call meets all of them, each later one the name that it wants.
std::vector<std::string> Clashing(int count) {
  std::vector<std::string> names;
  for (int i = 0; i < count; ++i) {
    names.push_back("A[" + std::to_string(i) + "]");
  }
  return names;
}

template <typename Way>
void MakeUnique(benchmark::State& state) {
  const std::vector<std::string> names = Clashing(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    Way way(names);
    state.ResumeTiming();
    for (const std::string& name : names) {
      benchmark::DoNotOptimize(way.Unique(name));
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(MakeUnique<Instance>)
    ->Name("MakeUniqueTagName")
    ->Arg(1250)
    ->Arg(2500)
    ->Arg(5000)
    ->Arg(10'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(MakeUnique<PlainRecursion>)
    ->Name("PlainRecursion")
    ->Arg(1250)
    ->Arg(2500)
    ->Arg(5000)
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int count, char** arguments) {
  const std::vector<std::string> names = Clashing(500);
  Instance instance(names);
  PlainRecursion plain(names);
  for (const std::string& name : names) {
    if (instance.Unique(name) != plain.Unique(name) || instance.Counter() != plain.Counter()) {
      std::puts("the two ways of making names unique differ");
      return 1;
    }
  }
  benchmark::Initialize(&count, arguments);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
