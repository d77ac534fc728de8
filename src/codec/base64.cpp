#include <algorithm>
#include <cstring>

#include "codec/base64_kernels.h"

namespace parvex::base64 {
namespace {

// Growing a string fills it with zeros first. Done in pieces that stay in the first cache, that costs next to nothing.
constexpr std::size_t kEncodePiece = 12 * 1024;

std::size_t EncodedLength(std::size_t bytes) { return (bytes + 2) / 3 * 4; }

// Bytes of the one to three values that remain behind the last whole group; a single one is ignored.
void AppendLastGroup(const Stage& stage, std::string& bytes) {
  const std::uint8_t* values = stage.values;
  if (stage.count >= 2) {
    bytes.push_back(static_cast<char>(values[0] << 2 | values[1] >> 4));
  }
  if (stage.count == 3) {
    bytes.push_back(static_cast<char>((values[1] & 15) << 4 | values[2] >> 2));
  }
}

// Packs the whole groups of the stage behind `bytes` and leaves the rest in it.
void PackStage(Stage& stage, std::string& bytes, const Kernels& kernels) {
  const std::size_t whole = stage.count / 4 * 4;
  const std::size_t packed = whole / 4 * 3;
  const std::size_t before = bytes.size();
  bytes.resize(before + packed + kPackSlack);
  kernels.pack(stage.values, whole, bytes.data() + before);
  bytes.resize(before + packed);
  std::memmove(stage.values, stage.values + whole, stage.count - whole);
  stage.count -= whole;
}

}  // namespace

const Kernels& BestKernels() {
  static const Kernels& best = Avx2Kernels() != nullptr ? *Avx2Kernels() : PortableKernels();
  return best;
}

std::string Encode(std::string_view bytes, const Kernels& kernels) {
  std::string text;
  text.reserve(EncodedLength(bytes.size()));
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, kEncodePiece);
    const std::size_t before = text.size();
    text.resize(before + EncodedLength(piece.size()));
    kernels.encode(piece, text.data() + before);
    bytes.remove_prefix(piece.size());
  }
  return text;
}

std::string Decode(std::string_view text, const Kernels& kernels) {
  std::string bytes;
  // A byte of the text gives one value at most.
  bytes.reserve(text.size() / 4 * 3 + 3 + kPackSlack);
  Stage stage;
  while (!text.empty()) {
    kernels.stageCharacters(text, stage);
    PackStage(stage, bytes, kernels);
  }
  AppendLastGroup(stage, bytes);
  return bytes;
}

}  // namespace parvex::base64
