#pragma once

#include <windows.h>

#include <string_view>

namespace parvex::test {

/// While it lives, this thread finds the substitute for the database engine as DAO.DBEngine.<version>: its manifest is
/// active. Nothing is registered, so tests do not meet each other's engines.
class SubstituteEngine {
 public:
  explicit SubstituteEngine(std::string_view version);
  ~SubstituteEngine();
  SubstituteEngine(const SubstituteEngine&) = delete;
  SubstituteEngine& operator=(const SubstituteEngine&) = delete;

 private:
  HANDLE context_ = INVALID_HANDLE_VALUE;
  ULONG_PTR cookie_ = 0;
};

}  // namespace parvex::test
