#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "seams/xml.h"

namespace parvex::test {

inline std::string Repeated(std::string_view piece, std::size_t times) {
  std::string text;
  text.reserve(piece.size() * times);
  for (std::size_t i = 0; i < times; ++i) {
    text += piece;
  }
  return text;
}

/// Why a text is refused; a failure of the test when it is not.
inline std::string RefusalOf(std::string_view text) {
  const xml::Document document = xml::Document::Parse(text);
  EXPECT_TRUE(document.IsEmpty());
  return document.ParseError();
}

}  // namespace parvex::test
