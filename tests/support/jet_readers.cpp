#include "tests/support/jet_readers.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "tests/support/fake_platform.h"

namespace parvex::test {

namespace {

std::string Quoted(const std::string& argument) { return "'" + argument + "'"; }

bool IsInstalled(const std::string& program) {
  return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

/// The lines that a command prints, whatever it complains about among them; a failing command fails the test.
Lines LinesOf(const std::string& command) {
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  std::string output;
  for (int c; (c = std::fgetc(pipe)) != EOF;) output += static_cast<char>(c);
  const int status = pclose(pipe);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << command << "\n" << output;
  Lines lines;
  std::istringstream stream(output);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// A database's bytes as a file, for as long as this lives.
struct DatabaseFile {
  TemporaryFolder folder;
  std::string path = (folder.Path() / "database.mdb").string();
  explicit DatabaseFile(std::string_view bytes) { WriteHostFile(path, bytes); }
};

}  // namespace

std::optional<Lines> RunMdbTool(const std::string& tool, const std::string& options, std::string_view database,
                                const std::string& arguments) {
  if (!IsInstalled(tool)) return std::nullopt;
  const DatabaseFile file(database);
  return LinesOf(tool + " " + options + " " + Quoted(file.path) + " " + arguments);
}

std::optional<Lines> MdbExport(std::string_view database, const std::string& table) {
  return RunMdbTool("mdb-export", "-H -Q -d '|'", database, Quoted(table));
}

std::optional<Lines> MdbReader(std::string_view database, const std::string& table) {
  const std::filesystem::path sources = std::filesystem::path(PARVEX_TEST_SOURCES);
  const char* named = std::getenv("PARVEX_ORACLES");
  const std::filesystem::path oracles = named != nullptr ? named : sources / ".." / "build" / "oracles";
  if (!IsInstalled("node") || !std::filesystem::exists(oracles / "node_modules" / "mdb-reader")) return std::nullopt;
  const DatabaseFile file(database);
  std::string command = "node";
  for (const std::string& argument : {(sources / "oracles" / "mdb_reader.mjs").string(), oracles.string(), file.path}) {
    command += " " + Quoted(argument);
  }
  return LinesOf(command + (table.empty() ? "" : " " + Quoted(table)));
}

}  // namespace parvex::test
