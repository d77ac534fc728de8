#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "seams/platform.h"
#include "seams/xml.h"

namespace parvex {

// The hand-over with the quote builder, the legacy application's workflow program kdwfm470.exe. It goes through files
// in the design application's temporary folder and keeps no state of its own.
// All runs share these files: whoever calls these functions holds the HandOverLock.

struct QuoteBuilderRun {
  std::string outputFile;  ///< where the program leaves QBOutput.ini: Temp beside the program folder
  bool ok = false;         ///< false when the user cancelled
  /// What the program runner gave (RunAndWait), which decides nothing.
  std::int32_t exitCode = 0;
};

/// The folder that the program leaves its output in: Temp beside the program folder. Empty for a program folder with no
/// backslash.
std::string FolderOfOutput(std::string_view binPath);

/// Runs the program with its user interface, waits for its end, and reads the outcome. Its exit code is not looked at,
/// nor whether it started: the Action that QBOutput.ini holds afterwards tells. Without one the run counts as
/// cancelled. A program folder with no backslash is an error (5).
QuoteBuilderRun RunQuoteBuilder(const Platform& platform, const std::string& binPath);

/// Runs it without user interface. Here a run that leaves no Action counts as a success, deliberately unlike the
/// interactive one, where a user who closes the window leaves none.
QuoteBuilderRun RunQuoteBuilderNoUI(const Platform& platform, const std::string& binPath);

/// Makes QBInput.ini anew.
void WriteQuoteBuilderInput(const Platform& platform);

/// Deletes output.ini, QBOutput.ini and ubout.ini of earlier runs.
void ClearQuoteBuilderOutput(const Platform& platform);

/// Writes the command's UserSelectionTransfer element to HBInput.ini, which holds XML in spite of its name, and gives
/// the ProjectName in it. A command without one of the two elements is "object not set" (91), and nothing is written.
std::string SaveUserSelection(const Platform& platform, const xml::Document& command);

}  // namespace parvex
