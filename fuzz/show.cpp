#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "cli/host/exit_status.h"
#include "cli/quote/quote.h"
#include "cli/quote/quote_differences.h"
#include "cli/quote/quote_json.h"
#include "cli/quote/quote_page.h"
#include "cli/quote/quote_text.h"
#include "fuzz/fuzz_input.h"
#include "seams/xml.h"

// Quotes are shown and compared. The input: two documents, the first up to a NUL; the second may be missing.

namespace parvex {
namespace {

using cli::Quote;
using fuzz::Require;

std::optional<Quote> QuoteIn(std::string_view bytes) {
  const xml::Document document = xml::Document::Load(bytes);
  try {
    return document.IsEmpty() ? std::nullopt : std::optional(cli::ReadQuote(document, "quote.xml"));
  } catch (const cli::UsageError&) {
    return std::nullopt;
  }
}

void Look(std::string_view text) {
  const auto isControl = [](char c) { return c != '\n' && (static_cast<unsigned char>(c) < 0x20 || c == '\x7F'); };
  Require(std::none_of(text.begin(), text.end(), isControl), "what is shown holds no control characters");
}

void Show(const Quote& quote) {
  Look(cli::QuoteAsText(quote, false));
  Require(cli::QuotePage(quote, "quote.xml").find("<script") == std::string::npos, "a page holds no script");
  cli::WriteQuoteJson(quote, "quote.xml", Look);
  Require(cli::Compare(quote, quote).differences.empty(), "a quote does not differ from itself");
}

}  // namespace
}  // namespace parvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  fuzz::Input input(data, size);
  const std::optional<cli::Quote> before = QuoteIn(input.TakeUpTo('\0'));
  const std::optional<cli::Quote> after = QuoteIn(input.TakeRest());
  for (const auto& quote : {before, after}) {
    if (quote) {
      Show(*quote);
    }
  }
  if (before && after) {
    const cli::QuoteComparison comparison = cli::Compare(*before, *after);
    Look(cli::ComparisonAsText(comparison, false));
    cli::WriteComparisonJson(*before, "before.xml", *after, "after.xml", comparison, Look);
    cli::ComparisonPage(*before, *after, comparison, "before.xml", "after.xml");
  }
  return 0;
}
