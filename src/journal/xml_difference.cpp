#include "journal/xml_difference.h"

#include <algorithm>

#include "formats/text/xml_pieces.h"
#include "seams/xml.h"

namespace parvex::journal {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool IsComparable(std::string_view text) {
  return text.find("<!DOCTYPE") == std::string_view::npos && !xml::Document::Parse(text).IsEmpty();
}

XmlDifference FirstByte(std::string_view expected, std::string_view actual) {
  const auto [here, there] = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  return {static_cast<std::size_t>(here - expected.begin()), static_cast<std::size_t>(there - actual.begin())};
}

// Documents that travel as texts in documents, as many times as anybody does it.
constexpr int kDeepestText = 4;

std::optional<XmlDifference> FirstDifference(std::string_view expected, std::string_view actual, int depth);

bool BeginsMarkup(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  return first != std::string_view::npos && text[first] == '<';
}

bool SaysTheSame(const XmlPiece& expected, const XmlPiece& actual, int depth) {
  return expected.SaysTheSameAs(actual) ||
         (expected.kind == XmlPiece::Kind::Text && actual.kind == XmlPiece::Kind::Text && depth < kDeepestText &&
          BeginsMarkup(expected.text) && BeginsMarkup(actual.text) &&
          !FirstDifference(expected.text, actual.text, depth + 1));
}

std::optional<XmlDifference> FirstDifference(std::string_view expected, std::string_view actual, int depth) {
  if (!IsComparable(expected) || !IsComparable(actual)) {
    return FirstByte(expected, actual);
  }
  XmlPieces expectedPieces(expected);
  XmlPieces actualPieces(actual);
  while (true) {
    const XmlPiece expectedPiece = expectedPieces.Next();
    const XmlPiece actualPiece = actualPieces.Next();
    if (!SaysTheSame(expectedPiece, actualPiece, depth)) {
      return XmlDifference{expectedPiece.at, actualPiece.at};
    }
    if (expectedPiece.kind == XmlPiece::Kind::End) {
      return std::nullopt;
    }
  }
}

}  // namespace

std::optional<XmlDifference> FirstXmlDifference(std::string_view expected, std::string_view actual) {
  return expected == actual ? std::nullopt : FirstDifference(expected, actual, 0);
}

}  // namespace parvex::journal
