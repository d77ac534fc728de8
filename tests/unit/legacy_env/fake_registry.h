#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "seams/registry.h"

namespace parvex::test {

/// Answers every value alike and records what was asked.
class FakeRegistry : public Registry {
 public:
  std::vector<std::pair<std::string, std::string>> asked;
  std::optional<std::string> value;
  std::function<void()> onRead;

  std::optional<std::string> LocalMachineString(std::string_view key, std::string_view valueName) override {
    asked.emplace_back(key, valueName);
    if (onRead) {
      onRead();
    }
    return value;
  }
};

}  // namespace parvex::test
