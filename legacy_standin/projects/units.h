#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace parvex::standin {

// The units of one project, as the substitute legacy application keeps them in the project folder's units.json
// (docs/standin.md describes the file). All text is UTF-8.

/// Key and value pairs in the order in which they go into the selection file. Keys are the file's own, without the item
/// number and without the colon before it.
using Fields = std::vector<std::pair<std::string, std::string>>;

/// The value of a key, empty when it is not there.
std::string FieldOf(const Fields& fields, std::string_view key);

/// What is kept of a tag or an accessory: an archive file with entries. An archive without a file name does not exist.
struct StoredData {
  enum class Place {
    Project,  ///< the project folder: read and left there
    Temp      ///< the temporary folder: a hand-over, consumed by its reader
  };
  struct Entry {
    std::string name;
    std::string text;
    bool deflate = true;
    bool operator==(const Entry&) const = default;
  };
  std::string fileName;  ///< without folder
  Place place = Place::Project;
  std::vector<Entry> entries;
  bool operator==(const StoredData&) const = default;
};

struct Accessory {
  Fields keys;
  StoredData stored;
  bool operator==(const Accessory&) const = default;
};

struct Unit {
  int tagId = 0;  ///< number of the tag in the project database
  Fields keys;    ///< PartNumber, PDSG, MarkFor, ...
  StoredData stored;
  std::vector<std::string> extendedDescription;
  std::vector<std::string> etoDescription;
  std::vector<Accessory> accessories;
  std::vector<Fields> warranties;
  std::vector<Fields> blanketItems;
  bool operator==(const Unit&) const = default;
};

/// Reads the text of a units.json. What is no JSON, a key that nobody knows, a value of the wrong type or a text that
/// does not fit on a line of the selection file is an AutomationError (5) that names `fileName`, the place and the
/// value.
std::vector<Unit> ParseUnits(std::string_view json, std::string_view fileName);

/// The text of a units.json that ParseUnits reads back as the same units.
std::string FormatUnits(const std::vector<Unit>& units);

}  // namespace parvex::standin
