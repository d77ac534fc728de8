#pragma once

#include <exception>
#include <string_view>

#include "recording/case_writer.h"

namespace parvex::recording {

/// Carries out a step of the recording, which stays without consequence for the call: what it throws is noted as
/// missing, under the name `what`.
template <typename Step>
void Quietly(CaseWriter& writer, std::string_view what, Step step) noexcept {
  try {
    step();
  } catch (const std::exception& failure) {
    writer.Missing(what, failure.what());
  } catch (...) {
    writer.Missing(what, "unknown failure");
  }
}

}  // namespace parvex::recording
