#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "formats/jet/writer.h"
#include "protocol/legacy_link.h"
#include "tests/support/command_texts.h"
#include "tests/support/fake_platform.h"

namespace parvex::test {

/// A machine with a project whose database is real, and a router that answers from a list.
class ProjectMachine {
 public:
  using Row = std::vector<std::optional<std::string>>;

  static constexpr const char* kFolder = "C:\\Korvane\\TQ5-VX\\Projects\\Clinic";
  static constexpr const char* kDatabase = "C:\\Korvane\\TQ5-VX\\Projects\\Clinic\\Project.mdb";

  FakeMachine machine;
  LegacyLink link{machine.platform};

  /// The project's database with these rows (sPdsg, sKey, sValue) in Config.
  void WriteConfig(std::vector<Row> rows) {
    const standin::JetTable config{"Config", {{"sPdsg"}, {"sKey"}, {"sValue"}}, std::move(rows)};
    machine.Write(kDatabase, standin::MakeJetDatabase({&config, 1}));
  }

  std::vector<Row> ReadConfig() {
    std::vector<Row> rows;
    const auto database = machine.platform.projectDatabases->Open(kDatabase);
    for (const auto set = database->OpenRecordSet("SELECT * FROM Config"); !set->AtEnd(); set->MoveNext()) {
      rows.push_back({set->Column("sPdsg"), set->Column("sKey"), set->Column("sValue")});
    }
    return rows;
  }

  void Answer(bool success, const std::string& text) { machine.routers.answers.push_back({success, text}); }
  const std::vector<std::string>& Requests() const { return machine.routers.requests; }
};

inline const char* const kNameTaken =
    "<LegacyORLA><returnError>-1</returnError><errorMessage>A Project of that name already exists</errorMessage>"
    "</LegacyORLA>\r\n";

}  // namespace parvex::test
