#pragma once

#include <map>
#include <string>

#include "cli/host/machine_look.h"

namespace parvex::cli {

/// A Windows with this program, of 64 bits, and beside it the one of 32.
class WindowsLook : public MachineLook {
 public:
  std::map<std::string, Server, std::less<>> seen;         ///< by programs of 64 bits
  std::map<std::string, Server, std::less<>> seenBy32Bit;  ///< by those of 32

  Application WhoAnswers() override { return Application::Installed; }
  std::optional<Server> ServerOf(std::string_view id, Programs programs) override {
    const auto& servers = programs == Programs::OfThisBitness ? seen : seenBy32Bit;
    const auto found = servers.find(id);
    return found == servers.end() ? std::nullopt : std::optional(found->second);
  }
  Engine XmlParser() override { return {"MSXML 3", "8.110.1.1", "C:\\Windows\\System32\\msxml3.dll"}; }
  Engine DatabaseEngine() override { return {"DAO", "", ""}; }
  StartRefusal WhyNotStarted(std::string_view) override { return {}; }
  std::string OtherProgram() override { return "C:\\Program Files\\Parvex\\parvex32.exe"; }
  std::string OwnPath(std::string_view path) override { return std::string(path); }
  std::string MachineFolder() override { return {}; }
  bool IsSampleMachine() override { return false; }
  std::string SubstituteWorkflow() override { return {}; }
  std::vector<PrivateFolder> PrivateFolders() override { return {}; }
};

}  // namespace parvex::cli
