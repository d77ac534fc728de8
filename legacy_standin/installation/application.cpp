#include "legacy_standin/installation/application.h"

#include "seams/automation_error.h"

namespace parvex::standin {

std::string Application::Root() const {
  const std::optional<std::string> bin = registry.LocalMachineString("SOFTWARE\\Korvane\\KDQ47", "BinPath");
  if (!bin) {
    throw MakeRuntimeError(RuntimeError::PathNotFound, "the registry has no BinPath of the selection application");
  }
  const std::string folder = bin->substr(0, bin->find_last_not_of('\\') + 1);
  return folder.substr(0, folder.find_last_of('\\'));
}

}  // namespace parvex::standin
