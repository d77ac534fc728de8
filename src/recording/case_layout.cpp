#include "recording/case_layout.h"

#include "formats/text/machine_folder_places.h"
#include "formats/zip/entry_names.h"

namespace parvex::recording {
namespace {

constexpr std::size_t kLongestCommand = 40;

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

std::string KeptOf(std::string_view command) {
  std::string kept;
  for (const char c : command) {
    if (kept.size() < kLongestCommand && (IsLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '_')) {
      kept.push_back(c);
    }
  }
  return kept.empty() ? "unknown" : kept;
}

}  // namespace

std::string CaseName(std::string_view localTime, std::uint32_t processId, std::uint64_t number,
                     std::string_view command) {
  return std::string(localTime) + "-" + std::to_string(processId) + "-" + std::to_string(number) + "-" +
         KeptOf(command);
}

std::optional<std::string> MemberOf(std::string_view path) {
  std::optional<std::string> member = PlaceInMachineFolder(path);
  return !member || ProblemOfPackedName(*member) ? std::nullopt : member;
}

std::string AfterStep(std::uint64_t step) { return std::string(kAfter) + std::to_string(step) + "/"; }

}  // namespace parvex::recording
