#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace parvex {

/// Why the name of an archive's entry is refused, to be read behind the name: it would lead out of the folder that the
/// archive is unpacked into, means a device, or is none that Windows takes for a file. Nothing for a good name. A
/// separator (slash or backslash) at the end, the mark of a folder, is part of a good name.
///
/// A device's name with an extension ("aux.txt") is good: nobody means a device by it, and where Windows takes it for
/// an ordinary file, archives hold such files.
std::optional<std::string> ProblemOfPackedName(std::string_view name);

/// The name that Windows gives to what is written under a good name: components separated by backslashes, each without
/// the dots and blanks at its end ("readme." is written as "readme").
std::string WrittenName(std::string_view name);

}  // namespace parvex
