#pragma once

#include <vector>

#include "masking/text_view.h"

namespace parvex::masking {

/// The names of users, projects and computers in a path: what follows the folder of all users, of projects or of
/// archives, and in a path of a network the computer and what it shares. `isWhole` is whether the text is a path and
/// nothing else; otherwise paths are looked for in it, and a name counts that another component follows.
std::vector<Part> NamesInPath(Part text, bool isWhole);

}  // namespace parvex::masking
