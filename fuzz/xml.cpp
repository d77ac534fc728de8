#include "seams/xml.h"

#include <string>
#include <string_view>

#include "formats/text/text.h"
#include "fuzz/fuzz_input.h"

// A document is loaded, serialised and loaded again: from the second time on nothing changes any more but line ends. (A
// CR LF that references put into a text is written as it is, and reads as a LF.) The input: an expression to select by,
// up to a NUL, and the document.

namespace parvex {
namespace {

using fuzz::Require;
using xml::Document;
using xml::Node;

std::string WithoutCarriageReturns(std::string_view text) {
  return ReplaceAll(ReplaceAll(text, "&#13;", ""), "\r", "");
}

void CheckRoundTrip(const Document& document) {
  const Document second = Document::Parse(document.Xml());
  Require(!second.IsEmpty(), "what was serialised parses");
  const std::string markup = second.Xml();
  const Document third = Document::Parse(markup);
  Require(!third.IsEmpty(), "what was serialised twice parses");
  Require(WithoutCarriageReturns(third.Xml()) == WithoutCarriageReturns(markup),
          "what was serialised is serialised alike");
  Require(WithoutCarriageReturns(third.Root().Text()) == WithoutCarriageReturns(second.Root().Text()),
          "the text survives");
  // A name or comment may hold what the document's own encoding lacks.
  fuzz::MayBeRefused([&] { Require(!Document::Load(document.Bytes()).IsEmpty(), "the bytes of a file load"); });
}

void Select(const Document& document, const std::string& expression) {
  fuzz::MayBeRefused([&] {
    for (const Node& node : document.All(expression)) {
      node.Text();
      node.Xml();
    }
  });
}

// Moves things about as the writers of documents do.
void Rearrange(const Document& document) {
  const Node root = document.Root();
  const Node clone = root.Clone();
  const Document other = Document::New();
  Require(other.Append(clone).Xml() == root.Xml(), "a clone is written alike");
  if (const Node first = root.FirstChild()) {
    first.Remove();
    clone.Append(first);
  }
  root.SetText("replaced");
  Require(root.Text() == "replaced", "a text that was set is read");
  Require(!Document::Parse(other.Xml()).IsEmpty(), "what was moved about parses");
}

}  // namespace
}  // namespace parvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  fuzz::Input input(data, size);
  const std::string expression(input.TakeUpTo('\0'));
  const std::string_view text = input.TakeRest();
  for (const xml::Document& document : {xml::Document::Parse(text), xml::Document::Load(text)}) {
    fuzz::Require(document.IsEmpty() != document.ParseError().empty(), "a document is empty with a reason, or not");
    if (!document.IsEmpty()) {
      CheckRoundTrip(document);
      Select(document, expression);
      Rearrange(document);
    }
  }
  return 0;
}
