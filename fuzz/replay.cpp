#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// Runs every file of the folders and files named through the fuzz target that this is linked with. A target that meets
// a broken promise aborts; too few seeds are a failure too.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t kFewestSeeds = 50;

std::vector<std::filesystem::path> FilesOf(int count, char** names) {
  std::vector<std::filesystem::path> files;
  for (int i = 0; i < count; ++i) {
    if (!std::filesystem::is_directory(names[i])) {
      files.emplace_back(names[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::directory_iterator(names[i])) {
      files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

void Run(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  // A copy without room to spare, so that a read behind the end is seen.
  const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::filesystem::path> files = FilesOf(argc - 1, argv + 1);
  for (const std::filesystem::path& file : files) {
    std::printf("%s\n", file.filename().c_str());
    std::fflush(stdout);
    Run(file);
  }
  std::printf("%zu inputs\n", files.size());
  const bool single = argc == 2 && !std::filesystem::is_directory(argv[1]);
  return single || files.size() >= kFewestSeeds ? 0 : 1;
}
