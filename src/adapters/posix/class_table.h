#pragma once

#include <functional>
#include <map>
#include <string>

#include "seams/automation.h"

namespace parvex::posix {

/// The classes that can be created by programmatic identifier, letter case ignored; what is registered later replaces
/// what was registered before.
class ClassTable : public automation::Automation {
 public:
  using Factory = std::function<automation::ObjectRef()>;

  void Register(const std::string& programmaticId, Factory factory);
  automation::ObjectRef Create(std::string_view programmaticId) override;

 private:
  std::map<std::string, Factory> factories_;  // by upper-cased identifier
};

}  // namespace parvex::posix
