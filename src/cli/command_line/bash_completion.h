#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace parvex::cli {

/// A script that teaches bash to complete the program's command line: commands, options, and files and folders where
/// they are asked for.
std::string BashCompletion(const CLI::App& program);

}  // namespace parvex::cli
