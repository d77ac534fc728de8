#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace parvex::cli {

/// The manual page of the program in the man macros, made of what the command line offers.
std::string ManualPage(const CLI::App& program);

}  // namespace parvex::cli
