#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hybris/quote_builder_exchange.h"
#include "seams/platform.h"
#include "seams/xml.h"

namespace parvex {

// What came back from the quote builder is held against what it was asked for. The protocol answers whatever came back,
// deliberately; what is wrong with it is told to the machine's notes, for those who want to know. Without notes nobody
// does, and nothing is looked at. Nothing here throws an AutomationError.

/// What a selection asks for, in the words that this system knows.
struct AskedSelection {
  std::string projectName;
  std::vector<std::string> tagNames;  ///< none for all
};
AskedSelection AskedFor(const xml::Document& command, const std::string& projectName);

/// The output that an earlier run left; nothing where there is none.
std::optional<std::string> OutputBefore(const Platform& platform, const std::string& binPath);

/// Whether the program was started, how it ended, and whether its output is of this run and not what was there before.
void CheckRun(const Platform& platform, const QuoteBuilderRun& run, const std::optional<std::string>& before = {});

/// Whether the output is of the project, and holds the tags that were asked for, each once.
void CheckSelection(const Platform& platform, const QuoteBuilderRun& run, const AskedSelection& asked);

}  // namespace parvex
