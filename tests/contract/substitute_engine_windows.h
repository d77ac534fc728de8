#pragma once

#include <string_view>

#include "tests/support/active_manifest_windows.h"

namespace parvex::test {

/// While it lives, this thread finds the substitute for the database engine as DAO.DBEngine.<version>: its manifest is
/// active. Nothing is registered, so tests do not meet each other's engines.
class SubstituteEngine {
 public:
  explicit SubstituteEngine(std::string_view version);

 private:
  ActiveManifest manifest_;
};

}  // namespace parvex::test
