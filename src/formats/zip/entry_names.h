#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace parvex {

/// Why the name of an archive's entry is refused, to be read behind the name: it would lead out of the folder that the
/// archive is unpacked into, or is none that Windows gives to a file there. Nothing for a good name. A separator (slash
/// or backslash) at the end, the mark of a folder, is part of a good name.
std::optional<std::string> ProblemOfPackedName(std::string_view name);

}  // namespace parvex
