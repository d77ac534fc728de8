#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace parvex {

/// Why a link is not replaced.
inline constexpr std::string_view kIsLink = "it is a link";

/// The system that this program runs on, apart from the machine that commands work on: where its own records are kept,
/// and what it knows about itself. Paths are the system's own, as UTF-8. Every failure is an AutomationError that names
/// the path.
class HostSystem {
 public:
  /// What stays the same as long as the program runs.
  struct Facts {
    std::string platform;   ///< "Windows", or "machine folder"
    unsigned bitness = 0;   ///< of this program
    unsigned codePage = 0;  ///< the ANSI code page of the machine
    std::string program;    ///< the path of the program that this is part of
    std::uint32_t processId = 0;
    std::string xmlEngine;
    std::string databaseEngine;
  };

  /// A new file that is written in pieces. What was written is with the system, and survives the end of this program.
  class File {
   public:
    virtual ~File() = default;
    virtual void Append(std::string_view bytes) = 0;
    /// Writes over bytes that are there.
    virtual void Overwrite(std::uint64_t at, std::string_view bytes) = 0;
    /// Cuts the file to its first `size` bytes; Append goes on there.
    virtual void Truncate(std::uint64_t size) = 0;
    /// At most `most` bytes from `at` on; fewer at the end of the file.
    virtual std::string Read(std::uint64_t at, std::size_t most) = 0;
  };

  /// A new file that takes the name of another one, or its first name, in one step when it is complete. Without
  /// TakeName nothing has changed and nothing is left. A pipe or a device is written to as it is, by TakeName.
  class Replacement : public File {
   public:
    /// Afterwards a power cut leaves the new file. To be called once, and nothing else after it.
    virtual void TakeName() = 0;
  };
  /// Who may read a file: who might read the one before, or whom the user's settings let; or only the user.
  enum class Readers { AsUsual, OwnerOnly };

  struct Entry {
    std::string name;
    std::uint64_t bytes = 0;  ///< 0 for what is no file
    bool isFolder = false;    ///< or a link to one
    bool isPlain = true;      ///< a file or folder, no link to one and nothing else
  };

  virtual ~HostSystem() = default;

  virtual Facts ThisProgram() = 0;
  virtual std::uint32_t ThreadId() = 0;
  /// A variable of the environment; nothing when it is not set or empty.
  virtual std::optional<std::string> Variable(std::string_view name) = 0;
  /// Where records are kept when the user names no folder: one of his own.
  virtual std::string DefaultFolder() = 0;

  /// The local time, as YYYYMMDD-hhmmss.
  virtual std::string LocalTime() = 0;
  /// The universal time, as YYYY-MM-DDThh:mm:ssZ.
  virtual std::string UniversalTime() = 0;
  /// A clock that only goes forward.
  virtual std::uint64_t Microseconds() = 0;

  /// Makes a folder and those above it; one that exists is no error.
  virtual void CreateFolders(std::string_view path) = 0;
  /// Makes a folder in an existing one; false when something has the name already.
  virtual bool CreateNewFolder(std::string_view path) = 0;
  /// Makes a file, which must not exist. While it is open, IsInUse is true of it.
  virtual std::unique_ptr<File> MakeFile(std::string_view path) = 0;
  /// Makes a file beside `path`, in a folder that exists, that is to replace what stands there. From the first byte on
  /// it has the access rights of the file that it is to replace, or its owner's only, if told so. A read-only file, a
  /// folder and a link are refused (75): links are not followed.
  virtual std::unique_ptr<Replacement> MakeReplacement(std::string_view path, Readers readers) = 0;
  /// Whether a program holds the file open that it made by MakeFile.
  virtual bool IsInUse(std::string_view path) = 0;
  /// Whether the path is a folder, or a link to one.
  virtual bool IsFolder(std::string_view path) = 0;
  /// How long a file is, links followed; 0 for what is none.
  virtual std::uint64_t SizeOf(std::string_view path) = 0;
  virtual std::string ReadAll(std::string_view path) = 0;
  /// Makes the file hold these bytes, or makes it.
  virtual void WriteAll(std::string_view path, std::string_view bytes) = 0;
  /// Gives a file another name; one of that name is replaced.
  virtual void Rename(std::string_view from, std::string_view to) = 0;
  virtual void Remove(std::string_view path) = 0;
  /// Removes a folder with everything in it.
  virtual void RemoveFolder(std::string_view path) = 0;
  /// What stands in a folder; none when it does not exist.
  virtual std::vector<Entry> List(std::string_view folder) = 0;
};

}  // namespace parvex
