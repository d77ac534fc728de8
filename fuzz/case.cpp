#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "adapters/posix/machine.h"
#include "adapters/posix/native_system.h"
#include "cli/cases/case_text.h"
#include "formats/text/file_names.h"
#include "formats/zip/entry_names.h"
#include "formats/zip/zip_writer.h"
#include "fuzz/fuzz_input.h"
#include "recording/recorded_case.h"
#include "replay/case_run.h"
#include "tests/support/fake_platform.h"

// A recorded call is read, shown and done again. The input: what it is, and then its bytes - an archive; or the texts
// of case.json and journal.jsonl, each ended by a NUL, for an archive, or for a folder that a host left, with its
// files.zip behind them.

namespace parvex {
namespace {

using fuzz::Require;

constexpr const char* kPath = "call.pvxcase";
constexpr const char* kUnfinished = "call.pvxcase.part";

/// A system with one case, which nobody writes to.
class OneCase : public posix::NativeSystem {
 public:
  std::map<std::string, std::string> files;

  bool IsFolder(std::string_view path) override { return path == kUnfinished; }
  std::uint64_t SizeOf(std::string_view path) override { return files[std::string(path)].size(); }
  std::string ReadAll(std::string_view path) override { return files[std::string(path)]; }
  void WriteAll(std::string_view, std::string_view) override { Require(false, "nothing is written"); }
  std::unique_ptr<File> MakeFile(std::string_view) override {
    Require(false, "nothing is made");
    return nullptr;
  }
  std::vector<Entry> List(std::string_view folder) override {
    std::vector<Entry> entries;
    for (const auto& [path, bytes] : files) {
      if (path.starts_with(std::string(folder) + "/")) {
        entries.push_back({.name = path.substr(folder.size() + 1), .bytes = bytes.size()});
      }
    }
    return entries;
  }
};

void Look(const recording::RecordedCase& read) {
  for (const recording::KeptFile& file : read.files) {
    Require(!ProblemOfPackedName(file.name), "only ordinary names are kept");
  }
  for (const std::string& text : {cli::TextOfCase(read), cli::FilesOfCase(read), cli::LineOfCase(read)}) {
    Require(std::none_of(text.begin(), text.end(),
                         [](char c) { return c != '\n' && static_cast<unsigned char>(c) < 0x20; }),
            "what is shown holds no control characters");
  }
  const recording::Json all = recording::Json::parse(cli::JsonOfCase(read), nullptr, false);
  Require(all.is_object() && all["steps"].size() == read.steps.size(), "the JSON of a case is JSON");
}

std::shared_ptr<const Platform> Machine(const std::string& folder, unsigned) {
  struct Folder {
    explicit Folder(const std::string& path) : machine(path), platform(machine.AsPlatform()) {}
    posix::Machine machine;
    Platform platform;
  };
  const auto held = std::make_shared<Folder>(folder);
  return {held, &held->platform};
}

// Whatever a record says, the call comes to an end, and nothing but its own folder is written to.
void DoAgain(const recording::RecordedCase& read) {
  const test::TemporaryFolder folder;
  std::filesystem::create_directory(folder.Path() / "machine");
  posix::NativeSystem system;
  fuzz::MayBeRefused(
      [&] { replay::RunCase(system, read, {.folder = (folder.Path() / "machine").string(), .machine = Machine}); });
  Require(std::distance(std::filesystem::directory_iterator(folder.Path()), {}) == 1,
          "nothing is written beside the folder");
}

void ReadOne(OneCase& system, const char* path) {
  fuzz::MayBeRefused([&] {
    const recording::RecordedCase read = recording::ReadCase(system, path);
    Look(read);
    DoAgain(read);
  });
}

}  // namespace
}  // namespace parvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  fuzz::Input input(data, size);
  OneCase system;
  switch (input.TakeByte() % 3) {
    case 0:
      system.files[kPath] = input.TakeRest();
      ReadOne(system, kPath);
      break;
    case 1: {
      ZipWriter writer;
      writer.Add("case.json", input.TakeUpTo('\0'), true);
      writer.Add("journal.jsonl", input.TakeUpTo('\0'), true);
      writer.Add("machine/drive_c/a.ini", input.TakeRest(), true);
      system.files[kPath] = writer.Finish();
      ReadOne(system, kPath);
      break;
    }
    default: {
      const std::string folder = std::string(kUnfinished) + "/";
      system.files[folder + "case.json"] = input.TakeUpTo('\0');
      system.files[folder + "journal.jsonl"] = input.TakeUpTo('\0');
      system.files[folder + "files.zip"] = input.TakeRest();
      ReadOne(system, kUnfinished);
    }
  }
  return 0;
}
