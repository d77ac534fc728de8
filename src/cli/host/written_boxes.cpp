#include "cli/host/written_boxes.h"

#include <iostream>
#include <string>

#include "formats/text/terminal_text.h"

namespace parvex {

void WrittenBoxes::Show(std::string_view text, std::string_view caption, Icon icon) {
  std::string block = "--- " + TerminalLine(caption) + (icon == Icon::Stop ? " (stop)" : "") + " ---\n";
  block.append(TerminalText(text)).append("\n---\n");
  std::cerr << block << std::flush;
}

}  // namespace parvex
