// How fast the export could be at best: reads the same inputs, encodes the blobs, appends a text of the same length,
// writes it. No parsing, no tree, no escaping, no unpacking.
//
//   export_limit MACHINE_FOLDER REPLY OUTPUT     REPLY: what the export answered, for its length

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "codec/bin_encoder.h"

namespace {

std::string ReadFile(const std::filesystem::path& path) {
  std::string bytes(std::filesystem::file_size(path), '\0');
  std::ifstream(path, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: export_limit MACHINE_FOLDER REPLY OUTPUT\n");
    return 2;
  }
  const std::filesystem::path root = std::filesystem::path(argv[1]) / "drive_c" / "Korvane" / "TQ5-VX";
  const std::size_t length = std::filesystem::file_size(argv[2]);
  const std::string selection = ReadFile(root / "Temp" / "QBOutput.ini");
  std::string text;
  text.reserve(length + 64);
  for (const auto& entry : std::filesystem::directory_iterator(root / "Blobs")) {
    text += parvex::EncodeBase64(ReadFile(entry.path()));
  }
  while (text.size() < length) {
    text.append(selection, 0, std::min(selection.size(), length - text.size()));
  }
  std::ofstream(argv[3], std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
  return 0;
}
