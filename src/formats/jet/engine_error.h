#pragma once

#include <cstdint>
#include <string>

namespace parvex::jet {

/// Numbers of the Jet engine's own errors that are raised here and by the databases above.
enum class EngineError : std::uint16_t {
  NoCurrentRecord = 3021,  ///< a column is read, or a change begun, where no row is current
  NothingToUpdate = 3020,  ///< Update or SetColumn without AddNew or Edit
  FileNotFound = 3024,
  InvalidPath = 3044,       ///< a folder on the way to the file does not exist
  TooFewParameters = 3061,  ///< a statement names a column that the table lacks
  SyntaxError = 3075,       ///< a statement that does not parse
  NoSuchTable = 3078,
  FieldTooSmall = 3163,     ///< a text longer than its column, or a row longer than a page
  ChangedMeanwhile = 3197,  ///< somebody else changed the row after it was read
  NotSupported = 3251,      ///< a change that cannot be made without damaging the file
  NoSuchColumn = 3265,
  UnrecognizedFormat = 3343,  ///< no database of Jet 3 or Jet 4, or a damaged one
  ObjectInvalid = 3420,       ///< something that was closed is used
  DataTypeConversion = 3421,  ///< a text that the column's type cannot take
  CriteriaMismatch = 3464     ///< a text compared with a column that holds none
};

/// Throws the AutomationError that carries the engine's number.
[[noreturn]] void Fail(EngineError error, const std::string& description);

}  // namespace parvex::jet
