#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace parvex::standin {

/// How the substitute legacy application is told to misbehave. Everything absent means: behave.
struct StandinSettings {
  struct Workflow {
    bool cancel = false;          ///< ends as if its user had cancelled
    std::optional<int> exitCode;  ///< ends with this code (0 to 255), whatever it did
    bool writeNothing = false;    ///< leaves neither an output file nor blobs
  };
  struct Router {
    std::vector<std::string> refuse;  ///< names of the commands that the router refuses
  };
  struct ReportServer {
    bool missing = false;    ///< its classes are not registered
    std::string failAt;      ///< the member that fails; empty for none
    bool makeReport = true;  ///< false: nothing is made, and the answer says so
  };
  struct Builder {
    bool missing = false;    ///< its class is not registered
    bool cancelled = false;  ///< its user cancels: nothing is changed
    std::string failAt;      ///< the member that fails; empty for none
    int polls = 2;           ///< looks at UILoaded that find it not loaded yet
  };
  Workflow workflow;
  Router router;
  ReportServer reportServer;
  Builder builder;
};

/// Reads the text of a standin.json. A text that is no JSON, a key that nobody knows and a value of the wrong type are
/// AutomationErrors (5) that name `fileName`, the key and the value.
StandinSettings ParseStandinSettings(std::string_view json, std::string_view fileName);

/// The file of a machine folder that has them.
inline constexpr const char* kSettingsFile = "standin.json";

/// The settings of a machine folder: those of its standin.json, or the defaults when it has none.
StandinSettings ReadStandinSettings(const std::filesystem::path& machineFolder);

}  // namespace parvex::standin
