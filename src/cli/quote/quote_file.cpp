#include "cli/quote/quote_file.h"

#include "cli/host/exit_status.h"
#include "cli/session/replies.h"
#include "cli/terminal/standard_streams.h"

namespace parvex::cli {

xml::Document ReadQuoteDocument(const std::string& fileName) {
  const std::string bytes = ReadInput(fileName);
  const xml::Document document = xml::Document::Load(bytes);
  if (document.IsEmpty()) {
    throw UsageError(fileName + " is no XML document: " + document.ParseError());
  }
  if (const std::optional<std::string> failure = FailureIn(bytes)) {
    throw UsageError(fileName + " is a failed reply: " + *failure);
  }
  if (const std::string root = document.Root().Name(); root != "PROJECT") {
    throw UsageError(fileName + " is no Hybris document: its root is " + root + ", not PROJECT");
  }
  return document;
}

}  // namespace parvex::cli
