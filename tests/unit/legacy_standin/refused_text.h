#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "seams/automation_error.h"

namespace parvex::standin {

/// A text that a reader of JSON files refuses, why, and what its error has to name.
struct RefusedText {
  const char* reason;
  const char* text;
  const char* named;
};

inline std::string ReasonOf(const testing::TestParamInfo<RefusedText>& info) { return info.param.reason; }

/// `parse` takes the text and the name of its file.
template <typename Parse>
void ExpectRefused(const RefusedText& refused, Parse parse) {
  try {
    parse(refused.text, "F/file.json");
    FAIL() << "accepted: " << refused.text;
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.RuntimeNumber(), 5);
    EXPECT_THAT(error.Description(), testing::HasSubstr("F/file.json"));
    EXPECT_THAT(error.Description(), testing::HasSubstr(refused.named));
  }
}

}  // namespace parvex::standin
