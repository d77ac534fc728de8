#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "hybris/hybris_document.h"
#include "hybris/selected_tag.h"
#include "seams/project_database.h"

namespace parvex {

/// What the legacy application keeps for a tag besides the selection.
struct TagStoredData {
  std::string buildVersion;
  std::string legacyTagId;
  std::string sapXml;  ///< the unit's SAP configuration, empty when it has none
};

/// Reads a tag's stored data from its blob file, and puts the blob itself, as Base64 text in a CDATA section, into the
/// tag's BLOB (which stays empty for a missing or empty blob).
///
/// - Build version and legacy tag id are the stored Product's attributes TagVersion and lTagID, empty texts when it
///   lacks them. A tag without a stored Product gets the next number of the thread's counter (ThreadState), so that
///   such tags stay different across all exports of a process.
/// - With the document's last tag, every tag of the document is looked up in the project's TagIndex table, except those
///   whose PDSG begins with "SD3" or has fewer than three characters. A row found gives that tag's LEGACY_TAGID element
///   its lTagId (an empty text for a null), and also the id that is returned: the last row found counts, deliberately
///   even when it belongs to an earlier tag. A database that is missing or does not open leaves everything as it is; a
///   statement that fails is an error.
/// - The SAP configuration comes from a blob that holds nothing but an SAP document; and for the families whose code
///   begins with "XR", from the stored document.
///
/// `element` is the element of this tag, the last one of its document, with its texts PDSG and MARKFOR set. Encoding a
/// blob consumes a file under "\Temp", so it comes last.
TagStoredData ReadTagStoredData(const SelectedTag& tag, const TagElement& element, bool isLastTag);

/// The id that a project's TagIndex has for a tag: of the first row found, an empty text for a null; nothing where
/// there is no row.
std::optional<std::string> FindTagId(Database& database, std::string_view pdsg, std::string_view markFor);

}  // namespace parvex
