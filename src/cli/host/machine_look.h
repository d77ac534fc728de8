#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace parvex::cli {

/// What can be found out about a machine and its legacy application without starting or creating anything there.
class MachineLook {
 public:
  /// Who answers as the legacy application.
  enum class Application {
    Installed,   ///< what is registered on this Windows
    Substitute,  ///< this program's own, on a machine folder that was made for it
    CopiedFiles  ///< nobody: a machine folder with an application's files, without its components
  };
  /// What programs a look is for: a component in a DLL serves those of its own bitness only.
  enum class Programs { OfThisBitness, OfTheOther };

  /// What a class is served by.
  struct Server {
    std::string file;     ///< empty where it is no file
    std::string version;  ///< of the file; empty where it has none
    bool isThere = true;
  };
  /// What does a part of this program's work.
  struct Engine {
    std::string name;
    std::string version;  ///< empty where it is not known
    std::string file;     ///< empty where it is a part of this program
  };
  /// A folder that belongs to the user, and how it is told of without his name: "~".
  struct PrivateFolder {
    std::string path;
    std::string name;
  };

  /// What is known against starting a file.
  struct StartRefusal {
    std::string why = {};         ///< " is no program"; empty when nothing is
    bool lacksRightOnly = false;  ///< a program that nobody may run
  };

  virtual ~MachineLook() = default;

  virtual Application WhoAnswers() = 0;
  /// By a programmatic identifier, or a class id in braces. Nothing where no such class is registered.
  virtual std::optional<Server> ServerOf(std::string_view id, Programs programs) = 0;
  virtual Engine XmlParser() = 0;
  virtual Engine DatabaseEngine() = 0;

  /// Why the system would not start a file of the machine as a program. An AutomationError where it cannot be read.
  virtual StartRefusal WhyNotStarted(std::string_view path) = 0;

  /// This program of the other bitness, which is installed beside it; empty where it is not.
  virtual std::string OtherProgram() = 0;

  /// How this system calls a file or folder of the machine, whether it exists or not.
  virtual std::string OwnPath(std::string_view path) = 0;
  /// The machine folder; empty on Windows.
  virtual std::string MachineFolder() = 0;
  /// Whether the folder is one that "machine create" has made, and makes anew.
  virtual bool IsSampleMachine() = 0;
  /// The substitute's program that takes the quote builder's place; empty where there is none.
  virtual std::string SubstituteWorkflow() = 0;

  /// The longest path first.
  virtual std::vector<PrivateFolder> PrivateFolders() = 0;
};

}  // namespace parvex::cli
