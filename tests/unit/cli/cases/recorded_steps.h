#pragma once

#include <string>
#include <string_view>

#include "recording/recorded_case.h"

namespace parvex::cli {

/// A finished case whose journal has these lines.
inline recording::RecordedCase CaseOf(std::string_view lines, recording::Json facts = {{"outcome", "reply"}}) {
  recording::RecordedCase read;
  read.facts = std::move(facts);
  while (!lines.empty()) {
    const std::size_t end = lines.find('\n');
    read.steps.push_back(recording::Json::parse(lines.substr(0, end)));
    lines.remove_prefix(end + 1);
  }
  return read;
}

}  // namespace parvex::cli
