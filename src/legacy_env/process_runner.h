#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "seams/platform.h"

namespace parvex {

/// Starts a program and waits until it has ended, letting pending window messages run between polls of 100 ms. There is
/// no time limit, deliberately: an interactive program ends when its user closes it.
///
/// Gives the exit code; a program that cannot be started gives the runtime's error number plus 0x80040000, a negative
/// number. With `program`, its path, no other file is started (Processes::Start). A window style that is missing or
/// outside 0 to 6 counts as 6 (minimised without focus). `waitedFor` is what the machine's progress is told meanwhile.
std::int32_t RunAndWait(const Platform& platform, std::string_view commandLine,
                        std::optional<int> windowStyle = std::nullopt, std::string_view program = {},
                        std::string_view waitedFor = {});

}  // namespace parvex
