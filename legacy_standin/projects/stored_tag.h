#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "legacy_standin/projects/units.h"

namespace parvex::standin {

// A unit as the tag that it is: named by its mark-for within its product data set group. Most units have a tag
// document, which lies in the entry "Tag" of their archive; the others are known to the project only (docs/standin.md).

/// Mark-for and product data set group.
std::string TagNameOf(const Unit& unit);
std::string PdsgOf(const Unit& unit);

/// The unit's tag document; empty when it has none.
std::string TagDocumentOf(const Unit& unit);
/// An attribute of the tag document's Product; empty when the unit has no tag document.
std::string ProductAttribute(const Unit& unit, std::string_view name);
/// Sets one, where there is a tag document.
void SetProductAttribute(Unit& unit, std::string_view name, std::string_view value);

/// An archive with a new tag document, made of the unit's keys. `sapConfiguration`, when it is not empty, is the markup
/// of an order configuration that the document holds.
StoredData MakeTagArchive(const Unit& unit, StoredData::Place place, std::string_view version,
                          std::string_view sapConfiguration = "");

/// Gives the unit another name, its tag document included.
void NameTag(Unit& unit, std::string_view name);
/// The unit as another tag: under a number and with archives of its own.
Unit CopyOfTag(const Unit& unit, int tagId, std::string_view name);

/// A number that none of the units has.
int FreeTagId(const std::vector<Unit>& units);
/// The first unit of that name and group; the end when there is none. Letter case counts.
std::vector<Unit>::iterator FindTag(std::vector<Unit>& units, std::string_view pdsg, std::string_view name);

}  // namespace parvex::standin
