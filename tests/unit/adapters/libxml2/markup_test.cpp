#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "seams/xml.h"

namespace parvex::xml {
namespace {

TEST(MarkupInPieces, HoldsLittleOfADocumentAtATime) {
  const Document document = Document::New();
  const Node root = document.Append(document.CreateElement("r"));
  for (int i = 0; i < 100; ++i) {
    AppendElement(root, "text", std::string(27'000, 'x'));
    AppendElement(AppendElement(root, "folded"), "text", std::string(30'000, 'y'));
    root.Child("folded").Fold();
  }
  std::size_t longest = 0;
  std::size_t pieces = 0;
  document.WriteXml([&](std::string_view piece) {
    longest = std::max(longest, piece.size());
    ++pieces;
  });
  EXPECT_LT(longest, 200'000u);
  EXPECT_GT(pieces, 20u);
}

}  // namespace
}  // namespace parvex::xml
