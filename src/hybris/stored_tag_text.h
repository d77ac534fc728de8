#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/zip/zip_reader.h"
#include "hybris/protected_files.h"
#include "seams/code_page.h"
#include "seams/platform.h"

namespace parvex {

struct StoredTagText {
  std::string text;
  /// False exactly when the text was found by the second way of reading.
  bool status = true;
  /// What the archive's file holds. Empty also where reading the text wrote or deleted other files, one of which may be
  /// the archive itself by a link; it then has to be read again.
  std::string archive;
};

/// The text that the legacy application stored for a tag or an accessory in the archive `fileName` (its blob).
///
/// First the archive is unpacked into its folder; when a file named "Tag" is there then, its lines, each with a CR LF
/// behind it, are the text, and that file is deleted. When this yields no text, the text is that of the archive's only
/// file, provided that it holds "SAPDATA". A file "Tag" counts whoever left it there, also beside a blob that is
/// missing, empty or no archive; a blob without a name has no folder and no text.
///
/// Texts are ANSI, or what a byte order mark in front says. A refused archive is the AutomationError of Unpack
/// (formats/zip/zip_reader.h), and nothing is written then.
///
/// `named`: the blobs of the selection, which no archive replaces; may be null.
StoredTagText ReadStoredTagText(const Platform& platform, std::string_view fileName, NamedBlobs* named = nullptr);

/// Whether an archive's entries are those of stored tag data: a file "Tag" among them, or a single file that holds
/// "SAPDATA". Nothing is written.
bool HoldTagText(CodePage& codePage, const std::vector<PackedEntry>& entries);

}  // namespace parvex
