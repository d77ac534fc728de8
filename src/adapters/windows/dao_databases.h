#pragma once

#include "seams/automation.h"
#include "seams/project_database.h"

namespace parvex::windows {

/// The engines that are tried, in this order.
inline constexpr const char* kDatabaseEngines[] = {"DAO.DBEngine.36", "DAO.DBEngine.120"};

/// Jet databases through the engine's own objects, late bound: "DAO.DBEngine.36" (32-bit only) or "DAO.DBEngine.120".
/// docs/jet-databases.md lists the members used.
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
