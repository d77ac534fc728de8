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

/// The pieces that `piece` makes of the numbers from 0 on.
template <class Piece>
std::string Numbered(std::size_t count, Piece piece) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += piece(std::to_string(i));
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
