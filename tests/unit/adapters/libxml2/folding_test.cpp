#include "adapters/libxml2/folding.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <string>

#include "adapters/libxml2/attributes.h"
#include "adapters/libxml2/markup.h"
#include "adapters/libxml2/names.h"
#include "adapters/libxml2/parse.h"
#include "adapters/libxml2/refusals.h"
#include "adapters/libxml2/select.h"
#include "adapters/libxml2/tree.h"
#include "seams/xml.h"

namespace parvex::xml {
namespace {

// The root of a document of this markup, held while this lives.
class Folding : public testing::Test {
 protected:
  ~Folding() override {
    if (document_ != nullptr) {
      Release(AsNode(document_));
    }
  }

  xmlNode* RootOfParsed(std::string_view markup) {
    document_ = ParseText(markup).release();
    Hold(AsNode(document_));
    return RootOf(document_);
  }

  xmlDoc* document_ = nullptr;
};

bool IsFoldedAfterFold(std::string_view markup) {
  const UnheldDocument document = ParseText(markup);
  xmlNode* root = RootOf(document.get());
  Fold(root);
  EXPECT_EQ(MarkupOf(root), MarkupOf(RootOf(ParseText(markup).get()))) << markup;
  return IsFolded(root);
}

TEST_F(Folding, KeepsMarkupInPlaceOfNodes) {
  constexpr const char* kMarkup = "<r><a b=\"1&#10;\">x &lt; y</a><c/><![CDATA[<&]]>z</r>";
  xmlNode* root = RootOfParsed(kMarkup);
  Fold(root);
  ASSERT_TRUE(IsFolded(root));
  EXPECT_EQ(root->children, nullptr);
  EXPECT_EQ(root->last, nullptr);
  EXPECT_EQ(MarkupOf(root), kMarkup);
}

TEST_F(Folding, GivesTheNodesBack) {
  xmlNode* root = RootOfParsed("<r><a b=\"1\">x</a><c/></r>");
  Fold(root);
  Unfold(root);
  EXPECT_FALSE(IsFolded(root));
  EXPECT_EQ(root->content, nullptr);
  ASSERT_NE(root->children, nullptr);
  EXPECT_EQ(View(root->children->name), "a");
  EXPECT_EQ(root->children->doc, document_);
  EXPECT_EQ(root->children->parent, root);
  EXPECT_EQ(View(root->last->name), "c");
}

TEST_F(Folding, LeavesWhatWouldReadOtherwise) {
  EXPECT_TRUE(IsFoldedAfterFold("<r><a>x\n y</a></r>"));
  for (const char* markup :
       {"<r/>", "<r>x<!-- y --></r>", "<r><?x y?></r>", "<r><a xmlns=\"u\"/></r>", "<r><a xmlns:p=\"u\"/></r>",
        "<r xmlns:p=\"u\"><a p:b=\"1\"/></r>", "<r> <a/></r>", "<r><a/> </r>", "<r><a> </a></r>", "<r>x&#13;y</r>",
        "<r><a xml:space=\"preserve\">x</a></r>"}) {
    const bool dropsBlankInFront = std::string_view(markup) == "<r> <a/></r>";  // marked at the root itself
    EXPECT_EQ(IsFoldedAfterFold(markup), dropsBlankInFront) << markup;
  }
}

TEST_F(Folding, LeavesWhatIsHeldBelow) {
  xmlNode* root = RootOfParsed("<r><a b=\"1\">x</a></r>");
  for (xmlNode* held : {root->children, root->children->children, AsNode(root->children->properties),
                        root->children->properties->children}) {
    Hold(held);
    Fold(root);
    EXPECT_FALSE(IsFolded(root));
    Release(held);
  }
  Fold(root);
  EXPECT_TRUE(IsFolded(root));
}

TEST_F(Folding, EndsWhenTheDocumentIsSearched) {
  xmlNode* root = RootOfParsed("<r><a/><b/></r>");
  Fold(root);
  UnfoldForSearch(document_);
  EXPECT_FALSE(IsFolded(root));
  EXPECT_EQ(Select(root, "//a").size(), 1u);
  Fold(root);
  EXPECT_FALSE(IsFolded(root)) << "or a search for each unit would read all units before it again";
}

TEST_F(Folding, LeavesWhatIsLarge) {
  std::string many = "<r>";
  for (int i = 0; i < 10'000; ++i) {
    many += "<a/>";
  }
  EXPECT_FALSE(IsFoldedAfterFold(many + "</r>"));
  EXPECT_FALSE(IsFoldedAfterFold("<r>" + std::string(2'000'000, 'x') + "</r>"));
}

std::size_t BytesInUse() { return mallinfo2().uordblks + mallinfo2().hblkhd; }

// What a document of some thousand components takes.
std::size_t BytesOfDocument(bool folded) {
  const std::size_t before = BytesInUse();
  const Document document = Document::New();
  const Node root = document.Append(document.CreateElement("r"));
  for (int unit = 0; unit < 300; ++unit) {
    const Node components = parvex::xml::AppendElement(root, "COMPONENTS");
    for (int i = 0; i < 30; ++i) {
      const Node component = parvex::xml::AppendElement(components, "COMPONENT");
      component.SetAttribute("PARTNUMBER", "CRACC" + std::to_string(unit) + std::to_string(i));
      parvex::xml::AppendElement(component, "DESCRIPTION", "Accessory of a unit");
      parvex::xml::AppendElement(component, "SUPPLIER", "Korvane");
    }
    if (folded) {
      components.Fold();
    }
  }
  return BytesInUse() - before;
}

TEST_F(Folding, TakesAThirdOfTheMemoryAtMost) { EXPECT_LE(3 * BytesOfDocument(true), BytesOfDocument(false)); }

}  // namespace
}  // namespace parvex::xml
