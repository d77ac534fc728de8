#include "recording/hand_over_folders.h"

#include <algorithm>

#include "formats/text/letter_case.h"

namespace parvex::recording {
namespace {

constexpr std::string_view kDesignFolder = "TQ5-VX";
constexpr std::string_view kTemporary = "Temp";

std::string WithoutEndingSeparators(std::string_view path) {
  return std::string(path.substr(0, path.find_last_not_of("\\/") + 1));
}

}  // namespace

std::vector<std::string> HandOverFolders(std::string_view binPath) {
  std::vector<std::string> folders;
  const auto add = [&](std::string folder) {
    const auto isSame = [&](const std::string& one) { return IsSameName(one, folder); };
    if (std::none_of(folders.begin(), folders.end(), isSame)) {
      folders.push_back(std::move(folder));
    }
  };
  const std::string program = WithoutEndingSeparators(binPath);
  if (const std::size_t last = program.rfind('\\'); last != std::string::npos) {
    add(program.substr(0, last + 1).append(kTemporary));
  }
  if (const std::size_t design = binPath.find(kDesignFolder); design != std::string_view::npos && design > 0) {
    add(std::string(binPath.substr(0, design + kDesignFolder.size())).append("\\").append(kTemporary));
  }
  return folders;
}

}  // namespace parvex::recording
