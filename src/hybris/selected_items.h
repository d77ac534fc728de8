#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "hybris/selected_tag.h"
#include "hybris/unit_model.h"
#include "seams/platform.h"

namespace parvex {

// What the quote builder lists in its output file; hybris/selection_section.h says how. A missing file or section is an
// empty list, and the 32768th item of a list the overflow error (6).

/// The tags in their order: part number, PDSG, mark-for and the name of the file with the tag's stored data. Platform
/// and path must outlive them.
std::vector<SelectedTag> ReadSelectedTags(const Platform& platform, std::string_view qbOutputFile);

/// The lines of a tag's engineered-to-order description, with CR LF between two of them.
std::string BuildEtoDescription(const SelectedTag& tag);

/// A tag's accessories, with their suppliers mapped to brands.
Accessories ReadAccessories(const SelectedTag& tag);

/// A tag's warranties.
Warranties ReadWarranties(const SelectedTag& tag);

}  // namespace parvex
