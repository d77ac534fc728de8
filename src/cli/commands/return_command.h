#pragma once

#include <optional>
#include <string>

#include "cli/host/exit_status.h"
#include "cli/session/session.h"

namespace parvex::cli {

struct ReturnOptions {
  std::string file;                ///< a Hybris document, "-" for standard input
  std::optional<std::string> tag;  ///< name or place of the tag; needed when the document has several
  bool lenient = false;            ///< bring back whatever the protocol makes of the tag's stored data
};

/// Brings a tag of a Hybris document back to the legacy application, by the command RebuildTag, which takes one tag. A
/// refusal is told and is kFailedReply.
///
/// Stored data that are missing, or no Base64 throughout, would bring back other bytes than were exported: nothing is
/// sent then, and it is kFailedCall, as it is when something else than they lies in the hand-over afterwards.
///
/// A tag is named by its mark-for, or by its place among those of the document, from 1: "2", or "#2" where a tag has
/// that name. A name that several tags have, or that is the place of another one, is wrong usage: a tag is never
/// guessed.
///
/// The tag is sent without its base units: what is brought back lies in its attributes, and RebuildTag shows a message
/// box for every component that it is given.
ExitStatus Return(const SessionOptions& sessionOptions, const ReturnOptions& options);

}  // namespace parvex::cli
