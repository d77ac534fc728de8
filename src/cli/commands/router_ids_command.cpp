#include "cli/commands/router_ids_command.h"

#include <filesystem>
#include <optional>

#include "cli/host/host.h"
#include "cli/terminal/standard_streams.h"
#include "formats/router_ids/router_ids.h"

namespace parvex::cli {
namespace {

RouterIds ReadFrom(const std::string& file) {
  std::error_code none;
  if (std::filesystem::is_regular_file(PathOf(file), none)) {
    if (const std::optional<RouterIds> ids = FromLines(ReadInput(file))) {
      return *ids;
    }
  }
  return RouterIdsIn(file);
}

}  // namespace

ExitStatus TellRouterIds(const SessionOptions& sessionOptions, const RouterIdsOptions& options) {
  const RouterIds ids = ReadFrom(options.file);
  if (!options.save) {
    WriteText(AsLines(ids));
    return kReply;
  }
  Session session(sessionOptions);
  OwnSettings& settings = session.Settings();
  const RegistryHive hive = options.machineWide ? RegistryHive::LocalMachine : RegistryHive::CurrentUser;
  std::string told = "saved in " + SaveRouterIds(settings, hive, ids) + ":\nClassId " + ids.classId + "\nInterfaceId " +
                     ids.interfaceId + "\n";
  const std::string inForce = RouterIdsInForce(settings).place;
  session.Close();
  if (!told.starts_with("saved in " + inForce)) {
    told += "The current user has others, which stay in force for him: " + inForce + "\n";
  }
  WriteText(told);
  return kReply;
}

}  // namespace parvex::cli
