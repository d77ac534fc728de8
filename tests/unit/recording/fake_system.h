#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "adapters/posix/native_system.h"
#include "seams/automation_error.h"

namespace parvex::test {

/// The native system with a clock of its own, whose disk fills up or that fails after so many steps.
class FakeSystem : public posix::NativeSystem {
 public:
  std::string time = "20261122-101500";
  std::optional<std::string> variable;
  std::uint64_t room = UINT64_MAX;       ///< bytes that may still be written
  std::uint64_t stepsLeft = UINT64_MAX;  ///< steps before every further one fails
  std::uint64_t steps = 0;               ///< so far
  bool keepsFolders = false;             ///< no folder can be removed

  std::optional<std::string> Variable(std::string_view name) override {
    return name == "PARVEX_RECORD" ? variable : std::nullopt;
  }
  std::string LocalTime() override { return time; }
  std::uint64_t Microseconds() override { return now_ += 10; }

  void CreateFolders(std::string_view path) override { Step(), NativeSystem::CreateFolders(path); }
  bool CreateNewFolder(std::string_view path) override { return Step(), NativeSystem::CreateNewFolder(path); }
  std::unique_ptr<File> MakeFile(std::string_view path) override {
    Step();
    return std::make_unique<LimitedFile<File>>(*this, NativeSystem::MakeFile(path));
  }
  std::unique_ptr<Replacement> MakeReplacement(std::string_view path, Readers readers) override {
    Step();
    return std::make_unique<LimitedReplacement>(*this, NativeSystem::MakeReplacement(path, readers));
  }
  void WriteAll(std::string_view path, std::string_view bytes) override {
    Take(bytes.size());
    NativeSystem::WriteAll(path, bytes);
  }
  void Rename(std::string_view from, std::string_view to) override { Step(), NativeSystem::Rename(from, to); }
  void RemoveFolder(std::string_view path) override {
    Step();
    if (keepsFolders) {
      throw MakeRuntimeError(RuntimeError::PathFileAccess, "somebody looks at a file in it");
    }
    NativeSystem::RemoveFolder(path);
  }

 private:
  template <typename Kind>
  class LimitedFile : public Kind {
   public:
    LimitedFile(FakeSystem& system, std::unique_ptr<Kind> file) : system_(system), file_(std::move(file)) {}
    void Append(std::string_view bytes) override {
      const std::uint64_t fits = std::min<std::uint64_t>(system_.room, bytes.size());
      if (fits < bytes.size()) {
        file_->Append(bytes.substr(0, static_cast<std::size_t>(fits)));  // what a full disk took of it
      }
      system_.Take(bytes.size());
      file_->Append(bytes);
    }
    void Overwrite(std::uint64_t at, std::string_view bytes) override { system_.Step(), file_->Overwrite(at, bytes); }
    void Truncate(std::uint64_t size) override { file_->Truncate(size); }
    std::string Read(std::uint64_t at, std::size_t most) override { return file_->Read(at, most); }

   protected:
    FakeSystem& system_;
    std::unique_ptr<Kind> file_;
  };
  class LimitedReplacement : public LimitedFile<Replacement> {
   public:
    using LimitedFile::LimitedFile;
    void TakeName() override { system_.Step(), file_->TakeName(); }
  };

  void Step() {
    ++steps;
    if (stepsLeft == 0) {
      throw MakeRuntimeError(RuntimeError::PathFileAccess, "the system refuses");
    }
    --stepsLeft;
  }
  void Take(std::uint64_t bytes) {
    Step();
    if (bytes > room) {
      throw MakeRuntimeError(RuntimeError::DiskFull, "the disk is full");
    }
    room -= bytes;
  }

  std::uint64_t now_ = 0;
};

}  // namespace parvex::test
