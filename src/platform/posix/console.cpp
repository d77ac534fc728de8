#include "platform/posix/console.h"

#include <iostream>
#include <string>
#include <thread>

namespace parvex::posix {

void SleepingPump::Sleep(std::chrono::milliseconds duration) { std::this_thread::sleep_for(duration); }

void WrittenBoxes::Show(std::string_view text, std::string_view caption, Icon icon) {
  std::string block = "--- " + std::string(caption) + (icon == Icon::Stop ? " (stop)" : "") + " ---\n";
  block.append(text).append("\n---\n");
  std::cerr << block << std::flush;
}

}  // namespace parvex::posix
