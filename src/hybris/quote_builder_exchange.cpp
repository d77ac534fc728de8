#include "hybris/quote_builder_exchange.h"

#include "formats/text/text.h"
#include "legacy_env/file_routines.h"
#include "legacy_env/ini_target.h"
#include "legacy_env/install_paths.h"
#include "legacy_env/installed_files.h"
#include "legacy_env/process_runner.h"
#include "protocol/required_node.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

constexpr int kNormalWindowWithFocus = 1;

QuoteBuilderRun ReadOutcome(const Platform& platform, const std::string& binPath, std::string_view actionWhenMissing,
                            std::int32_t exitCode) {
  const std::string folder = FolderOfOutput(binPath);
  if (folder.empty()) {
    throw MakeRuntimeError(RuntimeError::InvalidCall, "BinPath \"" + binPath + "\" holds no backslash");
  }
  const std::string outputFile = folder + "\\QBOutput.ini";
  SetIniTarget(platform, "Header", outputFile);
  const std::string action = ReadIniString(platform, "Action", actionWhenMissing);
  return {outputFile, ToUpper(TrimBlanks(action)) != "CANCEL", exitCode};
}

QuoteBuilderRun RunWorkflow(const Platform& platform, const std::string& binPath, std::string_view option,
                            std::string_view actionWhenMissing) {
  // A program folder that ends with a backslash gives a doubled one; the command line has always looked so.
  // The line is not quoted, so a program folder with a blank could mean another program.
  const std::string program = binPath + "\\" + std::string(kWorkflowProgram);
  const std::int32_t exitCode = RunAndWait(platform, program + " " + std::string(option), kNormalWindowWithFocus,
                                           program, "the quote builder is running");
  return ReadOutcome(platform, binPath, actionWhenMissing, exitCode);
}

}  // namespace

// "X:\Root\Bin\" gives "X:\Root\Temp": what stands before the last backslash, cut behind its own last one.
std::string FolderOfOutput(std::string_view binPath) {
  const std::size_t last = binPath.rfind('\\');
  if (last == std::string_view::npos) {
    return {};
  }
  const std::string_view folder = binPath.substr(0, last);
  return std::string(folder.substr(0, folder.rfind('\\') + 1)).append(kTemporaryFolder);
}

QuoteBuilderRun RunQuoteBuilder(const Platform& platform, const std::string& binPath) {
  return RunWorkflow(platform, binPath, "/OrlaProjectImport", "Cancel");
}

QuoteBuilderRun RunQuoteBuilderNoUI(const Platform& platform, const std::string& binPath) {
  return RunWorkflow(platform, binPath, "/OrlaImportNoUI", "");
}

void WriteQuoteBuilderInput(const Platform& platform) {
  platform.files->Replace(GetDesignTempFolder(platform) + "QBInput.ini",
                          "[Header]\r\naction=cancel\r\nQBversion=3.9N\r\n");
}

void ClearQuoteBuilderOutput(const Platform& platform) {
  const std::string folder = GetDesignTempFolder(platform);
  for (const char* name : {"output.ini", "QBOutput.ini", "ubout.ini"}) {
    if (FileExists(platform, folder + name)) {
      platform.files->Remove(folder + name);
    }
  }
}

std::string SaveUserSelection(const Platform& platform, const xml::Document& command) {
  constexpr std::string_view kSelection = "//UserSelectionTransfer";
  constexpr std::string_view kProjectName = "//ProjectName";
  const xml::Document selection =
      xml::Document::Parse(Required(command.First(kSelection), kSelection, "the command document").Xml());
  const std::string projectName = Required(selection.First(kProjectName), kProjectName, "UserSelectionTransfer").Text();
  platform.files->Replace(GetDesignTempFolder(platform) + "HBInput.ini", selection.Bytes());
  return projectName;
}

}  // namespace parvex
