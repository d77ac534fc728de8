#include "legacy_standin/projects/units.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>

#include "formats/text/file_names.h"
#include "formats/text/letter_case.h"
#include "legacy_standin/installation/json_members.h"

namespace parvex::standin {
namespace {

constexpr std::array<std::string_view, 19> kUnitKeys = {
    "PartNumber", "PDSG",       "MarkFor",    "Description", "Quantity", "MasterPrice", "Supplier",
    "TypeOfSale", "Ton",        "CFM",        "PreOrderReq", "ETO",      "Attribute1",  "Attribute2",
    "Attribute3", "Attribute4", "Attribute5", "BaseUnit1",   "BaseUnit2"};
constexpr std::array<std::string_view, 18> kAccessoryKeys = {
    "PartNumber", "Description", "MasterPrice", "Quantity",  "TypeOfSale", "MarkFor",
    "MarkFor2",   "MarkFor3",    "MarkFor4",    "Supplier",  "Attribute1", "Attribute2",
    "Attribute3", "Attribute4",  "Attribute5",  "BaseUnit1", "BaseUnit2",  "preorderreq"};
constexpr std::array<std::string_view, 8> kWarrantyKeys = {"Name",    "Quantity",  "Description", "MasterPrice",
                                                           "MarkFor", "BaseUnit1", "BaseUnit2",   "preorderreq"};
constexpr std::array<std::string_view, 7> kBlanketKeys = {"PartNumber", "Quantity",   "MasterPrice", "Description",
                                                          "Supplier",   "TypeOfSale", "preorderreq"};

using KnownKeys = std::span<const std::string_view>;

/// A text that goes into the selection file: no line break and no other control character fits on its line.
std::string LineText(const JsonMembers& members, const std::string& place, const Json& value) {
  if (!value.is_string()) {
    members.Refuse(place, "a text", value);
  }
  std::string text = value.get<std::string>();
  if (std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < 0x20; })) {
    members.Refuse(place, "one line of text", value);
  }
  return text;
}

Fields TakeFields(JsonMembers& parent, const Json& object, const std::string& place, KnownKeys known) {
  Fields fields;
  if (!object.is_object()) {
    parent.Refuse(place, "an object", object);
  }
  for (const auto& [key, value] : object.items()) {
    if (std::find(known.begin(), known.end(), key) == known.end()) {
      parent.Refuse(place + "." + key, "a known key", value);
    }
    fields.emplace_back(key, LineText(parent, place + "." + key, value));
  }
  return fields;
}

std::string ItemPlace(const JsonMembers& parent, const std::string& key, std::size_t index) {
  return parent.PlaceOf(key) + "[" + std::to_string(index) + "]";
}

std::vector<Fields> TakeItems(JsonMembers& parent, const std::string& key, KnownKeys known) {
  std::vector<Fields> items;
  for (const Json& item : parent.TakeList(key)) {
    items.push_back(TakeFields(parent, item, ItemPlace(parent, key, items.size()), known));
  }
  return items;
}

std::vector<std::string> TakeLines(JsonMembers& parent, const std::string& key) {
  std::vector<std::string> lines;
  for (const Json& item : parent.TakeList(key)) {
    lines.push_back(LineText(parent, ItemPlace(parent, key, lines.size()), item));
  }
  return lines;
}

StoredData::Place TakePlace(JsonMembers& stored) {
  const std::string place = stored.TakeText("place");
  if (place != "project" && place != "temp") {
    stored.Refuse(stored.PlaceOf("place"), "\"project\" or \"temp\"", place);
  }
  return place == "temp" ? StoredData::Place::Temp : StoredData::Place::Project;
}

/// Whether the name is, or on Windows may be, that of a file which the archive would replace: the project's own, or one
/// by which runs are handed over.
bool IsTaken(const StoredData& data) {
  constexpr std::array<std::string_view, 3> kInProject = {"PROJECT.MDB", "UNITS.JSON", "PROPERTIES.JSON"};
  constexpr std::array<std::string_view, 7> kInTemp = {"OUTPUT.INI",  "QBOUTPUT.INI", "UBOUT.INI", "QBINPUT.INI",
                                                       "HBINPUT.INI", "QPBLOB.TMP",   "INPUT.INI"};
  const std::string name = FoldName(data.fileName);
  const std::span<const std::string_view> taken =
      data.place == StoredData::Place::Temp ? std::span<const std::string_view>(kInTemp) : kInProject;
  return std::ranges::find(taken, name) != taken.end() || name.find('~') != std::string::npos;
}

StoredData TakeStored(JsonMembers& parent) {
  JsonMembers stored = parent.TakeObject("stored");
  StoredData data;
  data.fileName = stored.TakeText("file");
  if (data.fileName.empty()) {
    stored.Finish();
    return data;
  }
  if (!IsFileName(data.fileName)) {
    stored.Refuse(stored.PlaceOf("file"), "a file name without folder", data.fileName);
  }
  data.place = TakePlace(stored);
  if (IsTaken(data)) {
    stored.Refuse(stored.PlaceOf("file"), "a name that no other file has there", data.fileName);
  }
  for (const Json& item : stored.TakeList("entries")) {
    JsonMembers entry(stored.FileName(), ItemPlace(stored, "entries", data.entries.size()), item);
    StoredData::Entry& added = data.entries.emplace_back();
    added.name = entry.TakeText("name");
    added.text = entry.TakeText("text");
    added.deflate = entry.TakeFlag("deflate", true);
    entry.Finish();
  }
  stored.Finish();
  return data;
}

Unit TakeUnit(JsonMembers members) {
  Unit unit;
  const Json tagId = members.Take("tagId");
  if (!tagId.is_number_integer() || tagId < 0 || tagId > std::numeric_limits<int>::max()) {
    members.Refuse(members.PlaceOf("tagId"), "a whole number from 0 to 2147483647", tagId);
  }
  unit.tagId = tagId.get<int>();
  unit.keys = TakeFields(members, members.Take("keys"), members.PlaceOf("keys"), kUnitKeys);
  unit.stored = TakeStored(members);
  unit.extendedDescription = TakeLines(members, "extendedDescription");
  unit.etoDescription = TakeLines(members, "etoDescription");
  for (const Json& item : members.TakeList("accessories")) {
    JsonMembers accessory(members.FileName(), ItemPlace(members, "accessories", unit.accessories.size()), item);
    Accessory& added = unit.accessories.emplace_back();
    added.keys = TakeFields(accessory, accessory.Take("keys"), accessory.PlaceOf("keys"), kAccessoryKeys);
    added.stored = TakeStored(accessory);
    accessory.Finish();
  }
  unit.warranties = TakeItems(members, "warranties", kWarrantyKeys);
  unit.blanketItems = TakeItems(members, "blanketItems", kBlanketKeys);
  members.Finish();
  return unit;
}

Json ToJson(const Fields& fields) {
  Json object = Json::object();
  for (const auto& [key, value] : fields) {
    object[key] = value;
  }
  return object;
}

Json ToJson(const StoredData& stored) {
  Json entries = Json::array();
  for (const StoredData::Entry& entry : stored.entries) {
    entries.push_back({{"name", entry.name}, {"deflate", entry.deflate}, {"text", entry.text}});
  }
  return {{"file", stored.fileName},
          {"place", stored.place == StoredData::Place::Temp ? "temp" : "project"},
          {"entries", std::move(entries)}};
}

Json ToJson(const Accessory& accessory) {
  Json object;
  object["keys"] = ToJson(accessory.keys);
  if (!accessory.stored.fileName.empty()) {
    object["stored"] = ToJson(accessory.stored);
  }
  return object;
}

Json ToJson(const std::string& line) { return line; }

Json ToJson(const Unit& unit);

template <typename Item>
void AddList(Json& object, const char* key, const std::vector<Item>& items) {
  for (const Item& item : items) {
    object[key].push_back(ToJson(item));
  }
}

Json ToJson(const Unit& unit) {
  Json object;
  object["tagId"] = unit.tagId;
  object["keys"] = ToJson(unit.keys);
  if (!unit.stored.fileName.empty()) {
    object["stored"] = ToJson(unit.stored);
  }
  AddList(object, "extendedDescription", unit.extendedDescription);
  AddList(object, "etoDescription", unit.etoDescription);
  AddList(object, "accessories", unit.accessories);
  AddList(object, "warranties", unit.warranties);
  AddList(object, "blanketItems", unit.blanketItems);
  return object;
}

}  // namespace

std::string FieldOf(const Fields& fields, std::string_view key) {
  for (const auto& [name, value] : fields) {
    if (name == key) {
      return value;
    }
  }
  return {};
}

std::vector<Unit> ParseUnits(std::string_view json, std::string_view fileName) {
  JsonMembers all(std::string(fileName), "", ParseJson(json, fileName));
  std::vector<Unit> units;
  for (const Json& item : all.TakeList("units")) {
    units.push_back(TakeUnit(JsonMembers(all.FileName(), ItemPlace(all, "units", units.size()), item)));
  }
  all.Finish();
  return units;
}

std::string FormatUnits(const std::vector<Unit>& units) {
  Json all = {{"units", Json::array()}};
  AddList(all, "units", units);
  return all.dump(2) + "\n";
}

}  // namespace parvex::standin
