#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "hybris/unit_model.h"
#include "seams/platform.h"

namespace parvex {

// What the quote builder lists in its output file; hybris/selection_section.h says how. A missing file or section is an
// empty list, and the 32768th item of a list the overflow error (6).

/// A tag as its section describes it.
struct SelectedTag {
  std::string partNumber;
  std::string pdsg;
  std::string markFor;
  std::string blobFileName;
};
using Tags = OneBasedList<std::shared_ptr<SelectedTag>>;

/// The tags: part number, PDSG, mark-for and the name of the file with the tag's stored data.
Tags ReadSelectedTags(const Platform& platform, std::string_view qbOutputFile);

/// The lines of a tag's engineered-to-order description, with CR LF between two of them.
std::string BuildEtoDescription(const Platform& platform, std::string_view qbOutputFile, std::int32_t tagIndex);

/// A tag's accessories, with their suppliers mapped to brands.
Accessories ReadAccessories(const Platform& platform, std::string_view qbOutputFile, std::int32_t tagIndex);

/// A tag's warranties.
Warranties ReadWarranties(const Platform& platform, std::string_view qbOutputFile, std::int32_t tagIndex);

}  // namespace parvex
