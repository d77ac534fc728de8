#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace parvex::test {

// Readers of Jet databases that this project has no part in, run as programs over the bytes of a file. Their answers
// come as lines; nothing when the program is not installed, for which a test skips itself.

using Lines = std::vector<std::string>;

/// A tool of mdbtools: `tool`, its options, the file, the arguments behind it.
std::optional<Lines> RunMdbTool(const std::string& tool, const std::string& options, std::string_view database,
                                const std::string& arguments = "");

/// The rows of a table as mdb-export prints them, columns separated by |. It prints a null and an empty text alike.
std::optional<Lines> MdbExport(std::string_view database, const std::string& table);

/// The rows of a table as npm's mdb-reader has them, columns separated by |, a null as <null>; the names of the tables
/// when none is named. The module is looked for in the folder $PARVEX_ORACLES, else in build/oracles of the sources.
std::optional<Lines> MdbReader(std::string_view database, const std::string& table = "");

}  // namespace parvex::test
