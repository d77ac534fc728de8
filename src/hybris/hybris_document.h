#pragma once

#include <string>
#include <string_view>

#include "seams/xml.h"

namespace parvex {

// The shape of the Hybris PROJECT document:
//
//   PROJECT
//     ATTRIBUTES_LIST    JOB with LEGACY_PROJECTNAME; CUSTOMER, SALESPERSON and BRAND, which nobody fills
//     TAGS
//       TAG              one for each exported tag, in export order
//         ATTRIBUTES_LIST    BUILDVERSION, MARKFOR, PDSG, LEGACY_TAGID, BLOB
//         BASEUNITS          see hybris/base_unit_elements.h

/// The skeleton without tags. The project name is set in as it stands, deliberately without escaping: a name that holds
/// a double quote, an ampersand or a less-than sign makes the skeleton unreadable, and the document is then empty.
xml::Document CreateHybrisDocument(std::string_view projectName);

/// A TAG element and those of its elements that are filled later, kept so that nobody has to select them again.
struct TagElement {
  xml::Node element;
  xml::Node buildVersion;
  xml::Node markFor;
  xml::Node pdsg;
  xml::Node legacyTagId;
  xml::Node blob;
  xml::Node baseUnits;
};

/// Appends an empty TAG to PROJECT/TAGS; "object not set" (91) for a document without it, such as the empty one that an
/// unreadable project name leaves.
TagElement AppendTagElement(const xml::Document& document);

/// The brand of a line: the supplier when it names a brand (outer blanks and letter case do not matter), otherwise the
/// one that the first character of the type of sale stands for, "Korvane" when it stands for none.
std::string MapBrand(std::string_view supplier, std::string_view typeOfSale);

}  // namespace parvex
