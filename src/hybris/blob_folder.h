#pragma once

#include <string_view>
#include <vector>

#include "formats/zip/zip_reader.h"
#include "hybris/protected_files.h"
#include "seams/files.h"

namespace parvex {

/// The path up to and including its last separator.
std::string_view FolderOf(std::string_view path);

/// Writes entries into the folder of the archive at `blobPath`, over files that exist, making the folders in their
/// names. An entry that would lie on the archive itself, or on a file or folder whose own name is another one, is an
/// AutomationError (5), and nothing is written then. Old packers give entries the short names of files
/// ("UNITDA~1.XML"): such a name is refused only where the machine already knows another file by it.
///
/// What has the name of a device ("aux.txt") is left out: on Windows no such file can be.
/// What an archive has no business to replace is refused likewise (RefuseProtectedFile); `named` may be null.
void ExtractBesideBlob(Files& files, const std::vector<PackedEntry>& entries, std::string_view blobPath,
                       NamedBlobs* named = nullptr);

}  // namespace parvex
