#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "cli/lint/command_lint.h"
#include "cli/lint/placed_elements.h"
#include "fuzz/fuzz_input.h"
#include "seams/xml.h"

// A command document is held against the commands. The input is the document.

namespace parvex {
namespace {

using fuzz::Require;

void CollectNames(const cli::PlacedElement& element, std::vector<std::string>& names) {
  names.push_back(element.name);
  for (const cli::PlacedElement& child : element.children) {
    CollectNames(child, names);
  }
}

// Places are looked for in the text itself: the elements found there have to be those of the document. A document type
// may declare entities with elements in them, and other encodings write names otherwise.
void CompareElements(std::string_view bytes) {
  const bool isPlain = std::ranges::all_of(bytes, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  const xml::Document document = xml::Document::Load(bytes);
  if (document.IsEmpty() || !isPlain || bytes.find("<!DOCTYPE") != std::string_view::npos ||
      bytes.find('\0') != std::string_view::npos) {
    return;
  }
  std::vector<std::string> placed;
  CollectNames(cli::PlacedRoot(bytes), placed);
  std::vector<std::string> parsed;
  for (const xml::Node& element : document.All("//*")) {
    parsed.push_back(element.Name());
  }
  Require(placed == parsed, "the elements of the text are those of the document");
}

void LookAt(std::string_view bytes, cli::EntryPoint through) {
  const cli::LintResult result = cli::LintCommand(bytes, through);
  const auto lines = static_cast<std::size_t>(std::ranges::count(bytes, '\n')) + 1;
  std::size_t last = 1;
  for (const cli::LintFinding& finding : result.findings) {
    Require(finding.line >= 1 && finding.column >= 1 && !finding.kind.empty() && !finding.text.empty(),
            "a finding has a place, a kind and a text");
    if (finding.kind != "not-xml") {
      Require(finding.line <= lines && finding.line >= last, "findings are in the order of the text");
      last = finding.line;
    }
  }
}

}  // namespace
}  // namespace parvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  for (const auto through :
       {parvex::cli::EntryPoint::Any, parvex::cli::EntryPoint::Pull, parvex::cli::EntryPoint::PullNgorla}) {
    parvex::LookAt(bytes, through);
  }
  parvex::CompareElements(bytes);
  return 0;
}
