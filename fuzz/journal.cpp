#include <string>
#include <string_view>

#include "fuzz/fuzz_input.h"
#include "journal/replay_routers.h"

// A journal answers requests until it has no line left. The input: requests, each up to a NUL, an empty one behind the
// last, and the journal.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  fuzz::Input input(data, size);
  std::string requests;
  for (std::string_view request = input.TakeUpTo('\0'); !request.empty(); request = input.TakeUpTo('\0')) {
    requests.append(request).push_back('\0');
  }
  fuzz::MayBeRefused([&] {
    journal::ReplayRouters routers(input.TakeRest(), "journal.jsonl");
    const auto router = routers.Create();
    std::string_view rest = requests;
    for (auto left = routers.Left(); left; left = routers.Left()) {
      const std::string request(rest.substr(0, rest.find('\0')));
      rest.remove_prefix(rest.empty() ? 0 : request.size() + 1);
      std::string answer;
      fuzz::MayBeRefused([&] { router->SendRequestMessage(request, answer); });
      const auto now = routers.Left();
      fuzz::Require((now ? now->count : 0) + 1 == left->count, "a request uses up one line");
    }
  });
  return 0;
}
