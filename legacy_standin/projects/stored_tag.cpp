#include "legacy_standin/projects/stored_tag.h"

#include <algorithm>
#include <limits>

#include "formats/text/text.h"
#include "seams/automation_error.h"
#include "seams/xml.h"

namespace parvex::standin {
namespace {

constexpr std::string_view kTagEntry = "Tag";

template <typename AnyUnit>
auto TagEntryOf(AnyUnit& unit) {
  const auto entry = std::ranges::find(unit.stored.entries, kTagEntry, &StoredData::Entry::name);
  return entry == unit.stored.entries.end() ? nullptr : &*entry;
}

void SetField(Fields& fields, std::string_view key, std::string_view value) {
  const auto field = std::ranges::find(fields, key, &Fields::value_type::first);
  if (field == fields.end()) {
    fields.emplace_back(key, value);
  } else {
    field->second = value;
  }
}

std::string MakeTagDocument(const Unit& unit, std::string_view version, std::string_view sapConfiguration) {
  const xml::Document document = xml::Document::Parse("<Application><System><Product/></System></Application>");
  document.Root().SetAttribute("PDSG", PdsgOf(unit));
  const xml::Node product = document.First("//Product");
  product.SetAttribute("ProdName", PdsgOf(unit));
  product.SetAttribute("MarkFor", TagNameOf(unit));
  product.SetAttribute("TagVersion", version);
  product.SetAttribute("lTagID", std::to_string(unit.tagId));
  product.SetAttribute("Quantity", FieldOf(unit.keys, "Quantity"));
  product.SetAttribute("UnitSize", FieldOf(unit.keys, "Ton"));
  product.SetAttribute("PartNumber", FieldOf(unit.keys, "PartNumber"));
  product.SetAttribute("Model", FirstUnits(FieldOf(unit.keys, "PartNumber"), 4));
  if (!sapConfiguration.empty()) {
    document.Root().Append(xml::Document::Parse(sapConfiguration).Root());
  }
  return document.Root().Xml();
}

}  // namespace

std::string TagNameOf(const Unit& unit) { return FieldOf(unit.keys, "MarkFor"); }

std::string PdsgOf(const Unit& unit) { return FieldOf(unit.keys, "PDSG"); }

std::string TagDocumentOf(const Unit& unit) {
  const StoredData::Entry* entry = TagEntryOf(unit);
  return entry == nullptr ? std::string() : entry->text;
}

std::string ProductAttribute(const Unit& unit, std::string_view name) {
  const xml::Node product = xml::Document::Parse(TagDocumentOf(unit)).First("//Product");
  return product ? product.Attribute(name).value_or("") : std::string();
}

void SetProductAttribute(Unit& unit, std::string_view name, std::string_view value) {
  StoredData::Entry* entry = TagEntryOf(unit);
  const xml::Document document = xml::Document::Parse(entry == nullptr ? "" : entry->text);
  if (const xml::Node product = document.First("//Product")) {
    product.SetAttribute(name, value);
    entry->text = document.Root().Xml();
  }
}

StoredData MakeTagArchive(const Unit& unit, StoredData::Place place, std::string_view version,
                          std::string_view sapConfiguration) {
  return {"tag" + std::to_string(unit.tagId) + ".blb",
          place,
          {{std::string(kTagEntry), MakeTagDocument(unit, version, sapConfiguration), true},
           {"Drawing.dat", "unit outline, sheet 1 of 1", false}}};
}

void NameTag(Unit& unit, std::string_view name) {
  SetField(unit.keys, "MarkFor", name);
  SetProductAttribute(unit, "MarkFor", name);
}

Unit CopyOfTag(const Unit& unit, int tagId, std::string_view name) {
  Unit copy = unit;
  copy.tagId = tagId;
  NameTag(copy, name);
  SetProductAttribute(copy, "lTagID", std::to_string(tagId));
  const std::string archive = "tag" + std::to_string(tagId);
  if (!copy.stored.fileName.empty()) {
    copy.stored.fileName = archive + ".blb";
  }
  for (Accessory& accessory : copy.accessories) {
    if (!accessory.stored.fileName.empty()) {
      accessory.stored.fileName = archive + "-" + accessory.stored.fileName;
    }
  }
  return copy;
}

int FreeTagId(const std::vector<Unit>& units) {
  int highest = 1100;
  for (const Unit& unit : units) {
    highest = std::max(highest, unit.tagId);
  }
  if (highest == std::numeric_limits<int>::max()) {
    throw MakeRuntimeError(RuntimeError::Overflow, "there is no tag number behind " + std::to_string(highest));
  }
  return highest + 1;
}

std::vector<Unit>::iterator FindTag(std::vector<Unit>& units, std::string_view pdsg, std::string_view name) {
  return std::ranges::find_if(units, [&](const Unit& unit) { return TagNameOf(unit) == name && PdsgOf(unit) == pdsg; });
}

}  // namespace parvex::standin
