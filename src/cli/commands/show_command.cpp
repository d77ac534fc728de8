#include "cli/commands/show_command.h"

#include <optional>

#include "cli/quote/quote.h"
#include "cli/quote/quote_differences.h"
#include "cli/quote/quote_file.h"
#include "cli/quote/quote_json.h"
#include "cli/quote/quote_page.h"
#include "cli/quote/quote_text.h"
#include "cli/terminal/colours.h"
#include "cli/terminal/output_file.h"
#include "cli/terminal/standard_streams.h"

namespace parvex::cli {
namespace {

void Write(const ShowOptions& options, const std::string& shown) {
  if (options.html.empty()) {
    WriteText(shown);
  } else {
    OutputFile(options.html).Write(shown);
  }
}

}  // namespace

ExitStatus Show(const ShowOptions& options) {
  const std::string& lastName = options.later.empty() ? options.file : options.later;
  const Quote last = ReadQuote(ReadQuoteDocument(lastName), lastName);
  const bool isPage = !options.html.empty();
  if (options.later.empty()) {
    if (options.json) {
      WriteQuoteJson(last, lastName, WriteText);
    } else {
      Write(options, isPage ? QuotePage(last, lastName) : QuoteAsText(last, TakesColours(stdout)));
    }
    return kReply;
  }
  const std::string& firstName = options.file;
  const Quote first = ReadQuote(ReadQuoteDocument(firstName), firstName);
  const QuoteComparison comparison = Compare(first, last);
  if (options.json) {
    WriteComparisonJson(first, firstName, last, lastName, comparison, WriteText);
  } else {
    Write(options, isPage ? ComparisonPage(first, last, comparison, firstName, lastName)
                          : ComparisonAsText(comparison, TakesColours(stdout)));
  }
  return comparison.differences.empty() ? kReply : kFailedReply;
}

}  // namespace parvex::cli
