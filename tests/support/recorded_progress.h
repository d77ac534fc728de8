#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "seams/progress.h"

namespace parvex::test {

/// Keeps what it was told, in order.
class RecordedProgress : public Progress {
 public:
  std::vector<std::string> told;

  void Waits(std::string_view what) override { told.push_back("waits: " + std::string(what)); }
  void HasWaited() override { told.push_back("has waited"); }
  void ReadsTag(std::size_t number, std::size_t count, std::string_view name) override {
    told.push_back("reads " + std::to_string(number) + " of " + std::to_string(count) + ": " + std::string(name));
  }
  void HasReadTags() override { told.push_back("has read tags"); }
};

}  // namespace parvex::test
