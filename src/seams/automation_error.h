#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace parvex {

/// The one exception that means "a run-time error" everywhere in the system. It is thrown where a call of the front end
/// has to end without a reply; the faces turn it into an HRESULT with rich error information or into exit status 3.
///
/// The number is an HRESULT. Errors of the automation runtime are 0x800A0000 plus the runtime's own number, since
/// scripts of integrators compare them; numbers are only ever added (docs/errors.md lists them).
class AutomationError : public std::runtime_error {
 public:
  AutomationError(std::uint32_t number, std::string source, const std::string& description)
      : std::runtime_error(description), number_(number), source_(std::move(source)) {}

  std::uint32_t Number() const { return number_; }
  /// Who raised it, for example "Parvex" or "Base64.DecodeToFile".
  const std::string& Source() const { return source_; }
  /// What was refused, with the file, element or member and the value.
  std::string Description() const { return what(); }

  /// The runtime's own number (the low 16 bits), for example 53 for a missing file.
  std::uint16_t RuntimeNumber() const { return static_cast<std::uint16_t>(number_ & 0xFFFFu); }

 private:
  std::uint32_t number_;
  std::string source_;
};

/// Where the numbers begin that a component gives errors of its own.
inline constexpr std::uint32_t kObjectErrorBase = 0x80040000u;

/// Numbers of the automation runtime.
enum class RuntimeError : std::uint16_t {
  InvalidCall = 5,          ///< invalid procedure call or argument
  Overflow = 6,             ///< a 16-bit counter of the protocol went past 32767
  SubscriptOutOfRange = 9,  ///< a list with a fixed number of slots is full
  TypeMismatch = 13,        ///< a text that does not read as the type that is needed
  FileNotFound = 53,        ///< a file that has to exist does not
  FileExists = 58,          ///< a new file's name is taken
  DiskFull = 61,            ///< no room for what has to be written
  PermissionDenied = 70,    ///< somebody else holds what may have one user only
  PathFileAccess = 75,      ///< a file or folder that may not be read or written
  PathNotFound = 76,        ///< a folder on the way to a file does not exist
  ObjectNotSet = 91,        ///< a missing object, a missing node among them
  CannotCreateObject = 429  ///< a component that is not registered or does not start
};

/// The error that the automation runtime would raise, with this system's description.
AutomationError MakeRuntimeError(RuntimeError error, const std::string& description);

// How a description is put together. It begins with a small letter unless with a name, quotes values in double quotes
// and ends without a period. The same failure reads the same on every platform: what a system says about its own
// codes is left out.

/// The value in double quotes.
std::string Quoted(std::string_view value);

/// `what "value": why`, for example `cannot start "a.exe": the program does not exist`.
std::string FailureText(std::string_view what, std::string_view value, std::string_view why);

/// A file or folder that could not be read, written or the like: `cannot read "C:\a.txt": it does not exist`. Without a
/// reason, the number's own one is said.
AutomationError MakeFileError(RuntimeError error, std::string_view doing, std::string_view path,
                              std::string_view why = {});

/// Reasons for PathFileAccess that every platform tells apart.
inline constexpr std::string_view kIsFolder = "it is a folder";
inline constexpr std::string_view kIsNoFolder = "it is no folder";
inline constexpr std::string_view kIsReadOnly = "it is read-only";
inline constexpr std::string_view kNameOfFile = "a file has this name";
inline constexpr std::string_view kNoPossibleName = "nothing can have this name";

/// Reason for PermissionDenied.
inline constexpr std::string_view kIsBeingChanged = "another run is changing it";

/// Source of the errors that this system raises on its own behalf.
inline constexpr const char* kErrorSource = "Parvex";

}  // namespace parvex
