#include "adapters/posix/program_line.h"

#include <sys/stat.h>

#include <algorithm>
#include <optional>

#include "seams/automation_error.h"

namespace parvex::posix {
namespace {

constexpr std::string_view kBlanks = " \t";

std::string_view DropBlanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
}

std::optional<std::filesystem::path> FindFile(std::string_view path, MachineFolder& folder) {
  struct stat status;
  std::optional<std::filesystem::path> host = folder.Resolve(path);
  if (!host || stat(host->c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  return host;
}

std::optional<std::filesystem::path> FindProgram(std::string_view name, MachineFolder& folder) {
  const std::size_t lastName = name.find_last_of("\\/:") + 1;  // 0 without any
  if (name.find('.', lastName) == std::string_view::npos) {
    if (auto program = FindFile(std::string(name) + ".exe", folder)) {
      return program;
    }
  }
  return FindFile(name, folder);
}

CommandLine Compose(const std::filesystem::path& program, std::string_view name, std::string_view rest) {
  CommandLine line{program, {std::string(name)}};
  for (std::string& argument : SplitArguments(rest)) {
    line.arguments.push_back(std::move(argument));
  }
  return line;
}

}  // namespace

CommandLine CommandLine::Parse(std::string_view text, MachineFolder& folder) {
  const std::string_view line = DropBlanks(text);
  if (line.starts_with('"')) {
    const std::size_t end = std::min(line.find('"', 1), line.size());
    const std::string_view name = line.substr(1, end - 1);
    if (const auto program = FindProgram(name, folder)) {
      return Compose(*program, name, line.substr(std::min(end + 1, line.size())));
    }
  } else {
    for (std::size_t end = 0; end < line.size();) {
      end = std::min(line.find_first_of(kBlanks, end + 1), line.size());
      if (const auto program = FindProgram(line.substr(0, end), folder)) {
        return Compose(*program, line.substr(0, end), line.substr(end));
      }
    }
  }
  throw MakeRuntimeError(RuntimeError::FileNotFound, FailureText("cannot start", text, "the program does not exist"));
}

CommandLine CommandLine::Of(std::string_view program, std::string_view text, MachineFolder& folder) {
  const auto found = FindFile(program, folder);
  if (!found) {
    throw MakeRuntimeError(RuntimeError::FileNotFound, FailureText("cannot start", text, "the program does not exist"));
  }
  if (text.starts_with(program)) {
    return Compose(*found, program, text.substr(program.size()));
  }
  CommandLine line{*found, SplitArguments(text)};
  if (line.arguments.empty()) {
    line.arguments.emplace_back(program);
  }
  return line;
}

std::vector<std::string> SplitArguments(std::string_view text) {
  std::vector<std::string> arguments;
  for (text = DropBlanks(text); !text.empty(); text = DropBlanks(text)) {
    std::string argument;
    bool quoted = false;
    std::size_t pos = 0;
    while (pos < text.size() && (quoted || kBlanks.find(text[pos]) == std::string_view::npos)) {
      const std::size_t backslashes = std::min(text.find_first_not_of('\\', pos), text.size()) - pos;
      pos += backslashes;
      if (pos == text.size() || text[pos] != '"') {
        argument.append(backslashes, '\\');
        if (backslashes == 0) {
          argument.push_back(text[pos++]);
        }
        continue;
      }
      argument.append(backslashes / 2, '\\');
      ++pos;
      if (backslashes % 2 == 1) {
        argument.push_back('"');
      } else if (quoted && pos < text.size() && text[pos] == '"') {
        argument.push_back('"');
        ++pos;
      } else {
        quoted = !quoted;
      }
    }
    arguments.push_back(std::move(argument));
    text.remove_prefix(pos);
  }
  return arguments;
}

}  // namespace parvex::posix
