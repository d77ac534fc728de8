#pragma once

#include "platform/automation.h"
#include "platform/project_database.h"

namespace parvex::windows {

/// Jet databases through the engine's own objects, late bound: "DAO.DBEngine.36" (32-bit only) or "DAO.DBEngine.120".
/// Members used: OpenDatabase of the engine; OpenRecordset and Close of the database; EOF, MoveNext, Fields, AddNew, Edit,
/// Update and Close of the record set; Value of a field.
class DaoDatabases : public ProjectDatabases {
 public:
  /// `automation` outlives this.
  explicit DaoDatabases(automation::Automation& automation) : automation_(automation) {}

  /// Also an AutomationError (429), naming both programmatic identifiers, when no engine is installed.
  std::unique_ptr<Database> Open(std::string_view path) override;

 private:
  automation::Automation& automation_;
};

}  // namespace parvex::windows
