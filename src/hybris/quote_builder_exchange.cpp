#include "hybris/quote_builder_exchange.h"

#include <exception>
#include <utility>

#include "formats/text/text.h"
#include "legacy_env/file_routines.h"
#include "legacy_env/ini_target.h"
#include "legacy_env/install_paths.h"
#include "legacy_env/process_runner.h"
#include "legacy_env/thread_state.h"
#include "protocol/required_node.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

constexpr int kNormalWindowWithFocus = 1;

/// "X:\Root\Bin\" gives "X:\Root\Temp\QBOutput.ini": what stands before the last backslash, cut behind its own last
/// one.
std::string OutputFileBeside(const std::string& binPath) {
  const std::size_t last = binPath.rfind('\\');
  if (last == std::string::npos) {
    throw MakeRuntimeError(RuntimeError::InvalidCall, "BinPath \"" + binPath + "\" holds no backslash");
  }
  const std::string folder = binPath.substr(0, last);
  return folder.substr(0, folder.rfind('\\') + 1) + "Temp\\QBOutput.ini";
}

QuoteBuilderRun ReadOutcome(const Platform& platform, const std::string& binPath, std::string_view actionWhenMissing) {
  const std::string outputFile = OutputFileBeside(binPath);
  SetIniTarget(platform, "Header", outputFile);
  const std::string action = ReadIniString(platform, "Action", actionWhenMissing);
  return {outputFile, ToUpper(TrimBlanks(action)) != "CANCEL"};
}

/// One run of the program, known to the thread for as long as it is waited for.
class WorkflowRun : public HandOver {
 public:
  // A program folder that ends with a backslash gives a doubled one; the command line has always looked so.
  WorkflowRun(const Platform& platform, const std::string& binPath, std::string_view option,
              std::function<void()> readOutcome)
      : readOutcome_(std::move(readOutcome)),
        program_(platform, binPath + "\\kdwfm470.exe " + std::string(option), kNormalWindowWithFocus),
        outer_(std::exchange(ThisThread().handOver, this)) {}
  ~WorkflowRun() { ThisThread().handOver = outer_; }
  WorkflowRun(const WorkflowRun&) = delete;
  WorkflowRun& operator=(const WorkflowRun&) = delete;

  void Finish() override {
    program_.Wait();
    if (std::exchange(isRead_, true)) {
      return;
    }
    try {
      readOutcome_();
    } catch (...) {
      failure_ = std::current_exception();
    }
  }

  void RaiseFailure() const {
    if (failure_ != nullptr) {
      std::rethrow_exception(failure_);
    }
  }

 private:
  std::function<void()> readOutcome_;
  RunningProgram program_;
  HandOver* outer_;
  bool isRead_ = false;
  std::exception_ptr failure_;
};

QuoteBuilderRun RunWorkflow(const Platform& platform, const std::string& binPath, std::string_view option,
                            std::string_view actionWhenMissing, const OutcomeReader& read) {
  QuoteBuilderRun outcome;
  WorkflowRun run(platform, binPath, option, [&] {
    outcome = ReadOutcome(platform, binPath, actionWhenMissing);
    if (read) {
      read(outcome);
    }
  });
  run.Finish();
  run.RaiseFailure();
  return outcome;
}

}  // namespace

void FinishEarlierRun() {
  if (HandOver* earlier = ThisThread().handOver) {
    earlier->Finish();
  }
}

QuoteBuilderRun RunQuoteBuilder(const Platform& platform, const std::string& binPath, const OutcomeReader& read) {
  return RunWorkflow(platform, binPath, "/OrlaProjectImport", "Cancel", read);
}

QuoteBuilderRun RunQuoteBuilderNoUI(const Platform& platform, const std::string& binPath, const OutcomeReader& read) {
  return RunWorkflow(platform, binPath, "/OrlaImportNoUI", "", read);
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
