#include "cli/host/written_boxes.h"

#include <iostream>
#include <string>

namespace parvex {

void WrittenBoxes::Show(std::string_view text, std::string_view caption, Icon icon) {
  std::string block = "--- " + std::string(caption) + (icon == Icon::Stop ? " (stop)" : "") + " ---\n";
  block.append(text).append("\n---\n");
  std::cerr << block << std::flush;
}

}  // namespace parvex
